#include "connection/frmDial.h"
#include "core/MessageBoxes.h"
#include "core/Paths.h"
#include "core/Running.h"
#include "core/Waiting.h"
#include "core/text/Text.h"
#include "send/report/frmDeliveryReport.h"
#include "send/run/SendRun.h"
#include "send/run/SentMessages.h"
#include "send/run/frmMSGSndRecvError.h"
#include "store/MessageStore.h"
#include "store/view/frmViewEmail.h"

namespace mailvane {

/// True when the run ends here; it has been closed then.
bool SendRun::CheckCancel() {
    if (!wb_.state.CancelRequested && !Interrupted()) return false;
    wb_.state.CancelRequested = false;
    ShowStatus("Canceled!");
    smtp_.SetAction(SmtpClient::Action::Disconnect).Ignore();
    RemoveSentMessages();
    DeleteUndeliverables();
    WaitSeconds(wb_, 2);
    HangUp();
    WaitSeconds(wb_, 1);
    status_->Hide();
    FinishSendRun();
    UnloadStatus();
    if (wb_.forms.Find<frmViewEmail>()) RefreshMailView();
    return true;
}

/// Goes on no further: a message that cannot be recorded as accepted would be sent again.
void SendRun::StopForStore() {
    smtp_.SetAction(SmtpClient::Action::Disconnect).Ignore();
    RemoveSentMessages();
    if (!ContainsText(errors_, storeFailure_.description)) NoteError(storeFailure_);
    UnloadStatus();
    std::string text =
        "The message store cannot be written: " + storeFailure_.description +
        "\r\nThe run stops here. The messages that were not sent stay in the Outbox.";
    if (!memory_.unrecorded.empty() || partFailure_.Failed())
        text +=
            "\r\nThe server has accepted the last message, but that could not be recorded: leave "
            "the "
            "program running, make room, and send again.";
    if (!wb_.state.UnattendedRun) Tell(wb_, text, BoxIcon::Critical);
    FinishSendRun();
    RefreshMailView();
}

void SendRun::RemoveSentMessages() {
    if (sent_.empty()) return;
    const BusyPointer pointer(wb_);
    ShowStatus("Deleting successfully sent messages.");
    if (status_) status_->ShowProtocol();
    wb_.platform.windows.PumpEvents();
    FinishMessages(sent_);
}

/// Takes accepted messages out of the Outbox; returns those that stay.
AcceptedMessages SendRun::FinishMessages(const AcceptedMessages& accepted) {
    AcceptedMessages unfinished = FinishSentMessages(
        wb_, accepted, settings_.chkSaveSentMessages.Checked(), [this] { YieldBriefly(wb_); },
        [this](const DaoError& error) { NoteError(error); });
    for (const auto& [id, attempt] : accepted) {
        if (unfinished.contains(id)) continue;
        memory_.unrecorded.erase(id);
        memory_.unrecordedRecipients.erase(id);
        memory_.reported.erase(id);
    }
    return unfinished;
}

/// Drops a message once it has failed as often as the settings say.
void SendRun::DeleteUndeliverables() {
    if (!settings_.chkDeleteUndeliverables.Checked()) return;
    const auto most = static_cast<long>(NumberOf(settings_.txtDeleteUndeliverables.Text())) - 1;
    // Undeliverable messages that stay are tried again by the next run.
    static_cast<void>(
        database_->Execute("DELETE FROM [Outbox] WHERE Retries > " + std::to_string(most)));
    NoteError(DeliveredLedger::RemoveGone(*database_));
}

void SendRun::HangUp() {
    if (!wb_.state.FinalRunStep || !status_->chkHang.Checked()) return;
    frmDial& dial = wb_.forms.Get<frmDial>();
    dial.Hide();
    if (wb_.shell) wb_.shell->SetPanel("Disconnecting from the Internet...");
    dial.cmdDisconnect.Press();
}

/// There was nothing to send, except perhaps what an interrupted run had sent.
void SendRun::FinishEmptyRun() {
    ReportDelivery(0);
    database_->Close();
}

void SendRun::FinishSendRun() {
    const auto left =
        database_ ? database_->OpenRecordset(OutboxFolder)
                  : DaoResult<std::shared_ptr<Recordset>>(MakeDaoError(dao_error::ObjectNotSet));
    const bool emptied = left.Ok() && (*left)->RecordCount() == 0;
    ReportDelivery(left.Ok() ? (*left)->RecordCount() : 0);
    if (emptied || errors_.empty()) {
        if (status_) status_->Progress1.SetValue(status_->Progress1.Maximum());
        ShowStatus("Your e-mail messages are successfully sent!");
    } else {
        ShowStatus("Some errors occurred while processing the requested tasks.");
    }
    if (!log_.Close())
        errors_ += std::string("Error: The session log could not be written.") + "\r\n";
    for (const auto& recordset : {outbox_, ledger_})
        if (recordset) recordset->Close();
    if (database_) database_->Close();
    outbox_ = ledger_ = nullptr;
    database_ = nullptr;
    WaitSeconds(wb_, 1);
    smtp_.SetAction(SmtpClient::Action::Disconnect).Ignore();
    if (!errors_.empty() && !wb_.state.UnattendedRun) ReportErrors();
}

/// A run that had nothing to send is not worth a report.
void SendRun::ReportDelivery(std::int64_t left) {
    if (count_ == 0 && notes_.Empty()) return;
    RecordDeliveryRun(wb_, projectFolder_, notes_.Take(left));
}

void SendRun::ReportErrors() {
    // Without a project the log stands in the program's own folder.
    const std::string folder = projectFolder_.empty() ? wb_.platform.programFolder : projectFolder_;
    const std::string path = folder + "/errorlog.txt";
    if (!WriteFileText(path, errors_))
        Tell(wb_, "The file '" + path + "' could not be written.", BoxIcon::Exclamation);
    if (settings_.IsLoaded()) settings_.Timer1.Start();
    if (AskToShowErrorLog(wb_, doubtful_)) OpenDocument(wb_, path);
    settings_.Timer1.Stop();
}

void SendRun::RefreshMailView() {
    frmViewEmail* view = wb_.forms.Find<frmViewEmail>();
    if (!view) return;
    view->cmdRefresh.Press();
    view->EmailGrid.RowsChanged();
}

}  // namespace mailvane
