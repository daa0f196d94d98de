#include "platform/net/pop/PopClient.h"

#include <algorithm>
#include <array>
#include <chrono>

#include "platform/net/MailConnection.h"
#include "platform/net/MailLogon.h"
#include "platform/net/mime/TextCoding.h"

namespace mailvane {

namespace {

constexpr std::size_t ReceiveRoom = 4096;
constexpr std::size_t LongestReply = 64 * 1024;  // far beyond any honest line (RFC 2449 section 4)
constexpr int QuitTimeout = 5;                   // seconds; nothing depends on the answer

}  // namespace

struct PopClient::State {
    explicit State(PopClient& owner)
        : client(owner), connection([this](Direction direction, std::string_view bytes) {
              const std::string line(Trimmed(bytes));
              if (direction == Direction::Received) lastReply = line;
              Tell(direction, line);
          }) {}

    void Tell(Direction direction, const std::string& line) {
        if (client.onProtocol) client.onProtocol(direction, line);
    }
    bool KeepGoing() {
        if (client.onIdle) client.onIdle();
        return !canceled;
    }
    NetError GiveUp(NetError cause) {
        connection.Close();
        received.clear();
        return cause;
    }

    NetError Connect();
    NetError Exchange(const std::string& line, bool secret, int timeoutSeconds);
    NetError Wait(bool forSending, NetClock::time_point deadline);
    NetError Write(std::string_view bytes, NetClock::time_point deadline);
    NetError ReadLine(NetClock::time_point deadline);
    bool TakeLine();

    PopClient& client;
    MailConnection connection;
    std::string received;
    std::string lastReply;
    bool canceled = false;
};

NetError PopClient::State::Connect() {
    MailPeer peer;
    peer.account = client;
    peer.account.MailServer = Trimmed(client.MailServer);
    peer.dnsServers = client.DnsServers;
    peer.connectTimeout = client.ConnectTimeout;
    peer.answerTimeout = client.Timeout;
    canceled = false;
    lastReply.clear();
    if (peer.account.MailServer.empty())
        return {net_error::ConnectFailed, "No mail server is given."};
    NetError error = connection.Open(peer, [this] { return KeepGoing(); });
    // The server's own words say more than that it refused.
    if (error.code == net_error::BadReply && lastReply.starts_with("-ERR"))
        error.description = lastReply;
    return error;
}

NetError PopClient::State::Wait(bool forSending, NetClock::time_point deadline) {
    if (!KeepGoing()) return {net_error::Canceled, "The operation was canceled."};
    if (NetClock::now() >= deadline)
        return {net_error::TimedOut, "The server did not answer in time."};
    connection.Wait(forSending, static_cast<int>(WaitStep.count()));
    return {};
}

NetError PopClient::State::Write(std::string_view bytes, NetClock::time_point deadline) {
    while (!bytes.empty()) {
        std::size_t sent = 0;
        if (connection.Send(bytes, sent) == MailConnection::Outcome::Closed)
            return {net_error::ConnectionLost, "The server closed the connection."};
        bytes.remove_prefix(sent);
        if (sent > 0) continue;
        if (NetError error = Wait(true, deadline); error.Failed()) return error;
    }
    return {};
}

/// The next line out of what was received; false when it is not whole yet.
bool PopClient::State::TakeLine() {
    const std::size_t end = received.find('\n');
    if (end == std::string::npos) return false;
    lastReply = Trimmed(received.substr(0, end));
    received.erase(0, end + 1);
    Tell(Direction::Received, lastReply);
    return true;
}

NetError PopClient::State::ReadLine(NetClock::time_point deadline) {
    std::array<char, ReceiveRoom> buffer{};
    while (!TakeLine()) {
        if (received.size() > LongestReply)
            return {net_error::BadReply, "The server's answer has no end."};
        std::size_t count = 0;
        const auto outcome = connection.Receive(buffer.data(), buffer.size(), count);
        received.append(buffer.data(), count);
        if (outcome == MailConnection::Outcome::Closed)
            return {net_error::ConnectionLost, "The server closed the connection."};
        if (outcome == MailConnection::Outcome::Done) continue;
        if (NetError error = Wait(false, deadline); error.Failed()) return error;
    }
    return {};
}

NetError PopClient::State::Exchange(const std::string& line, bool secret, int timeoutSeconds) {
    if (!connection.IsOpen()) return {net_error::NotConnected, "Socket is not connected."};
    const std::string plain = WithoutLineBreaks(line);
    Tell(Direction::Sent, secret ? WithoutSecret(plain) : plain);
    const auto deadline = NetClock::now() + std::chrono::seconds(timeoutSeconds);
    NetError error = Write(plain + "\r\n", deadline);
    if (error.Ok()) error = ReadLine(deadline);
    if (error.Failed()) return GiveUp(std::move(error));
    if (lastReply.starts_with("+OK")) return {};
    return {net_error::BadReply, lastReply};
}

PopClient::PopClient() : state_(std::make_unique<State>(*this)) {
    MailProtocol = Protocol::Pop3;
    MailPort = 110;
}
PopClient::~PopClient() = default;

NetError PopClient::Connect() {
    return state_->Connect();
}

NetError PopClient::Command(const std::string& line, bool secret) {
    state_->canceled = false;
    if (secret)
        if (NetError refused = state_->connection.MayCarrySecrets(); refused.Failed())
            return refused;
    return state_->Exchange(line, secret, Timeout);
}

NetError PopClient::LogOn() {
    const std::vector<LogonLine> lines = LogonLines(*this);
    // Asked before the logon begins: the user's name is not told for nothing.
    if (!lines.empty())
        if (NetError refused = state_->connection.MayCarrySecrets(); refused.Failed())
            return refused;
    for (const LogonLine& line : lines)
        if (NetError failed = Command(line.text, line.secret); failed.Failed()) return failed;
    return {};
}

void PopClient::Disconnect() {
    state_->canceled = false;
    if (state_->connection.IsOpen())
        state_->Exchange("QUIT", false, std::min(QuitTimeout, Timeout)).Ignore();
    state_->connection.Close();
}

void PopClient::Cancel() {
    state_->canceled = true;
}

bool PopClient::IsSecured() const {
    return state_->connection.IsSecured();
}

bool PopClient::IsLocalPeer() const {
    return state_->connection.IsLocalPeer();
}

const std::string& PopClient::LastReply() const {
    return state_->lastReply;
}

}  // namespace mailvane
