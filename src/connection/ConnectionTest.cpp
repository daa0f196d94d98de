#include "connection/ConnectionTest.h"

#include "core/text/Text.h"
#include "platform/net/dns/NameResolver.h"
#include "platform/net/mime/Base64.h"
#include "platform/net/pop/PopClient.h"

namespace mailvane {

namespace {

constexpr int ConnectTimeout = 30;  // seconds
constexpr int AnswerTimeout = 60;   // seconds; a person is waiting

/// The steps of a test, in their order. Each routine is false when the test ends there.
template <class Client>
class AccountTest {
public:
    AccountTest(const MailAccount& account, const ConnectionTestEvents& events)
        : account_(account), events_(events) {
        client_.MailServer = account.server;
        client_.MailPort = account.port;
        client_.ConnectionSecurity = account.security;
        client_.VerifyCertificate = account.verifyCertificate;
        client_.CertificateAuthorities = account.certificateAuthorities;
        client_.ConnectTimeout = ConnectTimeout;
        client_.Timeout = AnswerTimeout;
        client_.onIdle = [this] {
            if (!events_.goOn()) End();
        };
        client_.onProtocol = [this](Direction direction, const std::string& line) {
            if (direction == Direction::Received && greeting_.empty()) greeting_ = line;
        };
    }

    bool Run() {
        const bool worked = FindName() && Connect() && LogOn();
        Leave();
        return worked;
    }

private:
    bool Worked(const char* step, const std::string& text) {
        events_.onStep(step, true, text);
        return true;
    }
    bool Failed(const char* step, const std::string& text) {
        events_.onStep(step, false, text);
        return false;
    }

    bool FindName() {
        const auto deadline = NetClock::now() + std::chrono::seconds(ConnectTimeout);
        const ResolvedName name =
            ResolveName(Trim(account_.server), "", deadline, [this] { return events_.goOn(); });
        if (name.error.Failed()) return Failed("Name", name.error.description);
        std::string addresses;
        for (const std::string& address : name.addresses)
            addresses += (addresses.empty() ? "" : ", ") + address;
        return Worked("Name", account_.server + " is " + addresses + ".");
    }

    bool Connect() {
        const NetError error = Open();
        const bool reached = error.Ok() || error.code == net_error::TlsFailed;
        if (!reached) return Failed("Connection", error.description);
        Worked("Connection", "Port " + std::to_string(account_.port) + " answers" +
                                 (greeting_.empty() ? "." : ": " + greeting_));
        if (error.Failed()) return Failed("Encryption", error.description);
        return Worked("Encryption", EncryptionText());
    }

    std::string EncryptionText() const {
        if (!client_.IsSecured()) return "The connection is not encrypted.";
        return account_.verifyCertificate
                   ? "The connection is encrypted, and the certificate is good."
                   : "The connection is encrypted; the certificate was not checked.";
    }

    bool LogOn() {
        if (account_.user.empty()) return Worked("Logon", "No logon is set.");
        const NetError error = SendLogon();
        if (error.Failed()) return Failed("Logon", error.description);
        return Worked("Logon", client_.LastReply());
    }

    NetError Open();
    NetError SendLogon();
    void Leave();
    void End();

    const MailAccount& account_;
    const ConnectionTestEvents& events_;
    Client client_;
    std::string greeting_;
};

template <>
NetError AccountTest<SmtpClient>::Open() {
    return client_.SetAction(SmtpClient::Action::Connect);
}

template <>
NetError AccountTest<SmtpClient>::SendLogon() {
    const auto base64 = [](const std::string& text) {
        std::string coded;
        AppendBase64(coded, text);
        return coded;
    };
    // A server left in the middle of a logon takes the next line for a password.
    if (!client_.IsSecured() && !client_.IsLocalPeer() && account_.security != Security::None)
        return {net_error::LogonImpossible,
                "The password was not sent, because the connection to the server is not secured."};
    if (NetError failed = client_.Command("AUTH LOGIN"); failed.Failed()) return failed;
    if (NetError failed = client_.Command(base64(account_.user)); failed.Failed()) return failed;
    return client_.Command(base64(account_.password), true);
}

template <>
void AccountTest<SmtpClient>::Leave() {
    client_.SetAction(SmtpClient::Action::Disconnect).Ignore();
}

template <>
void AccountTest<SmtpClient>::End() {
    client_.SetAction(SmtpClient::Action::Idle).Ignore();
}

template <>
NetError AccountTest<PopClient>::Open() {
    return client_.Connect();
}

template <>
NetError AccountTest<PopClient>::SendLogon() {
    if (NetError failed = client_.Command("USER " + account_.user); failed.Failed()) return failed;
    if (NetError failed = client_.Command("PASS " + account_.password, true); failed.Failed())
        return failed;
    return client_.Command("STAT");
}

template <>
void AccountTest<PopClient>::Leave() {
    client_.Disconnect();
}

template <>
void AccountTest<PopClient>::End() {
    client_.Cancel();
}

}  // namespace

bool TestMailAccount(const MailAccount& account, const ConnectionTestEvents& events) {
    if (account.protocol == MailAccount::Protocol::Smtp)
        return AccountTest<SmtpClient>(account, events).Run();
    return AccountTest<PopClient>(account, events).Run();
}

}  // namespace mailvane
