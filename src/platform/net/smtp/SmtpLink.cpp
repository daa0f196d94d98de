#include "platform/net/smtp/SmtpLink.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace mailvane {

namespace {

constexpr std::size_t ReceiveRoom = 16 * 1024;
// TLS takes a write as a whole or not at all; one record at a time lets a slow line show progress.
constexpr std::size_t TlsRecord = 16 * 1024;
constexpr std::chrono::milliseconds IdleStep{10};

}  // namespace

SmtpLink::SmtpLink(Events events)
    : events_(std::move(events)),
      session_([this](Direction direction, std::string_view line) {
          moved_ = true;
          events_.onLine(direction, line);
      }),
      connection_(
          [this](Direction direction, std::string_view bytes) { OnBeginning(direction, bytes); }),
      buffer_(ReceiveRoom) {}

void SmtpLink::OnBeginning(Direction direction, std::string_view bytes) {
    NetError error = session_.Observe(direction, bytes);
    if (beginning_.Ok()) beginning_ = std::move(error);
}

NetError SmtpLink::Open(const MailPeer& peer) {
    session_.Open();
    beginning_ = {};
    NetError error = connection_.Open(peer, [this] { return KeepGoing() && beginning_.Ok(); });
    if (beginning_.Failed()) {
        connection_.Close();
        return beginning_;
    }
    const bool byServer = error.code == net_error::BadReply || error.code == net_error::TlsFailed;
    return byServer && session_.LastReply().Refused() ? session_.LastReply().AsError() : error;
}

NetError SmtpLink::Run(int timeoutSeconds) {
    const auto patience = std::chrono::seconds(timeoutSeconds);
    auto deadline = NetClock::now() + patience;
    lost_ = false;
    while (!session_.Done()) {
        if (!KeepGoing()) return GiveUp({net_error::Canceled, "The operation was canceled."});
        moved_ = false;
        const bool blocked = !Write();
        // What was just sent has no answer yet, and the wait below ends with the first byte of one.
        if (!moved_ || connection_.IsSecured()) Receive();
        if (session_.Done()) break;
        if (lost_) {
            return GiveUp({net_error::ConnectionLost, "The server closed the connection."});
        }
        if (moved_) deadline = NetClock::now() + patience;
        if (!blocked && !session_.Output().empty()) continue;
        if (NetClock::now() >= deadline) {
            return GiveUp({net_error::TimedOut, "The server did not answer in time."});
        }
        connection_.Wait(blocked, WaitTime());
    }
    if (session_.Broken()) connection_.Close();
    return session_.Result();
}

/// False when the socket takes no more at the moment.
bool SmtpLink::Write() {
    std::string_view output = session_.Output();
    if (output.empty()) return true;
    if (connection_.IsSecured()) output = output.substr(0, TlsRecord);
    std::size_t sent = 0;
    const MailConnection::Outcome outcome = connection_.Send(output, sent);
    if (outcome == MailConnection::Outcome::Closed) lost_ = true;
    if (sent == 0) return false;
    session_.Written(sent);
    moved_ = true;
    events_.onSent();
    return true;
}

void SmtpLink::Receive() {
    while (!session_.Done()) {
        std::size_t count = 0;
        const auto outcome = connection_.Receive(buffer_.data(), buffer_.size(), count);
        if (outcome == MailConnection::Outcome::Closed) lost_ = true;
        if (outcome != MailConnection::Outcome::Done) return;
        session_.Receive({buffer_.data(), count});
        // A socket that did not fill the buffer is empty; what TLS holds back only it knows.
        if (count < buffer_.size() && !connection_.IsSecured()) return;
    }
}

bool SmtpLink::IsAlive() {
    if (!connection_.IsOpen()) return false;
    while (true) {
        std::size_t count = 0;
        const auto outcome = connection_.Receive(buffer_.data(), buffer_.size(), count);
        if (outcome == MailConnection::Outcome::Again) return true;
        if (outcome == MailConnection::Outcome::Done) session_.Receive({buffer_.data(), count});
        if (outcome == MailConnection::Outcome::Closed || session_.Broken()) {
            connection_.Close();
            return false;
        }
    }
}

bool SmtpLink::KeepGoing() {
    const auto now = NetClock::now();
    if (now - lastIdle_ >= IdleStep) {
        lastIdle_ = now;
        events_.onIdle();
    }
    return !canceled_;
}

int SmtpLink::WaitTime() const {
    const auto passed = NetClock::now() - lastIdle_;
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(WaitStep - passed);
    return static_cast<int>(std::clamp<std::int64_t>(left.count(), 1, WaitStep.count()));
}

NetError SmtpLink::GiveUp(NetError cause) {
    connection_.Close();
    return session_.Interrupted(std::move(cause));
}

}  // namespace mailvane
