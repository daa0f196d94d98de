#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace mailvane {

/// Outcome of a network operation: code 0 is success; an SMTP refusal carries its reply code, any
/// other failure a code below 100. The description is what error texts and logs show.
struct [[nodiscard]] NetError {
    int code = 0;
    std::string description;

    bool Failed() const { return code != 0; }
    bool Ok() const { return code == 0; }
    void Ignore() const {}
};

namespace net_error {
inline constexpr int NotConnected = 1;  ///< "Socket is not connected."
inline constexpr int ConnectFailed = 2;
inline constexpr int NameNotFound = 3;
inline constexpr int TlsFailed = 4;
inline constexpr int ConnectionLost = 5;
inline constexpr int TimedOut = 6;
inline constexpr int Canceled = 7;
inline constexpr int BadReply = 8;  ///< the server does not speak the protocol
inline constexpr int NoRecipients = 9;
inline constexpr int FileUnreadable = 10;
inline constexpr int LogonImpossible = 11;
/// The end of the data was sent and the connection broke before the answer came: the message may
/// have been accepted.
inline constexpr int AnswerLost = 12;
/// A call from inside a handler while another one still runs; that one goes on, and onError is not
/// told.
inline constexpr int Busy = 13;
inline constexpr int NoSender = 14;
inline constexpr int FileUnwritable = 15;
inline constexpr int TooLarge = 16;     ///< the message is over the limit that the server told
inline constexpr int BadAddress = 17;   ///< an address that this server cannot take
inline constexpr int NoMailTaken = 18;  ///< the domain says that it takes no mail (RFC 7505)
}  // namespace net_error

/// How the connection is secured (the values of the settings form).
enum class Security : int { Automatic = 0, RequireStartTls = 1, ImplicitTls = 2, None = 3 };

/// Direction of a line of the conversation: from the server, to the server, or a remark.
enum class Direction : int { Received = 0, Sent = 1, None = 2 };

/// An address that the server refused while it took the message for others.
struct RefusedRecipient {
    std::string address;
    std::string answer;  ///< code and text as the server gave them
};

/// The mail transfer component: properties, actions, events. Sending blocks, and meanwhile calls
/// `onIdle` at least every 50 ms; its handlers and the events may set Action to Idle or Disconnect,
/// which ends the blocked call with Canceled. The connection is kept between messages and opened
/// when needed: a connection that the server closed meanwhile is opened again in silence, with the
/// logon that was made on it (the lines given to Command from "AUTH ..." to the answer 235).
/// Disconnect outside of a blocked call forgets that logon.
///
/// The header gets what OtherHeaders lacks of Date, Message-ID, From, To, Cc, Subject and
/// MIME-Version. The text goes as it stands while it is ASCII in lines of at most 998 bytes.
/// Otherwise its charset becomes utf-8 and a Content-Transfer-Encoding line (8bit, or
/// quoted-printable where the server or the lines need it) follows Content-Type. When the
/// Content-Type in OtherHeaders is a multipart, this is done to the first part of MessageText:
/// everything between the first line of the boundary and the last one, with the header lines
/// (Content-...) at its start; a file name outside ASCII in the part header behind that last
/// boundary line becomes an encoded word. So a caller writes the forms for ASCII, and leaves the
/// rest to this component.
class SmtpClient {
public:
    enum class Action { Idle = 0, Connect = 1, Disconnect = 2, Send = 3, Reset = 4 };

    SmtpClient();
    ~SmtpClient();
    SmtpClient(const SmtpClient&) = delete;
    SmtpClient& operator=(const SmtpClient&) = delete;

    // Where to, and how. With automatic security port 465 means implicit TLS. Changes take effect
    // at the next connection; a changed MailServer, MailPort or security closes the present one
    // before the next message.
    std::string MailServer;
    int MailPort = 25;
    Security ConnectionSecurity = Security::Automatic;
    bool VerifyCertificate = true;
    std::string CertificateAuthorities;  ///< a PEM file in place of the system's; "" for those
    std::string LocalName;               ///< for EHLO; "" takes the host's name
    std::string DnsServers;              ///< "address[:port],..."; "" takes the system's
    int Timeout = 300;                   ///< seconds of waiting for an answer
    int ConnectTimeout = 30;             ///< seconds

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
    std::string MessageText;  ///< the body
    /// A file whose bytes follow MessageText, in ASCII lines of at most 998 bytes (base64); "" for
    /// none.
    std::string AttachedFile;
    std::string Date;  ///< value of the Date header (RFC 5322); "" takes the present moment

    /// Connect, Disconnect (with QUIT when idle), Send, Reset (drops the message properties and
    /// RefusedRecipients), Idle (ends a blocked call). Fails as described by NetError; onError is
    /// told of the same failure first.
    NetError SetAction(Action action);
    /// Sends one line and waits for the answer; a 4xx or 5xx answer is a failure with its code.
    /// `secret` shows the line as "***" in the protocol.
    NetError Command(const std::string& line, bool secret = false);

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
