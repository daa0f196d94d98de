#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace mailvane::test {

/// The server's end of one connection; every wait is bounded.
class Peer {
public:
    explicit Peer(int fd) : fd_(fd) {
        const int on = 1;  // each answer leaves at once
        setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    }
    ~Peer() { close(fd_); }
    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;

    void Send(const std::string& text) const {
        const ssize_t ignored = send(fd_, text.data(), text.size(), MSG_NOSIGNAL);
        static_cast<void>(ignored);
    }
    /// Without CR LF; nothing at the end of the connection.
    std::optional<std::string> ReadLine() {
        std::size_t end = 0;
        while ((end = buffer_.find("\r\n")) == std::string::npos) {
            if (!Fill()) return std::nullopt;
        }
        std::string line = buffer_.substr(0, end);
        buffer_.erase(0, end + 2);
        return line;
    }
    std::string ReadBytes(std::size_t count) {
        while (buffer_.size() < count && Fill())
            continue;
        std::string bytes = buffer_.substr(0, count);
        buffer_.erase(0, count);
        return bytes;
    }

private:
    bool Fill() {
        pollfd polled{fd_, POLLIN, 0};
        if (poll(&polled, 1, 10000) <= 0) return false;
        std::string piece(65536, '\0');
        const ssize_t count = recv(fd_, piece.data(), piece.size(), 0);
        if (count <= 0) return false;
        buffer_.append(piece, 0, static_cast<std::size_t>(count));
        return true;
    }

    int fd_;
    std::string buffer_;
};

/// A server on a free loopback port: `talk` holds each conversation, one after another, with the
/// connection's number from 0.
class LoopbackServer {
public:
    using Talk = std::function<void(Peer&, int number)>;

    explicit LoopbackServer(Talk talk)
        : talk_(std::move(talk)), listener_(socket(AF_INET, SOCK_STREAM, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        auto* generic = reinterpret_cast<sockaddr*>(&address);
        if (bind(listener_, generic, size) != 0 || listen(listener_, 8) != 0) return;
        getsockname(listener_, generic, &size);
        port_ = ntohs(address.sin_port);
        thread_ = std::thread([this] { Run(); });
    }
    ~LoopbackServer() {
        stop_ = true;
        if (thread_.joinable()) thread_.join();
        close(listener_);
    }
    LoopbackServer(const LoopbackServer&) = delete;
    LoopbackServer& operator=(const LoopbackServer&) = delete;

    int Port() const { return port_; }

private:
    void Run() {
        for (int number = 0; !stop_;) {
            pollfd polled{listener_, POLLIN, 0};
            if (poll(&polled, 1, 20) <= 0) continue;
            const int fd = accept(listener_, nullptr, nullptr);
            if (fd < 0) return;
            Peer peer(fd);
            talk_(peer, number++);
        }
    }

    Talk talk_;
    int listener_;
    int port_ = 0;
    std::atomic<bool> stop_ = false;
    std::thread thread_;
};

}  // namespace mailvane::test
