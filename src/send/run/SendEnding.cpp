#include "send/run/SendEnding.h"

#include "connection/frmDial.h"
#include "core/MessageBoxes.h"
#include "core/Paths.h"
#include "core/Running.h"
#include "core/Waiting.h"
#include "core/project/Project.h"
#include "core/text/Text.h"
#include "send/report/frmDeliveryReport.h"
#include "send/run/frmMSGSndRecvError.h"
#include "store/MessageStore.h"

namespace mailvane {

namespace {

constexpr const char* Canceled = "Canceled!";

void RemoveSentMessages(SendJob& job) {
    if (job.sent.empty()) return;
    const BusyPointer pointer(job.wb);
    job.ShowStatus("Deleting successfully sent messages.");
    job.status->ShowProtocol();
    job.wb.platform.windows.PumpEvents();
    job.FinishMessages(job.sent);
}

/// Drops a message once it has failed as often as the settings say.
void DeleteUndeliverables(SendJob& job) {
    if (!job.settings.chkDeleteUndeliverables.Checked()) return;
    const auto most = static_cast<long>(NumberOf(job.settings.txtDeleteUndeliverables.Text())) - 1;
    // Undeliverable messages that stay are tried again by the next run.
    static_cast<void>(
        job.store->Execute("DELETE FROM [Outbox] WHERE Retries > " + std::to_string(most)));
    job.NoteError(DeliveredLedger::RemoveGone(*job.store));
}

void HangUp(SendJob& job) {
    if (!job.wb.state.FinalRunStep || !job.status->chkHang.Checked()) return;
    frmDial& dial = job.wb.forms.Get<frmDial>();
    dial.Hide();
    if (job.wb.shell) job.wb.shell->SetPanel("Disconnecting from the Internet...");
    dial.cmdDisconnect.Press();
}

/// The rest of a run that has gone through the Outbox, or a part of it, while the status form is
/// still there.
void LeaveOutbox(SendJob& job, bool cancelled) {
    DeleteUndeliverables(job);
    if (cancelled) WaitSeconds(job.wb, 2);
    HangUp(job);
    if (!cancelled && job.wb.state.FinalRunStep) job.memory.dialPromptShown = false;
    WaitSeconds(job.wb, 1);
    if (cancelled)
        job.status->Hide();
    else
        job.UnloadStatusForm();
}

/// True when the Outbox is known to be empty.
bool CountLeft(SendJob& job) {
    const auto left =
        job.store ? job.store->OpenRecordset(OutboxFolder)
                  : DaoResult<std::shared_ptr<Recordset>>(MakeDaoError(dao_error::ObjectNotSet));
    job.left = left.Ok() ? (*left)->RecordCount() : 0;
    return left.Ok() && job.left == 0;
}

/// A run that had nothing to send is not worth a report.
void ReportDelivery(SendJob& job) {
    if (job.count == 0 && job.notes.Empty()) return;
    RecordDeliveryRun(job.wb, job.projectFolder, job.notes.Take(job.left));
}

/// `ask` is off when nobody wants to be asked now.
void ReportErrors(SendJob& job, bool ask) {
    const std::string path = ErrorLogPath(job.wb, job.projectFolder);
    if (!WriteFileText(path, job.errors))
        Tell(job.wb, "The file '" + path + "' could not be written.", BoxIcon::Exclamation);
    if (!ask) return;
    job.settings.Timer1.Start();
    if (AskToShowErrorLog(job.wb, job.doubtful)) ShowDocument(job.wb, path);
    job.settings.Timer1.Stop();
}

void TellOutcome(SendJob& job, bool emptied) {
    if (!emptied && !job.errors.empty())
        return job.ShowStatus("Some errors occurred while processing the requested tasks.");
    if (job.status) job.status->Progress1.SetValue(job.status->Progress1.Maximum());
    job.ShowStatus("Your e-mail messages are successfully sent!");
}

void CloseAll(SendJob& job, MessageTransfer& transfer) {
    if (!job.log.Close()) job.errors += "Error: The session log could not be written.\r\n";
    if (job.store) job.store->Close();
    WaitSeconds(job.wb, 1);
    transfer.Disconnect();
}

void TellStoreFailure(SendJob& job) {
    if (!ContainsText(job.errors, job.storeFailure.description)) job.NoteError(job.storeFailure);
    job.UnloadStatusForm();
    std::string text =
        "The message store cannot be written: " + job.storeFailure.description +
        "\r\nThe run stops here. The messages that were not sent stay in the Outbox.";
    if (!job.memory.unrecorded.empty() || job.partUnrecorded)
        text +=
            "\r\nThe server has accepted the last message, but that could not be recorded: leave "
            "the program running, make room, and send again.";
    if (!job.wb.state.UnattendedRun) Tell(job.wb, text, BoxIcon::Critical);
}

}  // namespace

void EndSending(SendJob& job, MessageTransfer& transfer, const LongRun& run, SendOutcome outcome) {
    const bool cancelled = outcome == SendOutcome::Cancelled;
    if (cancelled) job.ShowStatus(Canceled);
    if (outcome != SendOutcome::Complete) transfer.Disconnect();
    RemoveSentMessages(job);
    if (cancelled || outcome == SendOutcome::Complete) LeaveOutbox(job, cancelled);
    if (outcome == SendOutcome::StoreFailed) TellStoreFailure(job);
    const bool emptied = CountLeft(job);
    ReportDelivery(job);
    if (outcome == SendOutcome::NothingToSend) return job.store->Close();
    TellOutcome(job, emptied);
    CloseAll(job, transfer);
    // Whoever has ended the run tells how far it came.
    if (!job.errors.empty() && !job.wb.state.UnattendedRun) ReportErrors(job, !run.EndAsked());
    job.UnloadStatusForm();
    if (outcome != SendOutcome::NotStarted) job.RefreshMailView();
    if (cancelled) job.ShowStatus(Canceled);
}

}  // namespace mailvane
