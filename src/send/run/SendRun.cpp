#include "send/run/SendRun.h"

#include "connection/frmDial.h"
#include "core/Waiting.h"
#include "core/text/Text.h"
#include "send/run/SendSettings.h"
#include "send/run/SentMessages.h"
#include "store/MessageStore.h"
#include "store/view/frmViewEmail.h"

namespace mailvane {

namespace {

constexpr const char* Connected = "connected";
constexpr const char* Success = "success";
constexpr const char* Failure = "error";
constexpr const char* Canceled = "Canceled!";
constexpr const char* LineEnd = "\r\n";

/// A block of the error log for one message; `first` names the sender or nothing.
std::string ErrorBlock(const std::string& error, const std::string& first, const std::string& to,
                       const std::string& subject, const std::string& date) {
    return "Error: " + error + LineEnd + first + "To: " + to + LineEnd + "Subject: " + subject +
           LineEnd + "Date: " + date + LineEnd + LineEnd;
}

/// Without pipelining or chunking every message has a DATA line; with chunking it has BDAT lines.
bool BeginsMessage(const std::string& line) {
    return ContainsText(line, "DATA") || line.starts_with("BDAT");
}

}  // namespace

SendRun::SendRun(Workbench& wb, frmSettings& settings, SendMemory& memory)
    : wb_(wb),
      settings_(settings),
      memory_(memory),
      projectFolder_(wb.state.ProjectFolder),
      outgoing_(wb, settings, smtp_),
      notes_(wb.platform.clock.Now()) {
    smtp_.onError = [this](int code, const std::string& description) {
        OnSmtpError(code, description);
    };
    smtp_.onProtocol = [this](Direction direction, const std::string& text) {
        OnProtocol(direction, text);
    };
    smtp_.onProgress = [this](std::int64_t, std::int64_t) { NoteActivity(); };
    smtp_.onIdle = [this] { Yield(); };
    outgoing_.OnDelivered = [this](const std::vector<std::string>& addresses) {
        notes_.NotePart(addresses);
        partFailure_ = NoteDelivered(addresses);
        return partFailure_.Ok();
    };
}

SendRun::~SendRun() {
    LeaveStatusForm();
}

void SendRun::SendAll() {
    if (ValidateSendSettings(wb_, settings_, memory_.dialPromptShown)) {
        if (wb_.state.FinalRunStep) memory_.dialPromptShown = false;
        return;
    }
    // A Cancel that came after the last look at the flag belongs to the run before.
    wb_.state.CancelRequested = false;
    if (!Open()) return FinishSendRun();
    FinishInterruptedRun();
    if (!PrepareSendList()) return errors_.empty() ? FinishEmptyRun() : FinishSendRun();
    if (!OpenOutbox()) {
        UnloadStatus();
        return FinishSendRun();
    }
    OfferToEmptySentItems();
    StartLog();
    ResetRetries();
    if (!WalkOutbox()) return;
    RemoveSentMessages();
    DeleteUndeliverables();
    HangUp();
    if (wb_.state.FinalRunStep) memory_.dialPromptShown = false;
    WaitSeconds(wb_, 1);
    UnloadStatus();
    FinishSendRun();
    RefreshMailView();
}

// --- one message ------------------------------------------------------------------------------

/// False when the run was cancelled or had to stop; it has been closed then.
bool SendRun::WalkOutbox() {
    outgoing_.FirstMessage = true;
    TakeUp();
    for (handled_ = 0; handled_ < count_;) {
        if (storeFailure_.Ok() && !Interrupted())
            SendCurrentMessage(static_cast<std::size_t>(handled_));
        if (storeFailure_.Failed()) {
            StopForStore();
            return false;
        }
        if (CheckCancel()) {
            ShowStatus(Canceled);
            return false;
        }
        ++handled_;
        status_->Progress1.SetValue(static_cast<long>(handled_));
        Yield();
    }
    return true;
}
/// Sends the message that was taken up, and takes up the next one.
void SendRun::SendCurrentMessage(std::size_t row) {
    const auto nothing = [] { return DaoError(); };
    const std::int32_t id = nextId_;
    if (acceptedBefore_.contains(id)) {
        sent_[id] = acceptedBefore_[id];
        status_->SetMessageStatus(row, Success);
        return StepOn(nothing, false);
    }
    if (next_.Failed()) {
        NoteError(next_.Error());
        status_->SetMessageStatus(row, Failure);
        return StepOn(nothing, false);
    }
    status_->SetMessageStatus(row, Connected);
    MessageRecord record = std::move(*next_);
    current_ = {record.From, record.To, record.Subject};
    attempt_ = wb_.platform.clock.Now();
    NoteActivity();
    // Giving up the message before has taken the server's name away.
    smtp_.MailServer = settings_.txtSMTPServer.Text();
    const auto delivered = deliveredBefore_.find(id);
    outgoing_.DeliveredBefore =
        delivered == deliveredBefore_.end() ? std::set<std::string>() : delivered->second;
    sending_ = true;
    const std::string error = outgoing_.BuildOutgoingMessage(record);
    sending_ = false;
    NoteRefusedRecipients();
    NoteOutcome(record, error);
    RecordSendResult(id, error, row);
    if (partFailure_.Failed()) storeFailure_ = partFailure_;
}

void SendRun::RecordSendResult(std::int32_t id, const std::string& error, std::size_t row) {
    if (error.empty()) {
        sent_[id] = attempt_;
        memory_.reported.insert(id);
        StepOn([&] { return SentLedger::Record(*ledger_, id, attempt_); }, true);
        if (storeFailure_.Failed()) memory_.unrecorded[id] = attempt_;
        status_->SetMessageStatus(row, Success);
        return;
    }
    AddError(
        ErrorBlock(error, "", current_.to, current_.subject, wb_.platform.clock.Now().ShortDate()));
    StepOn([this] { return MarkFailed(); }, false);
    status_->SetMessageStatus(row, Failure);
}

/// Notes what became of the current row and takes up the next one, in one commit. With `durable`
/// that is on the disk before the next message starts, and a result that cannot be noted ends the
/// run.
void SendRun::StepOn(const std::function<DaoError()>& noteResult, bool durable) {
    storeFailure_ = database_->Transaction(
        [&]() -> DaoError {
            const DaoError failed = noteResult();
            if (failed.Failed() && (durable || IsStorageFailure(failed))) return failed;
            NoteError(failed);
            NoteError(outbox_->MoveNext());
            TakeUp();
            return {};
        },
        durable);
}

/// Reads the row that the run stands on.
void SendRun::TakeUp() {
    if (outbox_->EndOfFile()) return;
    next_ = ReadMessageRow(*outbox_);
    const DaoResult<DaoValue> id = outbox_->Get("ID");
    nextId_ = static_cast<std::int32_t>(id.Ok() ? id->NumberOr(0) : 0);
}

/// Keeps them from getting the message again when the rest of it has to wait for another run.
DaoError SendRun::NoteDelivered(const std::vector<std::string>& addresses) {
    DaoError failed = DeliveredLedger::Record(*database_, nextId_, addresses);
    if (failed.Failed())
        memory_.unrecordedRecipients[nextId_].insert(addresses.begin(), addresses.end());
    return failed;
}

void SendRun::NoteRefusedRecipients() {
    for (const RefusedRecipient& refused : outgoing_.RefusedRecipients()) {
        AddError(ErrorBlock(refused.answer, "", refused.address, current_.subject,
                            wb_.platform.clock.Now().ShortDate()));
    }
}

/// For the delivery report. When nobody has taken the message its recipients may still have got
/// answers of their own.
void SendRun::NoteOutcome(const MessageRecord& record, const std::string& error) {
    std::vector<RefusedRecipient> refusals = outgoing_.RefusedRecipients();
    if (!error.empty())
        refusals.insert(refusals.end(), smtp_.RefusedRecipients().begin(),
                        smtp_.RefusedRecipients().end());
    notes_.NoteMessage(record, outgoing_.DeliveredBefore, refusals, error);
}

/// The date of a message is the time of the attempt to send it.
DaoError SendRun::MarkFailed() {
    const DaoResult<DaoValue> retries = outbox_->Get("Retries");
    if (retries.Failed()) return retries.Error();
    if (DaoError failed = outbox_->Edit(); failed.Failed()) return failed;
    if (DaoError failed = outbox_->Set("Date", attempt_); failed.Failed()) return failed;
    if (DaoError failed = outbox_->Set("Status", Failure); failed.Failed()) return failed;
    if (DaoError failed = outbox_->Set("Retries", retries->NumberOr(0) + 1); failed.Failed())
        return failed;
    return outbox_->Update();
}

// --- events -----------------------------------------------------------------------------------

void SendRun::OnSmtpError(int code, const std::string& description) {
    if (!sending_) return;  // taking leave of the server has failed: no message suffers
    if (code == net_error::AnswerLost) ++doubtful_;
    const std::string text = outgoing_.ErrorText({code, description});
    AddError(ErrorBlock(text, "From: " + current_.from + LineEnd, current_.to, current_.subject,
                        wb_.platform.clock.Now().Stamp()));
}

void SendRun::OnProtocol(Direction direction, const std::string& text) {
    NoteActivity();
    const std::string line = "SMTP:" + std::to_string(static_cast<int>(direction)) + ": " + text;
    log_.Print(line);
    if (!status_) return;
    status_->AddProtocolLine(line);
    if (BeginsMessage(text))
        ShowStatus("Sending message " + std::to_string(handled_ + 1) + " of " +
                   std::to_string(count_) + "...");
}

void SendRun::NoteActivity() {
    wb_.state.LastSmtpActivity = SecondsSinceMidnight(wb_.platform.clock.Now());
}

void SendRun::Yield() {
    if (status_) status_->ShowProtocolWhenDue();
    YieldBriefly(wb_);
    // The run's own forms have gone with their project: nobody is left to send for.
    if (sending_ && Interrupted()) outgoing_.GiveUp();
}

bool SendRun::Interrupted() const {
    return !settings_.IsLoaded() || (status_ && !status_->IsLoaded()) ||
           wb_.platform.windows.Quitting();
}

void SendRun::ShowStatus(const std::string& text) {
    if (status_)
        status_->ShowStatus(text);
    else if (wb_.shell)
        wb_.shell->SetPanel(text);
}

void SendRun::LeaveStatusForm() {
    if (!status_) return;
    status_->onStopTransfer = nullptr;
    status_->onGiveUpMessage = nullptr;
    status_ = nullptr;
}

void SendRun::UnloadStatus() {
    frmStatusEmail* status = status_;
    LeaveStatusForm();
    if (status) status->Unload();
}

void SendRun::AddError(const std::string& text) {
    errors_ += text;
    log_.Print(text);
}

void SendRun::NoteError(const DaoError& error) {
    if (error.Failed() && error.number != dao_error::NoCurrentRecord)
        AddError("Error: " + error.description + LineEnd);
}

}  // namespace mailvane
