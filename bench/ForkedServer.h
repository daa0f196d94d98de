#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <functional>

#include "BenchSupport.h"

namespace mailvane::bench {

inline void DoNotDelay(int fd) {
    const int on = 1;
    setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

inline sockaddr_in Loopback(int port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    return address;
}

/// A connection to a port of this machine, -1 when nobody takes it.
inline int ConnectTo(int port) {
    const int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const sockaddr_in address = Loopback(port);
    if (connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) return fd;
    close(fd);
    return -1;
}

/// A server on a port of the loopback in a process of its own: gives each connection in turn to
/// `serve`, and ends with this object or this process.
class ForkedServer {
public:
    explicit ForkedServer(const std::function<void(int fd)>& serve) {
        const int listener = Listen();
        const pid_t parent = getpid();
        child_ = fork();
        if (child_ == 0) {
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            if (getppid() != parent) std::_Exit(0);
            for (int fd = 0; (fd = accept(listener, nullptr, nullptr)) >= 0; close(fd))
                serve(fd);
            std::_Exit(0);
        }
        close(listener);
        if (child_ < 0) Fail("Cannot start a process");
    }
    ~ForkedServer() {
        kill(child_, SIGKILL);
        waitpid(child_, nullptr, 0);
    }
    ForkedServer(const ForkedServer&) = delete;
    ForkedServer& operator=(const ForkedServer&) = delete;

    int Port() const { return port_; }

private:
    int Listen() {
        const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_in address = Loopback(0);
        auto* generic = reinterpret_cast<sockaddr*>(&address);
        socklen_t size = sizeof address;
        if (bind(listener, generic, size) != 0 || listen(listener, 8) != 0 ||
            getsockname(listener, generic, &size) != 0)
            Fail("Cannot listen on the loopback");
        port_ = ntohs(address.sin_port);
        return listener;
    }

    pid_t child_ = -1;
    int port_ = 0;
};

}  // namespace mailvane::bench
