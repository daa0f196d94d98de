#include "platform/dao/file/FileLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace mailvane {

namespace {

/// Whether `path` still names the open file; its last holder may have removed it in between.
bool StillNamed(const std::string& path, int handle) {
    struct stat named {};
    struct stat opened {};
    return ::stat(path.c_str(), &named) == 0 && ::fstat(handle, &opened) == 0 &&
           named.st_dev == opened.st_dev && named.st_ino == opened.st_ino;
}

bool FolderRefusesFiles(int code) {
    return code == EACCES || code == EROFS || code == EPERM;
}

}  // namespace

FileLock::FileLock(std::string path, int handle) : path_(std::move(path)), handle_(handle) {}

FileLock::FileLock(FileLock&& other) noexcept
    : path_(std::move(other.path_)), handle_(std::exchange(other.handle_, -1)) {}

DaoResult<FileLock> FileLock::Take(const std::string& databasePath, bool exclusive) {
    const std::string path = databasePath + ".lock";
    for (;;) {
        const int handle = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0644);
        if (handle < 0) {
            if (!exclusive && FolderRefusesFiles(errno)) return FileLock(path, -1);
            return MakeDaoError(dao_error::CannotOpenFile, path);
        }
        if (::flock(handle, (exclusive ? LOCK_EX : LOCK_SH) | LOCK_NB) != 0) {
            ::close(handle);
            return MakeDaoError(dao_error::OpenedExclusively);
        }
        if (StillNamed(path, handle)) return FileLock(path, handle);
        ::close(handle);
    }
}

FileLock::~FileLock() {
    if (handle_ < 0) return;
    // Alone with the file: nobody else holds it, and who opened it meanwhile will look again.
    const bool alone = ::flock(handle_, LOCK_EX | LOCK_NB) == 0;
    if (alone && StillNamed(path_, handle_)) ::unlink(path_.c_str());
    ::close(handle_);
}

}  // namespace mailvane
