#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/net/Direction.h"
#include "platform/net/MailAccount.h"
#include "platform/net/NetError.h"

namespace mailvane {

/// A mailbox on a POP3 server (RFC 1939), one command at a time. Every call blocks, and meanwhile
/// calls `onIdle` at least every 50 ms; from there Cancel ends it. Where to is said by the
/// properties of MailAccount.
class PopClient : public MailAccount {
public:
    PopClient();
    ~PopClient();
    PopClient(const PopClient&) = delete;
    PopClient& operator=(const PopClient&) = delete;

    std::string DnsServers;   ///< "address[:port],..."; "" takes the system's
    int Timeout = 300;        ///< seconds of waiting for an answer
    int ConnectTimeout = 30;  ///< seconds

    /// Greeting and STLS. Fails as MailConnection::Open does.
    NetError Connect();
    /// Sends one line and waits for the answer's first line. "-ERR" is a failure with BadReply and
    /// the server's words. `secret` keeps what follows the first word out of the protocol, and off
    /// connections that may not carry it: LogonImpossible.
    NetError Command(const std::string& line, bool secret = false);
    /// Logs User on, if there is one. LogonImpossible, with nothing said to the server, when the
    /// connection may not carry a password.
    NetError LogOn();
    void Disconnect();  ///< with QUIT when connected
    void Cancel();      ///< the call that is under way fails with Canceled

    bool IsSecured() const;
    bool IsLocalPeer() const;
    const std::string& LastReply() const;  ///< the line, without its end

    std::function<void(Direction, const std::string& text)> onProtocol;
    std::function<void()> onIdle;

private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace mailvane
