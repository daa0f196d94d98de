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
    int Connections() const { return connections_; }

private:
    void Run() {
        while (!stop_) {
            pollfd polled{listener_, POLLIN, 0};
            if (poll(&polled, 1, 20) <= 0) continue;
            const int fd = accept(listener_, nullptr, nullptr);
            if (fd < 0) return;
            Peer peer(fd);
            talk_(peer, connections_++);
        }
    }

    Talk talk_;
    int listener_;
    int port_ = 0;
    std::atomic<bool> stop_ = false;
    std::atomic<int> connections_ = 0;
    std::thread thread_;
};

/// What a well-behaved mail server does, but for the answers that a test changes.
struct MailServerScript {
    std::string greeting = "220 ready";
    std::string hello = "250 x";
    /// Another answer to a line; "" keeps the usual one, "!" hangs up, "?" says nothing any more.
    std::function<std::string(const std::string& line, int connection)> answer = {};

    std::vector<std::string> lines = {};  ///< what the client said, without the messages
    std::vector<std::string> messages = {};

    void Talk(Peer& peer, int connection) {
        peer.Send(greeting + "\r\n");
        while (const auto line = peer.ReadLine()) {
            lines.push_back(*line);
            std::string reply = answer ? answer(*line, connection) : "";
            if (reply.empty()) reply = Usual(peer, *line, connection);
            if (reply == "!") return;
            if (reply == "?") {
                while (peer.ReadLine())
                    continue;
                return;
            }
            peer.Send(reply + "\r\n");
            if (*line == "QUIT" || reply.substr(0, 3) == "421") return;
        }
    }

private:
    std::string Usual(Peer& peer, const std::string& line, int connection) {
        if (line.substr(0, 4) == "EHLO") return hello;
        if (line == "QUIT") return "221 bye";
        if (line == "DATA") {
            peer.Send("354 go\r\n");
            std::string text;
            while (const auto piece = peer.ReadLine()) {
                if (*piece == ".") return Queue(std::move(text), connection);
                text += *piece + "\n";
            }
            return "!";
        }
        if (line.substr(0, 4) == "BDAT") {
            return Queue(peer.ReadBytes(std::stoul(line.substr(5))), connection);
        }
        return "250 ok";
    }
    std::string Queue(std::string text, int connection) {
        messages.push_back(std::move(text));
        const std::string other = answer ? answer("(message)", connection) : "";
        return other.empty() ? "250 queued" : other;
    }
};

}  // namespace mailvane::test
