#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/net/MailConnection.h"
#include "platform/net/smtp/SmtpSession.h"

namespace mailvane {

/// A connection with its conversation, and the loop that moves bytes between the two.
class SmtpLink {
public:
    struct Events {
        SmtpSession::LineEvent onLine;
        std::function<void()> onSent;  ///< bytes went out
        std::function<void()> onIdle;
    };

    explicit SmtpLink(Events events);

    /// Connects, secures the connection and says EHLO. A refusal is told in the server's words,
    /// with its code.
    NetError Open(const MailPeer& peer);
    /// Runs the operation that was begun on Session() to its end. A connection on which the
    /// conversation cannot go on is closed.
    NetError Run(int timeoutSeconds);
    /// Takes what the server said since the last operation. False when it hung up or is about to;
    /// the connection is closed then.
    bool IsAlive();
    void Close() { connection_.Close(); }

    void Cancel() { canceled_ = true; }
    void ClearCancel() { canceled_ = false; }

    SmtpSession& Session() { return session_; }
    const SmtpSession& Session() const { return session_; }
    const MailConnection& Connection() const { return connection_; }

private:
    bool KeepGoing();
    bool Write();
    void Receive();
    int WaitTime() const;
    NetError GiveUp(NetError cause);
    void OnBeginning(Direction direction, std::string_view bytes);

    Events events_;
    SmtpSession session_;
    MailConnection connection_;
    std::vector<char> buffer_;
    NetClock::time_point lastIdle_{};
    NetError beginning_;  // what was wrong with the server's first lines
    bool moved_ = false;  // bytes went out or a line came in
    bool lost_ = false;
    bool canceled_ = false;
};

}  // namespace mailvane
