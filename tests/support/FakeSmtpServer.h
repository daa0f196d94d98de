#pragma once

#include <arpa/inet.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <functional>
#include <mutex>
#include <string>
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
        std::string data;  ///< as on the wire, dots still stuffed
    };

    std::vector<std::string> extensions = {"PIPELINING", "8BITMIME"};
    /// Answer to a recipient; "" takes it.
    std::function<std::string(const std::string& address)> answerToRecipient;
    /// Number of the message, from 1, whose data gets no answer: the server hangs up. 0 for none.
    int hangUpAtMessage = 0;

    FakeSmtpServer() {
        listener_ = ::socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
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

    bool WaitFor(int socket) const {
        while (!stop_) {
            pollfd wanted{socket, POLLIN, 0};
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
        mode_ = Mode::Commands;
        output_ = "220 fake ready\r\n";
        open_ = true;
        char piece[65536];
        while (Flush(client) && open_ && WaitFor(client)) {
            const ssize_t count = ::recv(client, piece, sizeof piece, 0);
            if (count <= 0) return;
            input_.append(piece, static_cast<std::size_t>(count));
            while (open_ && TakeNext()) {
            }
        }
    }

    bool Flush(int client) {
        for (std::size_t done = 0; done < output_.size();) {
            const ssize_t count =
                ::send(client, output_.data() + done, output_.size() - done, MSG_NOSIGNAL);
            if (count <= 0) return false;
            done += static_cast<std::size_t>(count);
        }
        output_.clear();
        return true;
    }

    /// Handles one line, or the data of one message; false when more input is needed.
    bool TakeNext() {
        if (mode_ == Mode::Chunk) {
            if (input_.size() < chunk_) return false;
            current_.data = input_.substr(0, chunk_);
            input_.erase(0, chunk_);
            Accept();
            return true;
        }
        const std::string end = mode_ == Mode::Data ? "\r\n.\r\n" : "\r\n";
        const std::size_t found = input_.find(end);
        if (found == std::string::npos) return false;
        const std::string text = input_.substr(0, found);
        input_.erase(0, found + end.size());
        if (mode_ == Mode::Data) {
            current_.data = text + "\r\n";
            Accept();
        } else {
            {
                const std::lock_guard lock(mutex_);
                lines_.push_back(text);
            }
            Answer(text);
        }
        return true;
    }

    void Accept() {
        mode_ = Mode::Commands;
        if (++received_ == hangUpAtMessage) {
            open_ = false;
            return;
        }
        const std::lock_guard lock(mutex_);
        messages_.push_back(std::exchange(current_, {}));
        output_ += "250 OK\r\n";
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
            output_ += "250-fake\r\n";
            for (const std::string& extension : extensions)
                output_ += "250-" + extension + "\r\n";
            output_ += "250 SIZE 0\r\n";
        } else if (line == "AUTH LOGIN") {
            mode_ = Mode::Logon;
            logonLines_ = 0;
            output_ += "334 VXNlcm5hbWU6\r\n";
        } else if (line.starts_with("MAIL")) {
            current_ = {AddressIn(line), {}, {}};
            output_ += "250 OK\r\n";
        } else if (line.starts_with("RCPT")) {
            const std::string address = AddressIn(line);
            const std::string answer = answerToRecipient ? answerToRecipient(address) : "";
            if (answer.empty()) current_.to.push_back(address);
            output_ += answer.empty() ? "250 OK\r\n" : answer + "\r\n";
        } else if (line == "DATA") {
            if (!current_.to.empty()) mode_ = Mode::Data;
            output_ += current_.to.empty() ? "503 No recipients\r\n" : "354 Go on\r\n";
        } else if (line.starts_with("BDAT")) {
            chunk_ = static_cast<std::size_t>(std::stoul(line.substr(5)));
            mode_ = Mode::Chunk;
        } else {
            open_ = line != "QUIT";
            output_ += "250 OK\r\n";
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
    int logonLines_ = 0;
    int received_ = 0;
    bool open_ = true;
    std::thread thread_;
};

}  // namespace mailvane::test
