#include "send/run/OutboxWalk.h"

#include "store/MessageStore.h"

namespace mailvane {

namespace {

constexpr const char* Connected = "connected";
constexpr const char* Success = "success";
constexpr const char* Failure = "error";

}  // namespace

OutboxWalk::OutboxWalk(SendJob& job, OpenOutbox& outbox, MessageTransfer& transfer)
    : job_(job), outbox_(outbox), transfer_(transfer) {
    transfer_.onDelivered = [this](const std::vector<std::string>& addresses) {
        job_.notes.NotePart(addresses);
        partFailure_ = NoteDelivered(addresses);
        job_.partUnrecorded = partFailure_.Failed();
        return partFailure_.Ok();
    };
}

SendOutcome OutboxWalk::Walk(LongRun& run) {
    if (job_.storeFailure.Failed()) return SendOutcome::StoreFailed;
    TakeUp();
    while (job_.handled < job_.count) {
        if (run.Cancelled()) return SendOutcome::Cancelled;
        SendCurrentMessage();
        if (job_.storeFailure.Failed()) return SendOutcome::StoreFailed;
        if (run.Cancelled()) return SendOutcome::Cancelled;
        ++job_.handled;
        job_.status->Progress1.SetValue(static_cast<long>(job_.handled));
        transfer_.Yield();
    }
    return SendOutcome::Complete;
}

/// Sends the message that was taken up, and takes up the next one.
void OutboxWalk::SendCurrentMessage() {
    const auto nothing = [] { return DaoError(); };
    const std::int32_t id = nextId_;
    if (const auto before = outbox_.acceptedBefore.find(id);
        before != outbox_.acceptedBefore.end()) {
        job_.sent.insert(*before);
        ShowResult(Success);
        return StepOn(nothing, false);
    }
    if (next_.Failed()) {
        job_.NoteError(next_.Error());
        ShowResult(Failure);
        return StepOn(nothing, false);
    }
    ShowResult(Connected);
    MessageRecord record = std::move(*next_);
    to_ = record.To;
    attempt_ = job_.wb.platform.clock.Now();
    const auto part = outbox_.deliveredBefore.find(id);
    const std::set<std::string> deliveredBefore =
        part == outbox_.deliveredBefore.end() ? std::set<std::string>() : part->second;
    const std::string error = transfer_.Send(record, deliveredBefore);
    // For the delivery report.
    job_.notes.NoteMessage(record, deliveredBefore, transfer_.Refusals(!error.empty()), error);
    AddErrors(record.Subject, error);
    RecordSendResult(id, error);
    if (partFailure_.Failed()) job_.storeFailure = partFailure_;
}

void OutboxWalk::RecordSendResult(std::int32_t id, const std::string& error) {
    if (error.empty()) {
        job_.sent[id] = attempt_;
        job_.memory.reported.insert(id);
        StepOn([&] { return SentLedger::Record(*outbox_.ledger, id, attempt_); }, true);
        if (job_.storeFailure.Failed()) job_.memory.unrecorded[id] = attempt_;
        return ShowResult(Success);
    }
    StepOn([this] { return MarkFailed(); }, false);
    ShowResult(Failure);
}

void OutboxWalk::AddErrors(const std::string& subject, const std::string& error) {
    const std::string today = job_.wb.platform.clock.Now().ShortDate();
    for (const RefusedRecipient& refused : transfer_.Refused())
        job_.AddMessageError(refused.answer, "", refused.address, subject, today);
    if (!error.empty()) job_.AddMessageError(error, "", to_, subject, today);
}

/// Notes what became of the current row and takes up the next one, in one commit. With `durable`
/// that is on the disk before the next message starts, and a result that cannot be noted ends the
/// run.
void OutboxWalk::StepOn(const std::function<DaoError()>& noteResult, bool durable) {
    job_.storeFailure = job_.store->Transaction(
        [&]() -> DaoError {
            const DaoError failed = noteResult();
            if (failed.Failed() && (durable || IsStorageFailure(failed))) return failed;
            job_.NoteError(failed);
            job_.NoteError(outbox_.rows->MoveNext());
            TakeUp();
            return {};
        },
        durable);
}

/// Reads the row that the run stands on.
void OutboxWalk::TakeUp() {
    if (outbox_.rows->EndOfFile()) return;
    next_ = ReadMessageRow(*outbox_.rows);
    const DaoResult<DaoValue> id = outbox_.rows->Get("ID");
    nextId_ = static_cast<std::int32_t>(id.Ok() ? id->NumberOr(0) : 0);
}

/// Keeps them from getting the message again when the rest of it has to wait for another run.
DaoError OutboxWalk::NoteDelivered(const std::vector<std::string>& addresses) {
    DaoError failed = DeliveredLedger::Record(*job_.store, nextId_, addresses);
    if (failed.Failed())
        job_.memory.unrecordedRecipients[nextId_].insert(addresses.begin(), addresses.end());
    return failed;
}

/// The date of a message is the time of the attempt to send it.
DaoError OutboxWalk::MarkFailed() {
    Recordset& row = *outbox_.rows;
    const DaoResult<DaoValue> retries = row.Get("Retries");
    if (retries.Failed()) return retries.Error();
    if (DaoError failed = row.Edit(); failed.Failed()) return failed;
    if (DaoError failed = row.Set("Date", attempt_); failed.Failed()) return failed;
    if (DaoError failed = row.Set("Status", Failure); failed.Failed()) return failed;
    if (DaoError failed = row.Set("Retries", retries->NumberOr(0) + 1); failed.Failed())
        return failed;
    return row.Update();
}

void OutboxWalk::ShowResult(const char* status) {
    job_.status->SetMessageStatus(static_cast<std::size_t>(job_.handled), status);
}

}  // namespace mailvane
