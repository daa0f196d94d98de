#include "platform/os/FolderClaim.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>

#include "platform/os/Files.h"

namespace mailvane {

namespace {

constexpr const char* ClaimFile = "/.in-use";
constexpr char TakenMark = 't';
constexpr char RefusedMark = 'r';
constexpr std::size_t LongestRequest = 32768;

struct Address {
    sockaddr_un name{};
    socklen_t size = 0;

    const sockaddr* Generic() const { return reinterpret_cast<const sockaddr*>(&name); }
};

/// A name outside the file system (it begins with a NUL): nothing stays behind after a crash. The
/// claim's file makes it the folder's own, by whatever path the folder is reached.
Address ListenerOf(int file) {
    struct stat status {};
    ::fstat(file, &status);
    const std::string text = "mailvane-" + std::to_string(::getuid()) + "-" +
                             std::to_string(status.st_dev) + "-" + std::to_string(status.st_ino);
    Address address;
    address.name.sun_family = AF_UNIX;
    const std::size_t length = std::min(text.size(), sizeof address.name.sun_path - 1);
    std::copy_n(text.begin(), length, address.name.sun_path + 1);
    address.size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + length);
    return address;
}

int DatagramSocket() {
    return ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
}

}  // namespace

FolderClaim::FolderClaim(const std::string& folder) {
    MakeFolders(folder);
    file_ = ::open((folder + ClaimFile).c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (file_ < 0) return;
    held_ = ::flock(file_, LOCK_EX | LOCK_NB) == 0;
    if (held_)
        WriteHolder();
    else
        ReadHolder();
}

FolderClaim::~FolderClaim() {
    if (socket_ >= 0) ::close(socket_);
    if (file_ >= 0) ::close(file_);
}

void FolderClaim::WriteHolder() const {
    const std::string process = std::to_string(::getpid()) + "\n";
    // Only a help to the reader: the lock is what counts.
    if (::ftruncate(file_, 0) != 0 || ::pwrite(file_, process.data(), process.size(), 0) < 0)
        return;
}

void FolderClaim::ReadHolder() {
    std::array<char, 32> text{};
    if (::pread(file_, text.data(), text.size() - 1, 0) > 0) holder_ = std::atoi(text.data());
}

void FolderClaim::Listen() {
    if (!held_ || file_ < 0 || socket_ >= 0) return;
    socket_ = DatagramSocket();
    const Address address = ListenerOf(file_);
    if (socket_ >= 0 && ::bind(socket_, address.Generic(), address.size) == 0) return;
    ::close(socket_);
    socket_ = -1;
}

std::optional<StartRequest> FolderClaim::TakeRequest() {
    std::array<char, LongestRequest> text{};
    Address sender;
    sender.size = sizeof sender.name;
    if (socket_ < 0) return {};
    const ssize_t length = ::recvfrom(socket_, text.data(), text.size(), 0,
                                      reinterpret_cast<sockaddr*>(&sender.name), &sender.size);
    if (length < 0) return {};
    StartRequest request;
    request.commandLine.assign(text.data(), static_cast<std::size_t>(length));
    request.sender.assign(reinterpret_cast<const char*>(&sender.name), sender.size);
    return request;
}

void FolderClaim::Answer(const StartRequest& request, bool taken) const {
    // One that waits no longer misses nothing.
    static_cast<void>(::sendto(socket_, taken ? &TakenMark : &RefusedMark, 1, MSG_NOSIGNAL,
                               reinterpret_cast<const sockaddr*>(request.sender.data()),
                               static_cast<socklen_t>(request.sender.size())));
}

HandedOver FolderClaim::HandOver(const std::string& commandLine,
                                 std::chrono::milliseconds wait) const {
    const int sender = held_ ? -1 : DatagramSocket();
    if (sender < 0) return HandedOver::NotAnswered;
    const Address holder = ListenerOf(file_);
    sockaddr own{};
    own.sa_family = AF_UNIX;  // the kernel chooses the name that the answer goes to
    HandedOver outcome = HandedOver::NotAnswered;
    pollfd answered{sender, POLLIN, 0};
    char mark = 0;
    if (::bind(sender, &own, sizeof own.sa_family) == 0 &&
        ::sendto(sender, commandLine.data(), commandLine.size(), MSG_NOSIGNAL, holder.Generic(),
                 holder.size) == static_cast<ssize_t>(commandLine.size()) &&
        ::poll(&answered, 1, static_cast<int>(wait.count())) == 1 &&
        ::recv(sender, &mark, 1, 0) == 1)
        outcome = mark == TakenMark ? HandedOver::Taken : HandedOver::Refused;
    ::close(sender);
    return outcome;
}

}  // namespace mailvane
