#include "platform/dao/file/SoleFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "platform/dao/file/Connection.h"
#include "platform/dao/file/FileFormat.h"

namespace mailvane {

namespace {

/// The bytes that SQLite locks to read or write a file: pending, reserved, and those for readers.
constexpr off_t FirstLockByte = 0x40000000;
constexpr off_t LockBytes = 512;

/// Takes SQLite's exclusive lock. It belongs to the handle: closing another handle of the file does
/// not let go of it, as it would with the kind of lock that SQLite takes.
bool LockAsSqliteDoes(int handle) {
    struct flock lock {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = FirstLockByte;
    lock.l_len = LockBytes;
    return ::fcntl(handle, F_OFD_SETLK, &lock) == 0;
}

bool IsMarkedReadOnly(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 &&
           (status.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0;
}

}  // namespace

SoleFile::SoleFile(std::string path, FileLock lock, int handle)
    : path_(std::move(path)), lock_(std::move(lock)), handle_(handle) {}

SoleFile::SoleFile(SoleFile&& other) noexcept
    : path_(std::move(other.path_)),
      lock_(std::move(other.lock_)),
      handle_(std::exchange(other.handle_, -1)) {}

SoleFile::~SoleFile() {
    if (handle_ >= 0) ::close(handle_);
}

DaoResult<SoleFile> SoleFile::Take(const std::string& path) {
    const std::string canonical = CanonicalPath(path);
    if (DaoError refused = CheckFile(canonical); refused.Failed()) return refused;
    if (IsMarkedReadOnly(canonical)) return MakeDaoError(dao_error::ReadOnly);
    DaoResult<FileLock> lock = FileLock::Take(canonical, true);
    if (lock.Failed()) return lock.Error();
    const int handle = ::open(canonical.c_str(), O_RDWR | O_CLOEXEC);
    if (handle < 0)
        return errno == EACCES || errno == EROFS
                   ? MakeDaoError(dao_error::ReadOnly)
                   : MakeDaoError(dao_error::CannotOpenFile, canonical);
    SoleFile file(canonical, std::move(*lock), handle);
    if (!LockAsSqliteDoes(handle)) return MakeDaoError(dao_error::OpenedExclusively);
    return file;
}

DaoResult<std::shared_ptr<Connection>> SoleFile::Open() const {
    return Connection::OpenUnlocked(path_);
}

}  // namespace mailvane
