#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/net/smtp/SmtpClient.h"

namespace mailvane {

/// A mailbox on a POP3 server (RFC 1939), one command at a time. Every call blocks, and meanwhile
/// calls `onIdle` at least every 50 ms; from there Cancel ends it.
class PopClient {
public:
    PopClient();
    ~PopClient();
    PopClient(const PopClient&) = delete;
    PopClient& operator=(const PopClient&) = delete;

    // Where to, and how. With automatic security port 995 means implicit TLS.
    std::string MailServer;
    int MailPort = 110;
    Security ConnectionSecurity = Security::Automatic;
    bool VerifyCertificate = true;
    std::string CertificateAuthorities;  ///< a PEM file in place of the system's; "" for those
    std::string DnsServers;              ///< "address[:port],..."; "" takes the system's
    int Timeout = 300;                   ///< seconds of waiting for an answer
    int ConnectTimeout = 30;             ///< seconds

    /// Greeting and STLS. Fails as MailConnection::Open does.
    NetError Connect();
    /// Sends one line and waits for the answer's first line. "-ERR" is a failure with BadReply and
    /// the server's words. `secret` shows what follows the first word as "***" and goes over an
    /// unsecured connection to this machine only, unless security is None: else LogonImpossible.
    NetError Command(const std::string& line, bool secret = false);
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
