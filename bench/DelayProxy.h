#pragma once

#include <poll.h>

#include <array>
#include <cerrno>
#include <deque>
#include <string>

#include "ForkedServer.h"

namespace mailvane::bench {

/// Passes the bytes of one connection on to a port, each a fixed time after it came, in both
/// directions: a line of that length. Any number of pieces can be under way at once.
class DelayedConnection {
public:
    using Clock = std::chrono::steady_clock;

    DelayedConnection(int client, int port, Clock::duration oneWay)
        : ways_{Way{client, ConnectTo(port)}, Way{}}, oneWay_(oneWay) {
        ways_[1] = {ways_[0].to, ways_[0].from};
        for (const Way& way : ways_)
            DoNotDelay(way.from);
    }
    ~DelayedConnection() { close(ways_[0].to); }
    DelayedConnection(const DelayedConnection&) = delete;
    DelayedConnection& operator=(const DelayedConnection&) = delete;

    void Serve() {
        while (ways_[0].to >= 0 && !(ways_[0].ended && ways_[1].ended)) {
            WaitForWork();
            for (Way& way : ways_) {
                TakeIn(way);
                if (!PassOn(way)) return;
            }
        }
    }

private:
    struct Piece {
        Clock::time_point due;
        std::string bytes;  ///< none: the end
    };
    struct Way {
        int from = -1;
        int to = -1;
        std::deque<Piece> pieces;
        bool readAll = false;
        bool ended = false;
    };

    void WaitForWork() const {
        std::array<pollfd, 2> waiting{};
        auto due = Clock::time_point::max();
        for (std::size_t i = 0; i < ways_.size(); ++i) {
            waiting[i] = {ways_[i].readAll ? -1 : ways_[i].from, POLLIN, 0};
            if (!ways_[i].pieces.empty()) due = std::min(due, ways_[i].pieces.front().due);
        }
        const auto left = std::max(due - Clock::now(), Clock::duration(0));
        const auto seconds = std::chrono::floor<std::chrono::seconds>(left);
        const timespec time{seconds.count(), (left - seconds).count()};
        ppoll(waiting.data(), waiting.size(), due == Clock::time_point::max() ? nullptr : &time,
              nullptr);
    }

    void TakeIn(Way& way) {
        std::array<char, 65536> buffer;
        while (!way.readAll) {
            const ssize_t count = recv(way.from, buffer.data(), buffer.size(), MSG_DONTWAIT);
            if (count < 0 && (errno == EAGAIN || errno == EINTR)) return;
            way.readAll = count <= 0;
            way.pieces.push_back({Clock::now() + oneWay_,
                                  std::string(buffer.data(), static_cast<std::size_t>(
                                                                 std::max<ssize_t>(count, 0)))});
        }
    }

    /// False when the other side takes nothing more.
    static bool PassOn(Way& way) {
        for (; !way.pieces.empty() && way.pieces.front().due <= Clock::now();
             way.pieces.pop_front()) {
            const std::string& bytes = way.pieces.front().bytes;
            if (bytes.empty()) {
                shutdown(way.to, SHUT_WR);
                way.ended = true;
            } else if (send(way.to, bytes.data(), bytes.size(), MSG_NOSIGNAL) !=
                       static_cast<ssize_t>(bytes.size())) {
                return false;
            }
        }
        return true;
    }

    std::array<Way, 2> ways_;
    Clock::duration oneWay_;
};

/// A way to a port of this machine on which a round trip takes twice `oneWay`.
inline ForkedServer StartDelayProxy(int port, DelayedConnection::Clock::duration oneWay) {
    return ForkedServer([=](int fd) { DelayedConnection(fd, port, oneWay).Serve(); });
}

}  // namespace mailvane::bench
