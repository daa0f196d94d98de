#include "platform/os/Files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <utility>

namespace mailvane {

namespace {

namespace fs = std::filesystem;

/// Closes at the end of its scope.
class FileHandle {
public:
    explicit FileHandle(int number) : number_(number) {}
    ~FileHandle() {
        if (number_ >= 0) ::close(number_);
    }
    FileHandle(const FileHandle&) = delete;
    FileHandle& operator=(const FileHandle&) = delete;

    int Number() const { return number_; }
    bool IsOpen() const { return number_ >= 0; }
    /// Some systems report a failed write only here.
    bool Close() { return ::close(std::exchange(number_, -1)) == 0; }

private:
    int number_;
};

int OpenFile(const std::string& path, int flags, mode_t mode = 0) {
    int number = -1;
    do {
        number = ::open(path.c_str(), flags | O_CLOEXEC, mode);
    } while (number < 0 && errno == EINTR);
    return number;
}

/// From where the file stands to its end; `sizeHint` spares room being made in steps.
std::optional<std::string> ReadAll(int file, std::size_t sizeHint) {
    std::string content;
    content.reserve(sizeHint);
    char buffer[65536];
    for (;;) {
        const ssize_t count = ::read(file, buffer, sizeof buffer);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return std::nullopt;
        if (count == 0) return content;
        content.append(buffer, static_cast<std::size_t>(count));
    }
}

bool WriteAll(int file, std::string_view content) {
    while (!content.empty()) {
        const ssize_t written = ::write(file, content.data(), content.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return false;
        content.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

/// The file that `path` stands for: the end of the chain when it is a symbolic link.
std::string LinkTarget(const std::string& path) {
    constexpr int MostLinks = 40;  // as many as the kernel follows
    fs::path target = path;
    std::error_code error;
    for (int i = 0; i < MostLinks && fs::is_symlink(target, error); ++i) {
        const fs::path next = fs::read_symlink(target, error);
        if (error) break;
        target = next.is_absolute() ? next : target.parent_path() / next;
    }
    return target.string();
}

std::string FolderOf(const std::string& path) {
    const std::size_t slash = path.find_last_of('/');
    return slash == std::string::npos ? "." : path.substr(0, slash + 1);
}

constexpr std::string_view TemporaryStem = ".mailvane-";  // then the process, "-" and a number
constexpr std::string_view TemporaryEnd = ".tmp";

/// True for a temporary file whose process was killed before it could rename or remove it.
bool IsAbandoned(const std::string& name) {
    if (!name.starts_with(TemporaryStem) || !name.ends_with(TemporaryEnd)) return false;
    const int process = std::atoi(name.c_str() + TemporaryStem.size());
    return process > 0 && ::kill(process, 0) != 0 && errno == ESRCH;
}

/// A folder that cannot be listed keeps them.
void RemoveAbandonedFiles(const std::string& folder) {
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error))
        if (IsAbandoned(entry->path().filename().string())) ::unlink(entry->path().c_str());
}

/// A new file of a name that nobody has, in the folder; `name` receives it.
int MakeTemporaryFile(const std::string& folder, std::string& name, FileAccess access) {
    const std::string stem =
        folder + "/" + std::string(TemporaryStem) + std::to_string(::getpid()) + "-";
    constexpr int MostNames = 10000;
    for (int i = 0; i < MostNames; ++i) {
        name = stem + std::to_string(i) + std::string(TemporaryEnd);
        const mode_t mode = access == FileAccess::OwnerOnly ? 0600 : 0666;
        const int file = OpenFile(name, O_WRONLY | O_CREAT | O_EXCL, mode);
        if (file >= 0 || errno != EEXIST) return file;
    }
    return -1;
}

/// Makes the renaming last through a power failure.
void FlushFolder(const std::string& folder) {
    const FileHandle handle(OpenFile(folder, O_RDONLY | O_DIRECTORY));
    if (handle.IsOpen()) ::fsync(handle.Number());
}

/// Systems without permissions refuse changes, and need none.
bool KeepPermissions(int file, const struct stat& old) {
    struct stat made {};
    if (::fstat(file, &made) != 0) return false;
    return made.st_mode == old.st_mode || ::fchmod(file, old.st_mode & 07777) == 0;
}

bool FillAndFlush(FileHandle& file, std::string_view content, const struct stat* old) {
    if (!WriteAll(file.Number(), content)) return false;
    if (old && !KeepPermissions(file.Number(), *old)) return false;
    return ::fsync(file.Number()) == 0 && file.Close();
}

/// Puts the content in place of `target`; `errno` says why not.
bool Replace(const std::string& target, std::string_view content, FileAccess access) {
    struct stat old {};
    const bool hasOld = ::stat(target.c_str(), &old) == 0;
    if (hasOld && !S_ISREG(old.st_mode)) {
        errno = S_ISDIR(old.st_mode) ? EISDIR : EINVAL;
        return false;
    }
    const std::string folder = FolderOf(target);
    RemoveAbandonedFiles(folder);
    std::string temporary;
    FileHandle file(MakeTemporaryFile(folder, temporary, access));
    if (!file.IsOpen()) return false;
    if (!FillAndFlush(file, content, hasOld ? &old : nullptr) ||
        ::rename(temporary.c_str(), target.c_str()) != 0) {
        const int error = errno;
        ::unlink(temporary.c_str());
        errno = error;
        return false;
    }
    FlushFolder(folder);
    return true;
}

}  // namespace

std::optional<std::string> ReadWholeFile(const std::string& path) {
    const FileHandle file(OpenFile(path, O_RDONLY | O_NONBLOCK));
    struct stat status {};
    if (!file.IsOpen() || ::fstat(file.Number(), &status) != 0 || !S_ISREG(status.st_mode))
        return std::nullopt;
    return ReadAll(file.Number(), static_cast<std::size_t>(std::max<off_t>(status.st_size, 0)));
}

std::optional<std::string> ReadToEnd(const std::string& path) {
    const FileHandle file(OpenFile(path, O_RDONLY));
    return file.IsOpen() ? ReadAll(file.Number(), 0) : std::nullopt;
}

bool WriteWholeFile(const std::string& path, std::string_view content, std::string* reason,
                    FileAccess access) {
    if (Replace(LinkTarget(path), content, access)) return true;
    if (reason) *reason = std::strerror(errno);
    return false;
}

bool MakePrivate(const std::string& path) {
    return ::chmod(path.c_str(), S_IRUSR | S_IWUSR) == 0;
}

bool IsFile(const std::string& path) {
    std::error_code error;
    return fs::is_regular_file(path, error);
}

bool IsFolder(const std::string& path) {
    std::error_code error;
    return fs::is_directory(path, error);
}

bool MakeFolders(const std::string& path) {
    std::error_code error;
    fs::create_directories(path, error);
    return IsFolder(path);
}

bool DeleteFile(const std::string& path) {
    return ::unlink(path.c_str()) == 0;
}

std::int64_t FileSize(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0 || S_ISDIR(status.st_mode)) return -1;
    return status.st_size;
}

}  // namespace mailvane
