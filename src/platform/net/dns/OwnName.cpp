#include "platform/net/dns/OwnName.h"

#include <netdb.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <memory>

#include "platform/net/dns/NameResolver.h"

namespace mailvane {

namespace {

constexpr std::chrono::seconds Patience{2};
constexpr const char* AnyPort = "25";

bool IsFullName(const std::string& name) {
    return name.find('.') != std::string::npos && !name.ends_with('.') && !IsIpAddress(name);
}

std::string TextOf(const sockaddr_storage& address, socklen_t size) {
    std::array<char, NI_MAXHOST> text{};
    const auto* generic = reinterpret_cast<const sockaddr*>(&address);
    getnameinfo(generic, size, text.data(), text.size(), nullptr, 0, NI_NUMERICHOST);
    const std::string whole = text.data();
    return whole.substr(0, whole.find('%'));  // without the interface
}

}  // namespace

std::string OwnFullName(const KeepWaiting& keepWaiting) {
    std::array<char, 256> host{};
    if (gethostname(host.data(), host.size() - 1) != 0) return {};
    if (IsFullName(host.data())) return host.data();
    const ResolvedName known =
        ResolveName(host.data(), "", NetClock::now() + Patience, keepWaiting);
    return IsFullName(known.fullName) ? known.fullName : std::string();
}

std::string OwnAddressLiteral(const std::string& otherAddress) {
    addrinfo hints{};
    hints.ai_flags = AI_NUMERICHOST | AI_NUMERICSERV;
    hints.ai_socktype = SOCK_DGRAM;
    addrinfo* found = nullptr;
    std::string own;
    if (getaddrinfo(otherAddress.c_str(), AnyPort, &hints, &found) == 0) {
        const std::unique_ptr<addrinfo, decltype(&freeaddrinfo)> other(found, &freeaddrinfo);
        // Connecting a datagram socket sends nothing; it only chooses the way.
        const int probe = socket(other->ai_family, SOCK_DGRAM, 0);
        sockaddr_storage address{};
        socklen_t size = sizeof address;
        if (connect(probe, other->ai_addr, other->ai_addrlen) == 0 &&
            getsockname(probe, reinterpret_cast<sockaddr*>(&address), &size) == 0)
            own = TextOf(address, size);
        close(probe);
    }
    if (own.empty()) own = "127.0.0.1";
    return (own.find(':') == std::string::npos ? "[" : "[IPv6:") + own + "]";
}

std::string HelloName(std::string name) {
    constexpr std::string_view Marks = ".-[]:";
    std::erase_if(name, [&](char c) {
        const bool plain =
            (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
        return !plain && Marks.find(c) == std::string_view::npos;
    });
    return name;
}

}  // namespace mailvane
