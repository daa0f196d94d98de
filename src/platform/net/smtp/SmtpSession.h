#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "platform/net/Direction.h"
#include "platform/net/smtp/MessageSource.h"
#include "platform/net/smtp/RefusedRecipient.h"
#include "platform/net/smtp/SmtpReply.h"

namespace mailvane {

/// The extensions that a server offered in its answer to EHLO (RFC 5321 section 4.1.1.1).
class SmtpExtensions {
public:
    void Clear() { offered_.clear(); }
    void AddLine(std::string_view line);
    bool Offers(std::string_view keyword, std::string* parameters = nullptr) const;
    std::int64_t SizeLimit() const;  ///< RFC 1870; 0 when none is told

private:
    std::map<std::string, std::string> offered_;  // keywords in upper case
};

/// Who a message goes to, and what its transfer needs.
struct SmtpEnvelope {
    std::string sender;
    std::vector<std::string> recipients;
    bool eightBit = false;  ///< the body holds bytes outside ASCII
    bool utf8 = false;      ///< the header holds bytes outside ASCII
};

/// The SMTP conversation without a socket: bytes in by Receive, bytes out by Output and Written.
///
/// One operation at a time (Send, Command, Quit); it is over when Done() is true, and
/// Result() tells its outcome. When Broken() is true the connection can only be closed. A message
/// goes out in one of three forms, by what the server offers: MAIL, RCPT and BDAT in one write
/// (PIPELINING and CHUNKING), MAIL, RCPT and DATA in one write (PIPELINING), or each command after
/// the answer to the one before. After a failed message RSET makes the connection ready for the
/// next one.
class SmtpSession {
public:
    using LineEvent = std::function<void(Direction, std::string_view)>;

    /// `onLine` is told every line of the conversation without its line end; secrets as "***".
    explicit SmtpSession(LineEvent onLine) : onLine_(std::move(onLine)) {}

    /// Forgets everything about an earlier connection.
    void Open();
    /// The beginning, which the transport holds itself (greeting, EHLO or HELO, STARTTLS, EHLO):
    /// the extensions are those of the last EHLO, and the last reply is kept, so that a refusal is
    /// told in the server's words. BadReply for what is no reply.
    NetError Observe(Direction direction, std::string_view bytes);

    /// Sends a message. `source` must live until the operation is over.
    void Send(const SmtpEnvelope& envelope, MessageSource& source);
    void Command(std::string_view line, bool secret);
    void Quit();

    /// The bytes to be written next, "" when there are none at this moment; Written takes those off
    /// that went out.
    std::string_view Output();
    void Written(std::size_t count);
    void Receive(std::string_view bytes);

    bool Done() const { return done_; }
    bool Broken() const { return broken_; }
    const NetError& Result() const { return result_; }
    /// What the operation came to when the connection was given up for `cause`: a refusal that the
    /// server had told already, AnswerLost when the message may have been accepted (its end was
    /// sent, and `cause` is no refusal), else `cause`.
    NetError Interrupted(NetError cause) const;
    /// A byte of an answer to this operation came, other than 421.
    bool AnyAnswer() const { return answered_ || !lines_.Empty() || reply_.Started(); }

    const SmtpExtensions& Extensions() const { return extensions_; }
    const SmtpReply& LastReply() const { return reply_; }
    const std::vector<RefusedRecipient>& Refused() const { return refused_; }
    std::int64_t BytesSent() const { return bytesSent_; }  ///< of the present message's transfer

private:
    enum class Step { Mail, Rcpt, Data, Chunk, LastChunk, DataEnd, EmptyEnd, Rset, Command, Quit };
    enum class Form { OneByOne, Pipelined, Chunks };

    void Begin();
    void Finish(NetError result);
    void Break(NetError result);
    void Queue(Step step, std::string_view line);
    void QueueLine(std::string_view line);
    void DropWritten();
    void QueueMail();
    void QueueRecipient();
    void QueueChunk();
    std::string Objection(const std::string& address) const;
    bool Admit();
    bool ReadChunk();
    void ReadData();

    void OnReply();
    void OnMail();
    void OnRecipient();
    void OnData();
    void OnChunk(Step step);
    void OnDataEnd();
    void OnReset();
    bool IsUnasked(Step step) const;
    static bool Fits(Step step, int code);
    bool AnswersPending() const { return nextPending_ < pending_.size(); }
    void NoteFailure(NetError failure);
    void RecoverWhenQuiet();

    LineEvent onLine_;
    LineReader lines_;
    SmtpReply reply_;
    SmtpExtensions extensions_;
    bool helloSaid_ = false;  // the beginning's next reply is the one to EHLO

    std::string out_;
    std::size_t outPosition_ = 0;
    std::vector<Step> pending_;  // what the answers to come belong to
    std::size_t nextPending_ = 0;
    bool done_ = true;
    bool broken_ = false;
    bool answered_ = false;
    NetError result_;

    SmtpEnvelope envelope_;
    MessageSource* source_ = nullptr;
    Form form_ = Form::OneByOne;
    std::string chunk_;
    std::size_t nextRecipient_ = 0;  // to be queued
    std::size_t answeredRecipients_ = 0;
    std::size_t accepted_ = 0;
    std::vector<RefusedRecipient> refused_;
    NetError failure_;          // of the message; RSET is still to come
    bool sendingData_ = false;  // between 354 and the end of data
    bool endQueued_ = false;    // the end of data stands in out_
    bool endSent_ = false;
    std::int64_t bytesSent_ = 0;
};

}  // namespace mailvane
