#pragma once

#include <arpa/inet.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <string>
#include <string_view>

#include "ForkedServer.h"

namespace mailvane::bench {

/// What a sink offers in its answer to EHLO.
enum class Offer { Nothing, Pipelining, Chunking };

/// One connection of a server that takes every message and forgets it.
class MailSink {
public:
    MailSink(int fd, Offer offer) : fd_(fd), offer_(offer) { DoNotDelay(fd); }

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
        } else if (line.starts_with("BDAT")) {
            skip_ = std::stoul(line.substr(5));
        } else if (line.starts_with("EHLO")) {
            Answer("250-sink");
            if (offer_ != Offer::Nothing) Answer("250-PIPELINING");
            if (offer_ == Offer::Chunking) Answer("250-CHUNKING");
            Answer("250 ok");
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
    Offer offer_;
    std::string input_;
    std::string output_;
    std::size_t skip_ = 0;
    bool inData_ = false;
    bool ended_ = false;
};

/// A sink in a process of its own, one connection after the other.
inline ForkedServer StartMailSink(Offer offer) {
    return ForkedServer([offer](int fd) { MailSink(fd, offer).Serve(); });
}

}  // namespace mailvane::bench
