#include "send/run/SendPreparation.h"

#include "core/MessageBoxes.h"
#include "core/Waiting.h"
#include "core/run/frmStatus.h"
#include "core/settings/Settings.h"
#include "store/MessageStore.h"

namespace mailvane {

namespace {

constexpr std::int64_t SilentRows = 20;        ///< so many are listed without a dialog
constexpr std::int64_t ManySentItems = 40000;  ///< more than this raise the question
constexpr std::size_t ListPiece = 500;
constexpr const char* Preparing = "Preparing messages...";

bool OpenStore(SendJob& job) {
    auto& workspace = job.wb.state.MainWorkspace;
    if (!workspace) workspace = Workspace::Create();
    auto opened = workspace->OpenDatabase(MessageStorePath(job.wb));
    if (opened.Ok())
        job.store = *opened;
    else
        job.NoteError(opened.Error());
    return opened.Ok();
}

/// What a run that died had sent leaves the Outbox now, as if that run had ended. Gives what could
/// not be taken out.
AcceptedMessages FinishInterruptedRun(SendJob& job) {
    auto accepted = SentLedger::Entries(*job.store);
    if (accepted.Failed()) {
        job.NoteError(accepted.Error());
        return {};
    }
    accepted->insert(job.memory.unrecorded.begin(), job.memory.unrecorded.end());
    if (accepted->empty()) return {};
    const BusyPointer pointer(job.wb);
    job.notes.NoteAccepted(*job.store, *accepted, job.memory.reported);
    AcceptedMessages unfinished = job.FinishMessages(*accepted);
    job.RefreshMailView();
    return unfinished;
}

void FillMessageList(SendJob& job, const Recordset& list) {
    const std::int64_t count = list.RecordCount();
    if (count > SilentRows) ShowPreparing(job.wb, Preparing, static_cast<long>(count));
    job.status->ClearMessages();
    for (std::size_t first = 0; first < static_cast<std::size_t>(count); first += ListPiece) {
        const auto rows = list.ReadRows(first, ListPiece);
        if (rows.Failed()) {
            job.NoteError(rows.Error());
            break;
        }
        for (const auto& row : *rows) {
            job.status->AddMessage(row[0].TextOrEmpty(), row[1].TextOrEmpty(),
                                   row[2].TextOrEmpty());
            StepPreparing(job.wb);
        }
    }
    job.status->ShowMessages();
    EndPreparing(job.wb);
}

std::optional<SendOutcome> PrepareSendList(SendJob& job) {
    const BusyPointer pointer(job.wb);
    const auto list = job.store->OpenRecordset("SELECT [Subject], [To], [From] FROM [" +
                                               std::string(OutboxFolder) + "]");
    if (list.Failed()) {
        job.NoteError(list.Error());
        return SendOutcome::NotStarted;
    }
    const std::int64_t count = (*list)->RecordCount();
    if (count == 0) {
        job.ShowStatus("Your Outbox folder is empty.");
        return job.errors.empty() ? SendOutcome::NothingToSend : SendOutcome::NotStarted;
    }
    job.TakeStatusForm();
    job.status->lStatus.SetText("Connecting to the server...");
    job.status->SetCaption(SendingCaption);
    if (job.wb.shell) job.wb.shell->SetPanel(Preparing);
    FillMessageList(job, **list);
    job.wb.platform.windows.PumpEvents();
    job.ShowStatus(job.status->lStatus.Text());
    job.status->Show();
    job.status->lStats.SetText(std::to_string(count) + (count == 1 ? " message." : " messages."));
    return {};
}

/// Without them nothing can be sent: it might be sent twice.
DaoError OpenLedgers(SendJob& job, OpenOutbox& outbox) {
    auto ledger = SentLedger::Open(*job.store);
    if (ledger.Failed()) return ledger.Error();
    outbox.ledger = *ledger;
    auto delivered = DeliveredLedger::Entries(*job.store);
    if (delivered.Failed()) return delivered.Error();
    outbox.deliveredBefore = std::move(*delivered);
    for (const auto& [id, addresses] : job.memory.unrecordedRecipients)
        outbox.deliveredBefore[id].insert(addresses.begin(), addresses.end());
    return {};
}

bool OpenRows(SendJob& job, OpenOutbox& outbox) {
    auto opened = job.store->OpenRecordset(OutboxFolder, RecordsetType::Table);
    if (opened.Failed()) {
        job.NoteError(opened.Error());
        return false;
    }
    outbox.rows = *opened;
    job.storeFailure = OpenLedgers(job, outbox);
    job.count = outbox.rows->RecordCount();
    job.status->Progress1.SetMaximum(static_cast<long>(job.count));
    job.status->Progress1.SetValue(0);
    return true;
}

void OfferToEmptySentItems(SendJob& job) {
    if (job.wb.state.UnattendedRun) return;
    const auto sentItems = job.store->OpenRecordset(SentItemsFolder, RecordsetType::Table);
    if (sentItems.Failed()) return job.NoteError(sentItems.Error());
    if ((*sentItems)->RecordCount() <= ManySentItems) return;
    if (!AskYesNo(job.wb,
                  "You have more than 40000 messages in your 'Sent Items' folder. You can save "
                  "some disk space and improve performance if you delete these messages. Do you "
                  "want to delete messages now? "))
        return;
    const auto deleted = job.store->Execute("DELETE * FROM [Sent Items]");
    if (deleted.Failed()) job.NoteError(deleted.Error());
}

void StartLog(SendJob& job) {
    const bool wanted = job.settings.chkServer.Checked() && !job.projectFolder.empty() &&
                        GetUserSetting(job.wb, "MailServer", "Logs") == "1";
    if (!wanted || job.log.Open(job.projectFolder, job.wb.platform.clock.Now())) return;
    job.AddError("Error: The session log could not be written.\r\n");
}

}  // namespace

std::optional<SendOutcome> PrepareSending(SendJob& job, OpenOutbox& outbox) {
    if (!OpenStore(job)) return SendOutcome::NotStarted;
    outbox.acceptedBefore = FinishInterruptedRun(job);
    if (const auto ended = PrepareSendList(job)) return ended;
    if (!OpenRows(job, outbox)) return SendOutcome::NotStarted;
    OfferToEmptySentItems(job);
    StartLog(job);
    // A row that no run has tried yet may have no number of attempts.
    static_cast<void>(job.store->Execute("UPDATE Outbox SET Retries = 0 WHERE Retries = Null"));
    return {};
}

}  // namespace mailvane
