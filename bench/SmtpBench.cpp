// Messages a second to a mail sink on loopback, in the three forms of a transaction.
// Usage: SmtpBench [MESSAGES [BYTES]]

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "platform/net/SmtpClient.h"

namespace {

using mailvane::SmtpClient;

/// Takes every message and forgets it. The name in EHLO says what it offers.
class Sink {
public:
    explicit Sink(int fd) : fd_(fd) {
        const int on = 1;
        setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    }

    void Serve() {
        Answer("220 sink");
        std::string piece(1 << 18, '\0');
        while (!ended_ && Flush()) {
            const ssize_t count = recv(fd_, piece.data(), piece.size(), 0);
            if (count <= 0) return;
            input_.append(piece, 0, static_cast<std::size_t>(count));
            while (Step())
                continue;
        }
        Flush();
    }

private:
    bool Step() {
        if (skip_ > 0) {
            if (input_.size() < skip_) return false;
            input_.erase(0, skip_);
            skip_ = 0;
            Answer("250 queued");
        }
        const std::string_view stop = inData_ ? "\r\n.\r\n" : "\r\n";
        const std::size_t end = input_.find(stop);
        if (end == std::string::npos) return false;
        if (inData_) {
            inData_ = false;
            Answer("250 queued");
        } else {
            Command(input_.substr(0, end));
        }
        input_.erase(0, end + stop.size());
        return true;
    }

    void Command(const std::string& line) {
        if (line == "DATA") {
            inData_ = true;
            Answer("354 go");
        } else if (line.compare(0, 4, "BDAT") == 0) {
            skip_ = std::stoul(line.substr(5));
        } else if (line == "EHLO Pipelining") {
            Answer("250-sink\r\n250 PIPELINING");
        } else if (line == "EHLO Chunking") {
            Answer("250-sink\r\n250-PIPELINING\r\n250 CHUNKING");
        } else {
            ended_ = line == "QUIT";
            Answer("250 ok");
        }
    }

    void Answer(std::string_view line) {
        output_ += line;
        output_ += "\r\n";
    }

    bool Flush() {
        const ssize_t count = send(fd_, output_.data(), output_.size(), MSG_NOSIGNAL);
        const bool whole = count == static_cast<ssize_t>(output_.size());
        output_.clear();
        return whole;
    }

    int fd_;
    std::string input_;
    std::string output_;
    std::size_t skip_ = 0;
    bool inData_ = false;
    bool ended_ = false;
};

/// The port of a sink in a process of its own, which ends with this one's kill.
int StartSink(pid_t& child) {
    const int listener = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* generic = reinterpret_cast<sockaddr*>(&address);
    if (bind(listener, generic, size) != 0 || listen(listener, 8) != 0) return 0;
    getsockname(listener, generic, &size);
    child = fork();
    if (child == 0) {
        for (int fd = 0; (fd = accept(listener, nullptr, nullptr)) >= 0; close(fd)) {
            Sink(fd).Serve();
        }
        std::_Exit(0);
    }
    close(listener);
    return ntohs(address.sin_port);
}

double MessagesPerSecond(int port, const char* form, int count, std::size_t bytes) {
    SmtpClient client;
    client.MailServer = "127.0.0.1";
    client.MailPort = port;
    client.LocalName = form;
    client.From = "Sender <sender@example.com>";
    client.SendTo = "recipient@example.com";
    client.Subject = "Benchmark";
    client.OtherHeaders = "Content-Type: text/plain; charset=us-ascii\r\nReply-To: \r\n";
    while (client.MessageText.size() < bytes) {
        client.MessageText += "A line of text as long as lines of mail usually are, no more.\r\n";
    }
    if (client.SetAction(SmtpClient::Action::Connect).Failed()) return 0;
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < count; ++i) {
        const mailvane::NetError error = client.SetAction(SmtpClient::Action::Send);
        if (error.Failed()) {
            std::fprintf(stderr, "%s\n", error.description.c_str());
            return 0;
        }
    }
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    client.SetAction(SmtpClient::Action::Disconnect).Ignore();
    return count / taken.count();
}

}  // namespace

int main(int argc, char** argv) {
    const int count = argc > 1 ? std::atoi(argv[1]) : 20000;
    const std::size_t bytes = argc > 2 ? std::strtoul(argv[2], nullptr, 10) : 2048;
    pid_t child = 0;
    const int port = StartSink(child);
    double first = 0;
    for (const char* form : {"Plain", "Pipelining", "Chunking"}) {
        const double rate = MessagesPerSecond(port, form, count, bytes);
        if (first == 0) first = rate;
        std::printf("%-11s %9.0f messages/s  %.2f\n", form, rate, rate / first);
    }
    kill(child, SIGTERM);
    waitpid(child, nullptr, 0);
    return 0;
}
