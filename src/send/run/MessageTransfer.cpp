#include "send/run/MessageTransfer.h"

#include "core/Waiting.h"
#include "core/text/Text.h"

namespace mailvane {

namespace {

constexpr std::chrono::seconds LastMessageTime{5};

/// Without pipelining or chunking every message has a DATA line; with chunking it has BDAT lines.
bool BeginsMessage(const std::string& line) {
    return ContainsText(line, "DATA") || line.starts_with("BDAT");
}

}  // namespace

MessageTransfer::MessageTransfer(SendJob& job) : job_(job), outgoing_(job.wb, job.settings, smtp_) {
    smtp_.onError = [this](int code, const std::string& description) {
        OnError(code, description);
    };
    smtp_.onProtocol = [this](Direction direction, const std::string& text) {
        OnProtocol(direction, text);
    };
    smtp_.onProgress = [this](std::int64_t, std::int64_t) { NoteActivity(); };
    smtp_.onIdle = [this] { Yield(); };
    outgoing_.OnDelivered = [this](const auto& addresses) { return onDelivered(addresses); };
}

std::string MessageTransfer::Send(MessageRecord& record,
                                  const std::set<std::string>& deliveredBefore) {
    current_.From = record.From;
    current_.To = record.To;
    current_.Subject = record.Subject;
    NoteActivity();
    // Giving up the message before has taken the server's name away.
    smtp_.MailServer = job_.settings.txtSMTPServer.Text();
    outgoing_.DeliveredBefore = deliveredBefore;
    sending_ = true;
    std::string error = outgoing_.BuildOutgoingMessage(record);
    sending_ = false;
    return error;
}

std::vector<RefusedRecipient> MessageTransfer::Refusals(bool all) const {
    std::vector<RefusedRecipient> refusals = outgoing_.RefusedRecipients();
    if (all)
        refusals.insert(refusals.end(), smtp_.RefusedRecipients().begin(),
                        smtp_.RefusedRecipients().end());
    return refusals;
}

void MessageTransfer::Stop() {
    outgoing_.GiveUp();
    Disconnect();
}

void MessageTransfer::StopSoon() {
    stopAt_ = job_.wb.platform.clock.Monotonic() + LastMessageTime;
}

void MessageTransfer::GiveUpMessage() {
    Stop();
    smtp_.MailServer = "";
}

void MessageTransfer::Disconnect() {
    smtp_.SetAction(SmtpClient::Action::Disconnect).Ignore();
}

void MessageTransfer::Yield() {
    if (job_.status) job_.status->ShowProtocolWhenDue();
    YieldBriefly(job_.wb);
    const bool late = stopAt_ && job_.wb.platform.clock.Monotonic() >= *stopAt_;
    if (sending_ && (late || job_.wb.platform.windows.Quitting())) outgoing_.GiveUp();
}

void MessageTransfer::OnError(int code, const std::string& description) {
    if (!sending_) return;  // taking leave of the server has failed: no message suffers
    if (code == net_error::AnswerLost) ++job_.doubtful;
    job_.AddMessageError(outgoing_.ErrorText({code, description}),
                         "From: " + current_.From + "\r\n", current_.To, current_.Subject,
                         job_.wb.platform.clock.Now().Stamp());
}

void MessageTransfer::OnProtocol(Direction direction, const std::string& text) {
    NoteActivity();
    const std::string line = "SMTP:" + std::to_string(static_cast<int>(direction)) + ": " + text;
    job_.log.Print(line);
    if (!job_.status) return;
    job_.status->AddProtocolLine(line);
    if (BeginsMessage(text))
        job_.ShowStatus("Sending message " + std::to_string(job_.handled + 1) + " of " +
                        std::to_string(job_.count) + "...");
}

void MessageTransfer::NoteActivity() {
    job_.wb.state.LastSmtpActivity = SecondsSinceMidnight(job_.wb.platform.clock.Now());
}

}  // namespace mailvane
