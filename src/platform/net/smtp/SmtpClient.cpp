#include "platform/net/smtp/SmtpClient.h"

#include <algorithm>
#include <iterator>
#include <unordered_set>
#include <utility>

#include "platform/net/MailLogon.h"
#include "platform/net/mime/MailAddress.h"
#include "platform/net/mime/TextCoding.h"
#include "platform/net/smtp/SmtpLink.h"
#include "platform/net/smtp/SmtpMessage.h"

namespace mailvane {

namespace {

constexpr int QuitTimeout = 5;  // seconds; by then nothing depends on the answer

/// The server has no room for the recipient in this transaction. 552 is what older servers say, and
/// clients should take it the same way (RFC 5321 section 4.5.3.1.10).
bool IsPostponed(const RefusedRecipient& recipient) {
    const std::string& answer = recipient.answer;
    return answer.compare(0, 3, "452") == 0 || answer.compare(0, 3, "552") == 0 ||
           answer.find(" 4.5.3 ") == 3;
}

/// Moves those that another transaction may reach.
void MovePostponed(std::vector<RefusedRecipient>& from, std::vector<RefusedRecipient>& to) {
    std::copy_if(from.begin(), from.end(), std::back_inserter(to), IsPostponed);
    std::erase_if(from, IsPostponed);
}

}  // namespace

struct SmtpClient::State {
    explicit State(SmtpClient& owner)
        : client(owner),
          link({[this](Direction direction, std::string_view line) {
                    if (client.onProtocol) client.onProtocol(direction, std::string(line));
                },
                [this] { TellProgress(); },
                [this] {
                    if (client.onIdle) client.onIdle();
                }}) {}

    template <typename Operation>
    NetError Perform(Operation operation);
    NetError Report(NetError error);
    void TellProgress();

    MailPeer WantedPeer() const;
    NetError Open();
    NetError Connect();
    NetError Reach();
    NetError Disconnect();
    NetError Quit();
    NetError LogOn();
    NetError Command(const std::string& line, bool secret);
    NetError Send();
    void SendPostponed(const std::string& sender, std::size_t accepted);
    void NoteUnanswered(const std::vector<std::string>& recipients, const std::string& answer);
    NetError Deliver(const std::vector<std::string>& recipients, const std::string& sender);
    NetError TransferTo(const std::vector<std::string>& recipients, const std::string& sender);
    std::vector<std::string> Recipients() const;
    void ResetMessage();

