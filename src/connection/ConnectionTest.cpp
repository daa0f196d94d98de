#include "connection/ConnectionTest.h"

#include "core/text/Text.h"
#include "platform/net/dns/NameResolver.h"
#include "platform/net/pop/PopClient.h"
#include "platform/net/smtp/SmtpClient.h"

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
        static_cast<MailAccount&>(client_) = account;
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
            ResolveName(Trim(account_.MailServer), "", deadline, [this] { return events_.goOn(); });
        if (name.error.Failed()) return Failed("Name", name.error.description);
        std::string addresses;
        for (const std::string& address : name.addresses)
            addresses += (addresses.empty() ? "" : ", ") + address;
        return Worked("Name", account_.MailServer + " is " + addresses + ".");
    }

    bool Connect() {
        const NetError error = Open();
        const bool reached = error.Ok() || error.code == net_error::TlsFailed;
        if (!reached) return Failed("Connection", error.description);
        Worked("Connection", "Port " + std::to_string(account_.MailPort) + " answers" +
                                 (greeting_.empty() ? "." : ": " + greeting_));
        if (error.Failed()) return Failed("Encryption", error.description);
        return Worked("Encryption", EncryptionText());
    }

    std::string EncryptionText() const {
        if (!client_.IsSecured()) return "The connection is not encrypted.";
        return account_.VerifyCertificate
                   ? "The connection is encrypted, and the certificate is good."
                   : "The connection is encrypted; the certificate was not checked.";
    }

    bool LogOn() {
        if (account_.User.empty()) return Worked("Logon", "No logon is set.");
        NetError error = client_.LogOn();
        if (error.Ok()) error = LookIn();
        if (error.Failed()) return Failed("Logon", error.description);
        return Worked("Logon", client_.LastReply());
    }

    NetError Open();
    NetError LookIn();
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
NetError AccountTest<SmtpClient>::LookIn() {
    return {};
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
NetError AccountTest<PopClient>::LookIn() {
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
    if (account.MailProtocol == MailAccount::Protocol::Smtp)
        return AccountTest<SmtpClient>(account, events).Run();
    return AccountTest<PopClient>(account, events).Run();
}

}  // namespace mailvane
