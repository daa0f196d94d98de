#include "platform/tables/OutputFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>

namespace mailvane {

namespace {
constexpr std::size_t BlockSize = 256 * 1024;
}

OutputFile::OutputFile(std::string path)
    : path_(std::move(path)),
      temporary_(path_ + ".tmp" + std::to_string(::getpid())),
      handle_(::open(temporary_.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666)) {
    if (handle_ < 0) Fail();
}

OutputFile::~OutputFile() {
    if (handle_ < 0) return;
    ::close(handle_);
    ::unlink(temporary_.c_str());
}

bool OutputFile::Fail() {
    if (error_.empty())
        error_ = "The file '" + path_ + "' cannot be written: " + std::strerror(errno) + ".";
    return false;
}

bool OutputFile::Write(std::string_view text) {
    buffer_.append(text);
    return buffer_.size() < BlockSize ? error_.empty() : Flush();
}

bool OutputFile::Flush() {
    std::string_view rest = buffer_;
    while (error_.empty() && !rest.empty()) {
        const ssize_t count = ::write(handle_, rest.data(), rest.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return Fail();
        rest.remove_prefix(static_cast<std::size_t>(count));
    }
    buffer_.clear();
    return error_.empty();
}

bool OutputFile::Finish() {
    if (!Flush()) return false;
    // The name may lead to a file that a writer of its own has put there; its bytes count.
    if (const int written = ::open(temporary_.c_str(), O_RDONLY | O_CLOEXEC); written >= 0) {
        const bool flushed = ::fsync(written) == 0;
        ::close(written);
        if (!flushed) return Fail();
    }
    if (std::rename(temporary_.c_str(), path_.c_str()) != 0) return Fail();
    ::close(std::exchange(handle_, -1));
    return true;
}

}  // namespace mailvane
