#pragma once

#include <arpa/inet.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace mailvane::test {

/// A mail server on the loopback, in a thread of its own: takes one connection after another and
/// answers as it is told. Set the behaviour before the first connection.
class FakeSmtpServer {
public:
    struct Message {
        std::string from;
        std::vector<std::string> to;
        std::string data;  ///< as on the wire, without stuffed dots
    };

    std::vector<std::string> extensions = {"PIPELINING", "8BITMIME"};
    /// Answer to a recipient; "" takes it.
    std::function<std::string(const std::string& address)> answerToRecipient;
    /// Another answer to a step: "(greeting)", a line, "(body)" once in the middle of long data,
    /// "(end)" behind the data. "" keeps the usual one, "!" hangs up, "?" neither says nor reads
    /// anything any more, "*" and a text says that text without end; 421 hangs up too. `message` is
    /// what is known of the present one.
    std::function<std::string(const std::string& step, const Message& message)> answer;
    /// Number of the message, from 1, whose data gets no answer: the server hangs up. 0 for none.
    int hangUpAtMessage = 0;

    /// On another address of the loopback, and on a port of the test's choice.
    explicit FakeSmtpServer(const std::string& host = "127.0.0.1", int port = 0) {
        listener_ = ::socket(AF_INET, SOCK_STREAM, 0);
        const int room = 64 * 1024;  // a server that stops reading is felt soon
        ::setsockopt(listener_, SOL_SOCKET, SO_RCVBUF, &room, sizeof room);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(static_cast<std::uint16_t>(port));
        ::inet_pton(AF_INET, host.c_str(), &address.sin_addr);
        const int on = 1;  // a port whose earlier connections still fade out
        ::setsockopt(listener_, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
        auto* generic = reinterpret_cast<sockaddr*>(&address);
        socklen_t length = sizeof address;
        if (::bind(listener_, generic, length) == 0 && ::listen(listener_, 8) == 0 &&
            ::getsockname(listener_, generic, &length) == 0)
            port_ = ntohs(address.sin_port);
        thread_ = std::thread([this] { Serve(); });
    }
    ~FakeSmtpServer() {
        stop_ = true;
        thread_.join();
        ::close(listener_);
    }
    FakeSmtpServer(const FakeSmtpServer&) = delete;
    FakeSmtpServer& operator=(const FakeSmtpServer&) = delete;

    int Port() const { return port_; }
    int Connections() const { return connections_; }
    std::vector<Message> Messages() const {
        const std::lock_guard lock(mutex_);
        return messages_;
    }
    /// The lines that clients sent outside of message data.
    std::vector<std::string> Lines() const {
        const std::lock_guard lock(mutex_);
        return lines_;
    }

private:
    enum class Mode { Commands, Data, Chunk, Logon };

    bool WaitFor(int socket, short event = POLLIN) const {
        while (!stop_) {
            pollfd wanted{socket, event, 0};
            if (::poll(&wanted, 1, 20) > 0) return true;
        }
        return false;
    }

    void Serve() {
        while (WaitFor(listener_)) {
            const int client = ::accept(listener_, nullptr, nullptr);
            if (client < 0) continue;
            const int on = 1;
            ::setsockopt(client, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
            ++connections_;
            Talk(client);
            ::close(client);
        }
    }

    void Talk(int client) {
        input_.clear();
        output_.clear();
        ending_.clear();
        mode_ = Mode::Commands;
        StartMessage("");
        Say("(greeting)", "220 fake ready");
        char piece[65536];
        while (Flush(client) && ending_.empty() && WaitFor(client)) {
            const ssize_t count = ::recv(client, piece, sizeof piece, 0);
            if (count <= 0) return;
            input_.append(piece, static_cast<std::size_t>(count));
            while (ending_.empty() && TakeNext()) {
            }
        }
        if (ending_ == "?") BeSilent(client);
        if (ending_[0] == '*') Flood(client);
    }

    bool Flush(int client) {
        for (std::size_t done = 0; done < output_.size();) {
            if (!WaitFor(client, POLLOUT)) return false;
            const ssize_t count = ::send(client, output_.data() + done, output_.size() - done,
                                         MSG_NOSIGNAL | MSG_DONTWAIT);
            if (count <= 0) return false;
            done += static_cast<std::size_t>(count);
        }
        output_.clear();
        return true;
    }

    /// Until the client has left. One that left unsent bytes behind is not seen to leave; then its
    /// next connection tells.
    void BeSilent(int client) const {
        while (!stop_) {
            pollfd wanted[] = {{client, POLLRDHUP, 0}, {listener_, POLLIN, 0}};
            if (::poll(wanted, 2, 20) > 0) return;
        }
    }

    void Flood(int client) {
        constexpr int Most = 1000;
        std::string many;
        while (many.size() < 64 * 1024)
            many += ending_.substr(1);
        for (int i = 0; i < Most; ++i) {
            output_ = many;
            if (!Flush(client)) return;
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }

    /// Gives the usual answer, or what the test wants in its place. True for a friendly one.
    bool Say(const std::string& step, const std::string& usual) {
        const std::string other = answer ? answer(step, current_) : "";
        const std::string reply = other.empty() ? usual : other;
        if (reply.empty()) return true;
        const bool ends = reply == "!" || reply == "?" || reply[0] == '*';
        if (ends) {
            ending_ = reply;
        } else {
            output_ += reply + "\r\n";
            if (reply.starts_with("421")) ending_ = "!";
        }
        return reply[0] == '2' || reply[0] == '3';
    }

    /// Handles one line, or what has come of the data; false when more input is needed.
    bool TakeNext() {
        if (mode_ == Mode::Chunk) return TakeChunk();
        const std::size_t end = input_.find("\r\n");
        if (end == std::string::npos) return false;
        const std::string line = input_.substr(0, end);
        if (mode_ == Mode::Data) return TakeData();
        input_.erase(0, end + 2);
        {
            const std::lock_guard lock(mutex_);
            lines_.push_back(line);
        }
        Answer(line);
        return true;
    }

    /// Takes all whole lines, up to the end of the data.
    bool TakeData() {
        std::size_t at = 0;
        for (std::size_t end = 0; (end = input_.find("\r\n", at)) != std::string::npos;) {
            std::string_view line = std::string_view(input_).substr(at, end + 2 - at);
            at = end + 2;
            if (line == ".\r\n") {
                input_.erase(0, at);
                Accept();
                return true;
            }
            current_.data += line.substr(line[0] == '.' ? 1 : 0);
        }
        input_.erase(0, at);
        TellBody();
        return false;
    }

    bool TakeChunk() {
        const std::string piece = input_.substr(0, chunk_);
        input_.erase(0, piece.size());
        chunk_ -= piece.size();
        current_.data += piece;
        if (chunk_ > 0) {
            TellBody();
            return false;
        }
        mode_ = Mode::Commands;
        if (lastChunk_) {
            Accept();
        } else {
            Say("(chunk)", "250 Go on");
        }
        return true;
    }

    void TellBody() {
        constexpr std::size_t Middle = 256 * 1024;
        if (bodyTold_ || current_.data.size() < Middle) return;
        bodyTold_ = true;
        Say("(body)", "");
    }

    void Accept() {
        mode_ = Mode::Commands;
        if (++received_ == hangUpAtMessage) {
            ending_ = "!";
        } else if (current_.to.empty()) {
            Say("(end)", "503 No recipients");
        } else if (Say("(end)", "250 OK")) {
            const std::lock_guard lock(mutex_);
            messages_.push_back(std::move(current_));
        }
        StartMessage("");
    }

    void StartMessage(const std::string& from) {
        current_ = {from, {}, {}};
        bodyTold_ = false;
    }

    static std::string AddressIn(const std::string& line) {
        const std::size_t open = line.find('<');
        return line.substr(open + 1, line.find('>') - open - 1);
    }

    void Answer(const std::string& line) {
        if (mode_ == Mode::Logon) {
            output_ += ++logonLines_ == 2 ? "235 Welcome\r\n" : "334 UGFzc3dvcmQ6\r\n";
            if (logonLines_ == 2) mode_ = Mode::Commands;
        } else if (line.starts_with("EHLO")) {
            std::string usual = "250-fake\r\n";
            for (const std::string& extension : extensions)
                usual += "250-" + extension + "\r\n";
            Say(line, usual + "250 SIZE 0");
        } else if (line == "AUTH LOGIN") {
            logonLines_ = 0;
            if (Say(line, "334 VXNlcm5hbWU6")) mode_ = Mode::Logon;
        } else if (line.starts_with("MAIL")) {
            StartMessage(AddressIn(line));
            if (!Say(line, "250 OK")) StartMessage("");
        } else if (line.starts_with("RCPT")) {
            const std::string address = AddressIn(line);
            const std::string own = answerToRecipient ? answerToRecipient(address) : "";
            const bool known = !current_.from.empty();
            if (Say(line, !known ? "503 Who sends?" : own.empty() ? "250 OK" : own) && known)
                current_.to.push_back(address);
        } else if (line == "DATA") {
            const bool wanted = !current_.to.empty();
            if (Say(line, wanted ? "354 Go on" : "503 No recipients") && wanted) mode_ = Mode::Data;
        } else if (line.starts_with("BDAT")) {
            chunk_ = static_cast<std::size_t>(std::stoul(line.substr(5)));
            lastChunk_ = line.ends_with(" LAST");
            mode_ = Mode::Chunk;
            Say(line, "");
        } else {
            Say(line, "250 OK");
            if (line == "QUIT") ending_ = "!";
        }
    }

    int listener_ = -1;
    int port_ = 0;
    std::atomic<bool> stop_{false};
    std::atomic<int> connections_{0};
    mutable std::mutex mutex_;
    std::vector<Message> messages_;
    std::vector<std::string> lines_;
    // Of the present connection, used by the thread alone.
    std::string input_;
    std::string output_;
    Mode mode_ = Mode::Commands;
    Message current_;
    std::size_t chunk_ = 0;
    bool lastChunk_ = false;
    bool bodyTold_ = false;
    int logonLines_ = 0;
    int received_ = 0;
    std::string ending_;  // why the conversation stops, as `answer` tells it
    std::thread thread_;
};

}  // namespace mailvane::test
