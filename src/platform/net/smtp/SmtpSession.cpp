#include "platform/net/smtp/SmtpSession.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "platform/net/MailLogon.h"
#include "platform/net/mime/MailAddress.h"
#include "platform/net/mime/TextCoding.h"

namespace mailvane {

namespace {

constexpr std::size_t DataPiece = 64 * 1024;
// A message up to this size goes out in one chunk, a larger one chunk by chunk, each after the
// answer to the one before, so that a refused message is not sent to its end.
constexpr std::size_t ChunkSize = 512 * 1024;

std::string Upper(std::string_view text) {
    std::string out(text);
    for (char& c : out) {
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    }
    return out;
}

NetError NotUnderstood(std::string_view line) {
    return {net_error::BadReply, "The server's answer cannot be understood: \"" +
                                     std::string(line.substr(0, 80)) + "\"."};
}

}  // namespace

void SmtpExtensions::AddLine(std::string_view line) {
    // "AUTH=LOGIN" is an old way to write "AUTH LOGIN".
    const std::size_t stop = std::min(line.find_first_of(" ="), line.size());
    if (stop == 0) return;
    offered_.emplace(Upper(line.substr(0, stop)), line.substr(std::min(stop + 1, line.size())));
}

bool SmtpExtensions::Offers(std::string_view keyword, std::string* parameters) const {
    const auto found = offered_.find(Upper(keyword));
    if (found == offered_.end()) return false;
    if (parameters != nullptr) *parameters = found->second;
    return true;
}

std::int64_t SmtpExtensions::SizeLimit() const {
    std::string text;
    std::int64_t limit = 0;
    if (!Offers("SIZE", &text)) return 0;
    std::from_chars(text.data(), text.data() + text.size(), limit);
    return limit;
}

// --- operations -------------------------------------------------------------------------------

void SmtpSession::Open() {
    lines_ = {};
    reply_ = {};
    extensions_.Clear();
    broken_ = false;
    Begin();
    done_ = true;
}

void SmtpSession::Begin() {
    out_.clear();
    outPosition_ = 0;
    pending_.clear();
    nextPending_ = 0;
    done_ = false;
    answered_ = false;
    result_ = {};
    failure_ = {};
    sendingData_ = false;
    endQueued_ = false;
    endSent_ = false;
}

void SmtpSession::Finish(NetError result) {
    if (!done_) result_ = std::move(result);
    done_ = true;
}

void SmtpSession::Break(NetError result) {
    broken_ = true;
    sendingData_ = false;
    out_.clear();
    outPosition_ = 0;
    Finish(Interrupted(std::move(result)));
}

NetError SmtpSession::Observe(Direction direction, std::string_view bytes) {
    if (direction == Direction::Sent) {
        onLine_(direction, Trimmed(bytes));
        // What was offered before the connection was secured counts no more.
        extensions_.Clear();
        helloSaid_ = StartsWithIgnoringCase(bytes, "EHLO ");
        return {};
    }
    while (const auto line = lines_.Next(bytes)) {
        onLine_(Direction::Received, *line);
        const bool first = !reply_.Started();
        if (reply_.AddLine(*line) == SmtpReply::Progress::Malformed) return NotUnderstood(*line);
        if (helloSaid_ && !first && reply_.Accepted()) extensions_.AddLine(reply_.LastLine());
    }
    return {};
}

void SmtpSession::Command(std::string_view line, bool secret) {
    Begin();
    pending_.push_back(Step::Command);
    onLine_(Direction::Sent, secret ? WithoutSecret(line) : std::string(line));
    out_ += line;
    out_ += "\r\n";
}

void SmtpSession::Quit() {
    Begin();
    Queue(Step::Quit, "QUIT");
}

void SmtpSession::Send(const SmtpEnvelope& envelope, MessageSource& source) {
    Begin();
    envelope_ = envelope;
    source_ = &source;
    nextRecipient_ = answeredRecipients_ = accepted_ = 0;
    refused_.clear();
    bytesSent_ = 0;
    if (!Admit()) return;

    const bool pipelining = extensions_.Offers("PIPELINING");
    const bool chunks = pipelining && extensions_.Offers("CHUNKING");
    form_ = chunks ? Form::Chunks : pipelining ? Form::Pipelined : Form::OneByOne;
    if (form_ == Form::Chunks && !ReadChunk()) return;
    QueueMail();
    if (form_ == Form::OneByOne) return;
    while (nextRecipient_ < envelope_.recipients.size())
        QueueRecipient();
    if (form_ == Form::Chunks) {
        QueueChunk();
    } else {
        Queue(Step::Data, "DATA");
    }
}

/// Why this server cannot be given the address; "" when it can.
std::string SmtpSession::Objection(const std::string& address) const {
    if (!IsMailbox(address)) return "Invalid e-mail address.";
    if (IsAscii(address) || extensions_.Offers("SMTPUTF8")) return {};
    return "The server does not take addresses outside ASCII.";
}

/// What this server cannot take is refused here, before anything is sent.
bool SmtpSession::Admit() {
    if (const std::string objection = Objection(envelope_.sender); !objection.empty()) {
        Finish({net_error::BadAddress,
                "The sender's address " + envelope_.sender + " cannot be used: " + objection});
        return false;
    }
    std::erase_if(envelope_.recipients, [&](const std::string& address) {
        std::string objection = Objection(address);
        const bool refused = !objection.empty();
        if (refused) refused_.push_back({address, std::move(objection)});
        return refused;
    });
    if (envelope_.recipients.empty()) {
        Finish({net_error::BadAddress, refused_.back().answer});
        return false;
    }
    const std::int64_t limit = extensions_.SizeLimit();
    if (limit > 0 && source_->Size() > limit) {
        Finish({net_error::TooLarge, "The message has " + std::to_string(source_->Size()) +
                                         " bytes, and the server takes no more than " +
                                         std::to_string(limit) + "."});
        return false;
    }
    return true;
}

// --- bytes out --------------------------------------------------------------------------------

void SmtpSession::QueueLine(std::string_view line) {
    onLine_(Direction::Sent, line);
    DropWritten();
    out_ += line;
    out_ += "\r\n";
}

void SmtpSession::Queue(Step step, std::string_view line) {
    pending_.push_back(step);
    QueueLine(line);
}

void SmtpSession::QueueMail() {
    const auto isOutsideAscii = [](const std::string& address) { return !IsAscii(address); };
    const bool utf8 =
        extensions_.Offers("SMTPUTF8") &&
        (envelope_.utf8 || isOutsideAscii(envelope_.sender) ||
         std::any_of(envelope_.recipients.begin(), envelope_.recipients.end(), isOutsideAscii));
    std::string line = "MAIL FROM:<" + envelope_.sender + ">";
    if (extensions_.Offers("SIZE")) line += " SIZE=" + std::to_string(source_->Size());
    if ((envelope_.eightBit || utf8) && extensions_.Offers("8BITMIME")) line += " BODY=8BITMIME";
    if (utf8) line += " SMTPUTF8";
    Queue(Step::Mail, line);
}

void SmtpSession::QueueRecipient() {
    Queue(Step::Rcpt, "RCPT TO:<" + envelope_.recipients[nextRecipient_++] + ">");
}

bool SmtpSession::ReadChunk() {
    chunk_.clear();
    NetError error = source_->Read(chunk_, ChunkSize, false);
    if (error.Ok()) return true;
    // Nothing of the first chunk's message is under way yet; later the server waits for the rest.
    if (bytesSent_ == 0) {
        Finish(std::move(error));
    } else {
        Break(std::move(error));
    }
    return false;
}

/// RFC 3030 section 2.
void SmtpSession::QueueChunk() {
    const bool last = source_->AtEnd();
    const std::string size = std::to_string(chunk_.size());
    Queue(last ? Step::LastChunk : Step::Chunk, "BDAT " + size + (last ? " LAST" : ""));
    onLine_(Direction::None, "DATA (" + size + " bytes)");
    out_ += chunk_;
    bytesSent_ += static_cast<std::int64_t>(chunk_.size());
    endQueued_ = last;
}

void SmtpSession::ReadData() {
    if (NetError error = source_->Read(out_, DataPiece, true); error.Failed()) {
        // Without its end the server drops what it has of the message.
        Break(std::move(error));
        return;
    }
    bytesSent_ += static_cast<std::int64_t>(out_.size());
    if (!source_->AtEnd()) return;
    std::string remark = "(";
    remark += std::to_string(bytesSent_) + " bytes of message)";
    onLine_(Direction::None, remark);
    out_ += ".\r\n";
    sendingData_ = false;
    endQueued_ = true;
}

void SmtpSession::DropWritten() {
    if (outPosition_ < out_.size()) return;
    out_.clear();
    outPosition_ = 0;
}

std::string_view SmtpSession::Output() {
    DropWritten();
    if (out_.empty() && sendingData_) ReadData();
    return std::string_view(out_).substr(outPosition_);
}

void SmtpSession::Written(std::size_t count) {
    outPosition_ = std::min(outPosition_ + count, out_.size());
    if (outPosition_ < out_.size()) return;
    if (endQueued_) endSent_ = true;
    RecoverWhenQuiet();
}

// --- bytes in ---------------------------------------------------------------------------------

void SmtpSession::Receive(std::string_view bytes) {
    while (!broken_) {
        const auto line = lines_.Next(bytes);
        if (!line) break;
        onLine_(Direction::Received, *line);
        const SmtpReply::Progress progress = reply_.AddLine(*line);
        if (progress == SmtpReply::Progress::Malformed) return Break(NotUnderstood(*line));
        if (progress == SmtpReply::Progress::Complete) OnReply();
    }
    if (!broken_ && lines_.TooLong()) {
        Break({net_error::BadReply, "The server's answer has a line without an end."});
    }
}

/// The only replies that can belong to the step; anything else means that the two sides no longer
/// speak of the same command.
bool SmtpSession::Fits(Step step, int code) {
    if (code >= 400) return true;
    if (step == Step::Command) return true;
    if (step == Step::Data) return code == 354;
    return code < 300;
}

/// The command has not begun to go out. (In the middle of the data a refusal may come at any time.)
bool SmtpSession::IsUnasked(Step step) const {
    return step != Step::DataEnd && outPosition_ == 0 && !out_.empty();
}

void SmtpSession::OnReply() {
    if (reply_.Code() == 421) return Break(reply_.AsError());
    if (!AnswersPending() || IsUnasked(pending_[nextPending_]) ||
        !Fits(pending_[nextPending_], reply_.Code())) {
        return Break(NotUnderstood(reply_.Description()));
    }
    answered_ = true;
    const Step step = pending_[nextPending_++];
    switch (step) {
        case Step::Mail:
            OnMail();
            break;
        case Step::Rcpt:
            OnRecipient();
            break;
        case Step::Data:
            OnData();
            break;
        case Step::Chunk:
        case Step::LastChunk:
            OnChunk(step);
            break;
        case Step::DataEnd:
            OnDataEnd();
            break;
        case Step::EmptyEnd:
            break;
        case Step::Rset:
            OnReset();
            break;
        case Step::Command:
            Finish(reply_.Refused() ? reply_.AsError() : NetError{});
            break;
        case Step::Quit:
            Break({});
            break;
    }
    RecoverWhenQuiet();
}

void SmtpSession::OnMail() {
    if (reply_.Refused()) {
        NoteFailure(reply_.AsError());
    } else if (form_ == Form::OneByOne) {
        QueueRecipient();
    }
}

void SmtpSession::OnRecipient() {
    const std::string& address = envelope_.recipients[answeredRecipients_++];
    if (failure_.Failed()) return;  // MAIL was refused, so this says nothing about the recipient
    if (reply_.Accepted()) {
        ++accepted_;
    } else {
        refused_.push_back({address, reply_.Description()});
    }
    if (answeredRecipients_ == envelope_.recipients.size()) {
        if (accepted_ == 0) {
            NoteFailure(reply_.AsError());
        } else if (form_ == Form::OneByOne) {
            Queue(Step::Data, "DATA");
        }
    } else if (form_ == Form::OneByOne) {
        QueueRecipient();
    }
}

void SmtpSession::OnData() {
    if (reply_.Refused()) {
        NoteFailure(reply_.AsError());
    } else if (failure_.Failed()) {
        // A server may ask for the data although nobody is left to get it (RFC 2920 section 3.1).
        Queue(Step::EmptyEnd, ".");
    } else {
        pending_.push_back(Step::DataEnd);
        sendingData_ = true;
    }
}

void SmtpSession::OnChunk(Step step) {
    if (reply_.Refused()) {
        NoteFailure(reply_.AsError());
    } else if (failure_.Failed()) {
        return;
    } else if (step == Step::Chunk) {
        if (ReadChunk()) QueueChunk();
    } else if (endSent_) {
        Finish({});
    } else {
        Break(NotUnderstood(reply_.Description()));
    }
}

void SmtpSession::OnDataEnd() {
    if (endSent_) {
        if (reply_.Accepted()) {
            Finish({});
        } else {
            NoteFailure(reply_.AsError());
        }
    } else if (reply_.Refused()) {
        Break(reply_.AsError());  // in the middle of the data; the server hangs up
    } else {
        Break(NotUnderstood(reply_.Description()));
    }
}

void SmtpSession::OnReset() {
    if (reply_.Accepted()) {
        Finish(failure_);
    } else {
        Break(failure_);
    }
}

void SmtpSession::NoteFailure(NetError failure) {
    if (!failure_.Failed()) failure_ = std::move(failure);
}

/// After a failure, when everything is written and answered: RSET.
void SmtpSession::RecoverWhenQuiet() {
    if (done_ || !failure_.Failed() || AnswersPending() || outPosition_ < out_.size()) return;
    Queue(Step::Rset, "RSET");
}

NetError SmtpSession::Interrupted(NetError cause) const {
    if (failure_.Failed()) return failure_;
    const bool refusal = cause.code >= 400;  // definite, whatever was sent (RFC 5321 section 4.2.1)
    if (endSent_ && !done_ && !refusal) {
        return {net_error::AnswerLost,
                "The server's answer was lost; the message may have been accepted."};
    }
    return cause;
}

}  // namespace mailvane
