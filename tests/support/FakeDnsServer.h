#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <map>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace mailvane::test {

/// A name server on the loopback, in a thread of its own, that knows what it is told before the
/// first question. Other names do not exist.
class FakeDnsServer {
public:
    struct Name {
        std::vector<std::pair<int, std::string>> exchangers;  ///< MX records; "" is the root
        std::string address;                                  ///< IPv4
        bool fails = false;                                   ///< SERVFAIL
        bool silent = false;
    };
    std::map<std::string, Name> names;

    FakeDnsServer() : socket_(::socket(AF_INET, SOCK_DGRAM, 0)) {
        sockaddr_in own{};
        own.sin_family = AF_INET;
        own.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        auto* generic = reinterpret_cast<sockaddr*>(&own);
        socklen_t length = sizeof own;
        if (::bind(socket_, generic, length) == 0 && ::getsockname(socket_, generic, &length) == 0)
            port_ = ntohs(own.sin_port);
        thread_ = std::thread([this] { Serve(); });
    }
    ~FakeDnsServer() {
        stop_ = true;
        thread_.join();
        ::close(socket_);
    }
    FakeDnsServer(const FakeDnsServer&) = delete;
    FakeDnsServer& operator=(const FakeDnsServer&) = delete;

    std::string Address() const { return "127.0.0.1:" + std::to_string(port_); }
    int ExchangerQuestions() const { return exchangerQuestions_; }

private:
    enum : int { TypeA = 1, TypeMx = 15, NoError = 0, ServerFailure = 2, NoSuchName = 3 };
    static constexpr std::size_t HeaderSize = 12;

    void Serve() {
        while (!stop_) {
            pollfd polled{socket_, POLLIN, 0};
            if (::poll(&polled, 1, 20) <= 0) continue;
            char piece[512];
            sockaddr_in client{};
            socklen_t length = sizeof client;
            auto* generic = reinterpret_cast<sockaddr*>(&client);
            const ssize_t count = ::recvfrom(socket_, piece, sizeof piece, 0, generic, &length);
            if (count < static_cast<ssize_t>(HeaderSize)) continue;
            const std::string answer = Answer({piece, static_cast<std::size_t>(count)});
            if (!answer.empty())
                ::sendto(socket_, answer.data(), answer.size(), 0, generic, length);
        }
    }

    std::string Answer(const std::string& query) {
        std::size_t at = HeaderSize;
        std::string name;
        while (at < query.size() && query[at] != 0) {
            const auto size = static_cast<std::size_t>(query[at]);
            name += (name.empty() ? "" : ".") + query.substr(at + 1, size);
            at += size + 1;
        }
        const std::string question = query.substr(HeaderSize, at + 5 - HeaderSize);
        const int type = query[at + 2];
        if (type == TypeMx) ++exchangerQuestions_;
        const auto known = names.find(name);
        if (known == names.end()) return Reply(query, question, NoSuchName, {});
        if (known->second.silent) return {};
        if (known->second.fails) return Reply(query, question, ServerFailure, {});
        return Reply(query, question, NoError, Records(known->second, type));
    }

    static std::vector<std::string> Records(const Name& name, int type) {
        std::vector<std::string> records;
        if (type == TypeMx)
            for (const auto& [preference, host] : name.exchangers)
                records.push_back(Record(type, Number(preference) + Labels(host)));
        in_addr address{};
        if (type == TypeA && ::inet_pton(AF_INET, name.address.c_str(), &address) == 1)
            records.push_back(
                Record(type, std::string(reinterpret_cast<const char*>(&address), sizeof address)));
        return records;
    }

    static std::string Number(std::size_t number) {
        return {static_cast<char>(number >> 8 & 0xFF), static_cast<char>(number & 0xFF)};
    }
    static std::string Number(int number) { return Number(static_cast<std::size_t>(number)); }
    static std::string Labels(std::string host) {
        std::string labels;
        while (!host.empty()) {
            const std::size_t end = std::min(host.find('.'), host.size());
            labels += static_cast<char>(end) + host.substr(0, end);
            host.erase(0, end + 1);
        }
        return labels + '\0';
    }
    /// Of the name that the question asks for.
    static std::string Record(int type, const std::string& data) {
        const std::string minute{0, 0, 0, 60};
        return Number(0xC000 + HeaderSize) + Number(type) + Number(1) + minute +
               Number(data.size()) + data;
    }
    static std::string Reply(const std::string& query, const std::string& question, int code,
                             const std::vector<std::string>& records) {
        std::string reply = query.substr(0, 2) + '\x81' + static_cast<char>(0x80 | code) +
                            Number(1) + Number(records.size()) + Number(0) + Number(0) + question;
        for (const std::string& record : records)
            reply += record;
        return reply;
    }

    int socket_;
    int port_ = 0;
    std::atomic<bool> stop_{false};
    std::atomic<int> exchangerQuestions_{0};
    std::thread thread_;
};

}  // namespace mailvane::test