    SmtpClient& client;
    SmtpLink link;
    MailPeer peer;  // of the present connection
    SmtpMessage message;
    MessageSource source;
    std::string lastReply;
    std::vector<RefusedRecipient> refused;
    bool loggedOn = false;  // to be repeated when the connection has to be made again
    bool busy = false;
    bool dropAsked = false;
    bool transferring = false;
    bool composed = false;  // the message of the moment has its Message-ID
};

// --- around an operation ----------------------------------------------------------------------

template <typename Operation>
NetError SmtpClient::State::Perform(Operation operation) {
    if (busy) return {net_error::Busy, "The mail client is busy."};
    busy = true;
    dropAsked = false;
    link.ClearCancel();
    NetError error = operation();
    busy = false;
    if (dropAsked) link.Close();
    return Report(std::move(error));
}

NetError SmtpClient::State::Report(NetError error) {
    // After a refused message the last reply was the one to RSET; the refusal is what counts.
    lastReply = error.code >= 400 ? error.description : link.Session().LastReply().Description();
    if (error.Failed() && client.onError) client.onError(error.code, error.description);
    return error;
}

void SmtpClient::State::TellProgress() {
    if (!transferring || !client.onProgress) return;
    client.onProgress(std::min(link.Session().BytesSent(), source.Size()), source.Size());
}

// --- connection -------------------------------------------------------------------------------

MailPeer SmtpClient::State::WantedPeer() const {
    MailPeer wanted;
    wanted.account = client;
    wanted.account.MailServer = Trimmed(client.MailServer);
    wanted.dnsServers = client.DnsServers;
    wanted.connectTimeout = client.ConnectTimeout;
    wanted.answerTimeout = client.Timeout;
    return wanted;
}

NetError SmtpClient::State::Open() {
    MailPeer wanted = WantedPeer();
    if (wanted.account != peer.account) loggedOn = false;
    peer = std::move(wanted);
    if (peer.account.MailServer.empty())
        return {net_error::ConnectFailed, "No mail server is given."};
    return link.Open(peer);
}

/// Leaves the present connection when it goes elsewhere than the properties say.
NetError SmtpClient::State::Reach() {
    if (WantedPeer().account == peer.account && link.IsAlive()) return {};
    return Quit();
}

NetError SmtpClient::State::Connect() {
    NetError error = Reach();
    if (error.Failed() || link.Connection().IsOpen()) return error;
    loggedOn = false;  // the caller logs on to a connection that it asked for
    return Open();
}

/// QUIT on an open connection, then it is closed. Only a cancel is a failure.
NetError SmtpClient::State::Quit() {
    if (!link.Connection().IsOpen()) return {};
    link.Session().Quit();
    const NetError error = link.Run(std::min(QuitTimeout, client.Timeout));
    link.Close();
    return error.code == net_error::Canceled ? error : NetError{};
}

NetError SmtpClient::State::Disconnect() {
    loggedOn = false;
    return Quit();
}

// --- single lines -----------------------------------------------------------------------------

NetError SmtpClient::State::Command(const std::string& line, bool secret) {
    const MailConnection& connection = link.Connection();
    if (!connection.IsOpen()) return {net_error::NotConnected, "Socket is not connected."};
    if (secret)
        if (NetError unsafe = connection.MayCarrySecrets(); unsafe.Failed()) return unsafe;
    link.Session().Command(WithoutLineBreaks(line), secret);
    return link.Run(client.Timeout);
}

NetError SmtpClient::State::LogOn() {
    loggedOn = false;
    std::string mechanisms;
    link.Session().Extensions().Offers("AUTH", &mechanisms);
    const std::vector<LogonLine> lines = LogonLines(client, mechanisms);
    if (lines.empty()) return {};
    // Asked before the logon begins: a server left in the middle of one takes the next line for a
    // password.
    if (NetError unsafe = link.Connection().MayCarrySecrets(); unsafe.Failed()) return unsafe;
    for (const LogonLine& line : lines)
        if (NetError failed = Command(line.text, line.secret); failed.Failed()) return failed;
    const SmtpReply& reply = link.Session().LastReply();
    if (!reply.Accepted())
        return {net_error::BadReply, "The server did not end the logon: " + reply.Description()};
    loggedOn = true;
    return {};
}

// --- messages ---------------------------------------------------------------------------------

std::vector<std::string> SmtpClient::State::Recipients() const {
    if (!client.Recipients.empty()) return client.Recipients;
    std::vector<std::string> recipients;
    std::unordered_set<std::string> seen;
    for (const std::string* list : {&client.SendTo, &client.Cc, &client.BCc}) {
        for (std::string& address : AddressesOf(*list)) {
            if (seen.insert(address).second) recipients.push_back(std::move(address));
        }
    }
    return recipients;
}

NetError SmtpClient::State::Send() {
    refused.clear();
    const std::vector<std::string> recipients = Recipients();
    if (recipients.empty()) return {net_error::NoRecipients, "No recipient is given."};
    const std::vector<std::string> senders = AddressesOf(client.From);
    if (senders.empty()) return {net_error::NoSender, "No sender's address is given."};
    if (!client.SameMessage) composed = false;
    const NetError error = Deliver(recipients, senders.front());
    if (error.Ok()) SendPostponed(senders.front(), recipients.size() - refused.size());
    return error;
}

/// The message has been accepted for `accepted` recipients; whom the server had no room for gets it
/// in further transactions (RFC 5321 section 4.5.3.1.10). Each of them reaches somebody, or it is
/// the last.
void SmtpClient::State::SendPostponed(const std::string& sender, std::size_t accepted) {
    std::vector<RefusedRecipient> waiting;
    MovePostponed(refused, waiting);
    std::vector<RefusedRecipient> settled = std::move(refused);
    for (std::size_t room = accepted; !waiting.empty();) {
        std::vector<std::string> batch;
        for (std::size_t i = 0; i < std::min(room, waiting.size()); ++i)
            batch.push_back(waiting[i].address);
        const NetError error = Deliver(batch, sender);
        if (error.Failed() && refused.size() == batch.size() && batch.size() < waiting.size()) {
            room = waiting.size();  // perhaps only these are full: all that wait are asked
            continue;
        }
        waiting.erase(waiting.begin(), waiting.begin() + static_cast<std::ptrdiff_t>(batch.size()));
        if (error.Ok()) {
            MovePostponed(refused, waiting);
        } else {
            NoteUnanswered(batch, error.description);
            MovePostponed(waiting, refused);  // they keep the answer that they have
        }
        std::move(refused.begin(), refused.end(), std::back_inserter(settled));
    }
    refused = std::move(settled);
}

/// Of a failed transaction: the answer for everybody who got none of his own.
void SmtpClient::State::NoteUnanswered(const std::vector<std::string>& recipients,
                                       const std::string& answer) {
    std::unordered_set<std::string> answered;
    for (const RefusedRecipient& recipient : refused)
        answered.insert(recipient.address);
    for (const std::string& address : recipients) {
        if (!answered.contains(address)) refused.push_back({address, answer});
    }
}

/// One transaction, on the connection kept from before where there is one.
NetError SmtpClient::State::Deliver(const std::vector<std::string>& recipients,
                                    const std::string& sender) {
    refused.clear();
    NetError error = Reach();
    if (error.Failed()) return error;
    const bool kept = link.Connection().IsOpen();
    if (kept) {
        error = TransferTo(recipients, sender);
        // A server may close a connection that it finds idle or used long enough. As long as it did
        // not answer to this message and did not get all of it, nothing can have been accepted.
        const bool closed = error.code == net_error::ConnectionLost || error.code == 421;
        if (!closed || link.Session().AnyAnswer()) return error;
    }
    error = Open();
    if (error.Ok() && loggedOn) error = LogOn();
    return error.Failed() ? error : TransferTo(recipients, sender);
}

NetError SmtpClient::State::TransferTo(const std::vector<std::string>& recipients,
                                       const std::string& sender) {
    SmtpSession& session = link.Session();
    const SmtpExtensions& server = session.Extensions();
    message.Compose({.from = client.From,
                     .sendTo = client.SendTo,
                     .cc = client.Cc,
                     .subject = client.Subject,
                     .otherHeaders = client.OtherHeaders,
                     .text = client.MessageText,
                     .date = client.Date,
                     .localName = link.Connection().LocalName(),
                     .again = composed,
                     .parts = client.Parts ? &*client.Parts : nullptr,
                     .leaveOutEmptyReplyTo = client.LeaveOutEmptyReplyTo},
                    {server.Offers("8BITMIME"), server.Offers("SMTPUTF8")});
    composed = true;
    NetError error =
        source.Open(message.Head(), message.Body(), message.WireSize(),
                    client.Parts ? client.Parts->codedFile : std::string(), message.Tail());
    if (error.Failed()) return error;

    session.Send({sender, recipients, message.BodyOutsideAscii(), message.HeadOutsideAscii()},
                 source);
    transferring = true;
    error = link.Run(client.Timeout);
    transferring = false;
    refused = session.Refused();
    return error;
}

void SmtpClient::State::ResetMessage() {
    for (std::string* property :
         {&client.From, &client.SendTo, &client.Cc, &client.BCc, &client.Subject,
          &client.OtherHeaders, &client.MessageText, &client.Date}) {
        property->clear();
    }
    client.Recipients.clear();
    client.Parts.reset();
    client.SameMessage = composed = false;
    refused.clear();
}

// --- the component ----------------------------------------------------------------------------

SmtpClient::SmtpClient() : state_(std::make_unique<State>(*this)) {}
SmtpClient::~SmtpClient() = default;

NetError SmtpClient::SetAction(Action action) {
    State& state = *state_;
    if (state.busy && (action == Action::Idle || action == Action::Disconnect)) {
        state.link.Cancel();
        state.dropAsked |= action == Action::Disconnect;
        return {};
    }
    return state.Perform([&]() -> NetError {
        switch (action) {
            case Action::Connect:
                return state.Connect();
            case Action::Disconnect:
                return state.Disconnect();
            case Action::Send:
                return state.Send();
            case Action::Reset:
                state.ResetMessage();
                return {};
            case Action::Idle:
                break;
        }
        return {};
    });
}

NetError SmtpClient::Command(const std::string& line, bool secret) {
    return state_->Perform([&] { return state_->Command(line, secret); });
}

NetError SmtpClient::LogOn() {
    return state_->Perform([&] { return state_->LogOn(); });
}

std::vector<std::string> SmtpClient::EnvelopeRecipients() const {
    return state_->Recipients();
}

bool SmtpClient::IsConnected() const {
    return state_->link.Connection().IsOpen();
}

bool SmtpClient::IsSecured() const {
    return state_->link.Connection().IsSecured();
}

bool SmtpClient::IsLocalPeer() const {
    return state_->link.Connection().IsLocalPeer();
}

bool SmtpClient::Offers(const std::string& keyword, std::string* parameters) const {
    return state_->link.Session().Extensions().Offers(keyword, parameters);
}

const std::vector<RefusedRecipient>& SmtpClient::RefusedRecipients() const {
    return state_->refused;
}

const std::string& SmtpClient::LastReply() const {
    return state_->lastReply;
}

}  // namespace mailvane
