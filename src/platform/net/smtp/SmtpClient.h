#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/net/Direction.h"
#include "platform/net/MailAccount.h"
#include "platform/net/NetError.h"
#include "platform/net/mime/MessageParts.h"
#include "platform/net/smtp/RefusedRecipient.h"

namespace mailvane {

/// The mail transfer component: properties, actions, events. Sending blocks, and meanwhile calls
/// `onIdle` at least every 50 ms; its handlers and the events may set Action to Idle or Disconnect,
/// which ends the blocked call with Canceled. The connection is kept between messages and opened
/// when needed: a connection that the server closed meanwhile is opened again in silence, with the
/// logon that LogOn made on it. Disconnect outside of a blocked call forgets that logon.
///
/// The header gets what OtherHeaders lacks of Date, Message-ID, From, To, Cc, Subject and
/// MIME-Version. The text goes as it stands while it is ASCII in lines of at most 998 bytes.
/// Otherwise its charset becomes utf-8 and a Content-Transfer-Encoding line (8bit, or
/// quoted-printable where the server or the lines need it) follows Content-Type. So a caller writes
/// the forms for ASCII, and leaves the rest to this component.
class SmtpClient : public MailAccount {
public:
    enum class Action { Idle = 0, Connect = 1, Disconnect = 2, Send = 3, Reset = 4 };

    SmtpClient();
    ~SmtpClient();
    SmtpClient(const SmtpClient&) = delete;
    SmtpClient& operator=(const SmtpClient&) = delete;

    // Where to is said by the properties of MailAccount. Changes take effect at the next
    // connection; another account closes the present one before the next message.
    std::string DnsServers;   ///< "address[:port],..."; "" takes the system's
    int Timeout = 300;        ///< seconds of waiting for an answer
    int ConnectTimeout = 30;  ///< seconds

    // The message. Header values lose CR, LF and NUL before use; text outside ASCII in them becomes
    // encoded words (RFC 2047). Lists hold addresses separated by commas, quoted names allowed.
    std::string From;
    std::string SendTo;
    std::string Cc;
    std::string BCc;  ///< envelope only, never a header
    /// The bare addresses that get the message, when they are not those of SendTo, Cc and BCc; the
    /// headers stay as they are. Empty takes those.
    std::vector<std::string> Recipients;
    /// The message that Send took last goes out once more, to other recipients: it keeps its
    /// Message-ID and Date.
    bool SameMessage = false;
    std::string Subject;
    /// A block of header lines, as it stands; the last needs no line end. Only empty lines go, and
    /// values outside ASCII become encoded words.
    std::string OtherHeaders;
    std::string MessageText;            ///< the body
    std::optional<MessageParts> Parts;  ///< with a file behind MessageText
    bool LeaveOutEmptyReplyTo = false;
    std::string Date;  ///< value of the Date header (RFC 5322); "" takes the present moment

    /// Connect, Disconnect (with QUIT when idle), Send, Reset (drops the message properties and
    /// RefusedRecipients), Idle (ends a blocked call). Fails as described by NetError; onError is
    /// told of the same failure first.
    NetError SetAction(Action action);
    /// Sends one line and waits for the answer; a 4xx or 5xx answer is a failure with its code.
    /// `secret` keeps it out of the protocol, and off connections that may not carry it:
    /// LogonImpossible.
    NetError Command(const std::string& line, bool secret = false);
    /// Logs User on to the open connection, if there is one. LogonImpossible, with nothing said to
    /// the server, when the connection may not carry a password.
    NetError LogOn();

    /// Whom the message goes to: bare addresses, each once.
    std::vector<std::string> EnvelopeRecipients() const;

    bool IsConnected() const;
    bool IsSecured() const;    ///< TLS is on
    bool IsLocalPeer() const;  ///< the server is this machine
    /// An extension keyword offered in the last EHLO answer, case ignored; its parameters in
    /// `parameters`.
    bool Offers(const std::string& keyword, std::string* parameters = nullptr) const;
    /// Of the last message sent. A recipient for whom the server had no room in the transaction
    /// (452) got the message in a further one; he is here when that failed, with its answer.
    const std::vector<RefusedRecipient>& RefusedRecipients() const;
    const std::string& LastReply() const;

    // Events.
    std::function<void(int code, const std::string& description)> onError;
    std::function<void(Direction, const std::string& text)> onProtocol;
    std::function<void(std::int64_t sent, std::int64_t total)> onProgress;
    std::function<void()> onIdle;  ///< pumps the program's events while a call waits

private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace mailvane
