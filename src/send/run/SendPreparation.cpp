#include "core/MessageBoxes.h"
#include "core/Waiting.h"
#include "core/run/frmStatus.h"
#include "core/settings/Settings.h"
#include "send/run/SendRun.h"
#include "send/run/SentMessages.h"
#include "store/MessageStore.h"

namespace mailvane {

namespace {

constexpr std::int64_t SilentRows = 20;        ///< so many are listed without a dialog
constexpr std::int64_t ManySentItems = 40000;  ///< more than this raise the question
constexpr std::size_t ListPiece = 500;
constexpr const char* Preparing = "Preparing messages...";
constexpr const char* LineEnd = "\r\n";

}  // namespace

bool SendRun::Open() {
    if (!wb_.state.MainWorkspace) wb_.state.MainWorkspace = Workspace::Create();
    auto opened = wb_.state.MainWorkspace->OpenDatabase(MessageStorePath(wb_));
    if (opened.Failed()) {
        NoteError(opened.Error());
        return false;
    }
    database_ = *opened;
    return true;
}

/// What a run that died had sent leaves the Outbox now, as if that run had ended.
void SendRun::FinishInterruptedRun() {
    auto accepted = SentLedger::Entries(*database_);
    if (accepted.Failed()) return NoteError(accepted.Error());
    accepted->insert(memory_.unrecorded.begin(), memory_.unrecorded.end());
    if (accepted->empty()) return;
    const BusyPointer pointer(wb_);
    notes_.NoteAccepted(*database_, *accepted, memory_.reported);
    acceptedBefore_ = FinishMessages(*accepted);
    RefreshMailView();
}

/// True when there is something to send.
bool SendRun::PrepareSendList() {
    const BusyPointer pointer(wb_);
    const auto list = database_->OpenRecordset("SELECT [Subject], [To], [From] FROM [" +
                                               std::string(OutboxFolder) + "]");
    if (list.Failed()) {
        NoteError(list.Error());
        return false;
    }
    if ((*list)->RecordCount() == 0) {
        ShowStatus("Your Outbox folder is empty.");
        return false;
    }
    TakeStatusForm();
    status_->lStatus.SetText("Connecting to the server...");
    status_->SetCaption(SendingCaption);
    if (wb_.shell) wb_.shell->SetPanel(Preparing);
    FillMessageList(**list);
    wb_.platform.windows.PumpEvents();
    ShowStatus(status_->lStatus.Text());
    status_->Show();
    const std::int64_t count = (*list)->RecordCount();
    status_->lStats.SetText(std::to_string(count) + (count == 1 ? " message." : " messages."));
    return true;
}

void SendRun::TakeStatusForm() {
    status_ = &wb_.forms.Get<frmStatusEmail>();
    status_->onStopTransfer = [this] {
        outgoing_.GiveUp();
        smtp_.SetAction(SmtpClient::Action::Disconnect).Ignore();
    };
    status_->onGiveUpMessage = [this] {
        outgoing_.GiveUp();
        smtp_.SetAction(SmtpClient::Action::Disconnect).Ignore();
        smtp_.MailServer = "";
    };
}

void SendRun::FillMessageList(const Recordset& list) {
    const std::int64_t count = list.RecordCount();
    if (count > SilentRows) ShowPreparing(wb_, Preparing, static_cast<long>(count));
    status_->ClearMessages();
    for (std::size_t first = 0; first < static_cast<std::size_t>(count); first += ListPiece) {
        const auto rows = list.ReadRows(first, ListPiece);
        if (rows.Failed()) {
            NoteError(rows.Error());
            break;
        }
        for (const auto& row : *rows) {
            status_->AddMessage(row[0].TextOrEmpty(), row[1].TextOrEmpty(), row[2].TextOrEmpty());
            StepPreparing(wb_);
        }
    }
    status_->ShowMessages();
    EndPreparing(wb_);
}

bool SendRun::OpenOutbox() {
    auto opened = database_->OpenRecordset(OutboxFolder, RecordsetType::Table);
    if (opened.Failed()) {
        NoteError(opened.Error());
        return false;
    }
    outbox_ = *opened;
    storeFailure_ = OpenLedgers();
    count_ = outbox_->RecordCount();
    status_->Progress1.SetMaximum(static_cast<long>(count_));
    status_->Progress1.SetValue(0);
    return true;
}

/// Without them nothing can be sent: it might be sent twice.
DaoError SendRun::OpenLedgers() {
    auto ledger = SentLedger::Open(*database_);
    if (ledger.Failed()) return ledger.Error();
    ledger_ = *ledger;
    auto delivered = DeliveredLedger::Entries(*database_);
    if (delivered.Failed()) return delivered.Error();
    deliveredBefore_ = std::move(*delivered);
    for (const auto& [id, addresses] : memory_.unrecordedRecipients)
        deliveredBefore_[id].insert(addresses.begin(), addresses.end());
    return {};
}

/// A row that no run has tried yet may have no number of attempts.
void SendRun::ResetRetries() {
    static_cast<void>(database_->Execute("UPDATE Outbox SET Retries = 0 WHERE Retries = Null"));
}

void SendRun::OfferToEmptySentItems() {
    if (wb_.state.UnattendedRun) return;
    const auto sentItems = database_->OpenRecordset(SentItemsFolder, RecordsetType::Table);
    if (sentItems.Failed()) return NoteError(sentItems.Error());
    if ((*sentItems)->RecordCount() <= ManySentItems) return;
    if (!AskYesNo(wb_,
                  "You have more than 40000 messages in your 'Sent Items' folder. You can save "
                  "some disk space and improve performance if you delete these messages. Do you "
                  "want to delete messages now? "))
        return;
    const auto deleted = database_->Execute("DELETE * FROM [Sent Items]");
    if (deleted.Failed()) NoteError(deleted.Error());
}

void SendRun::StartLog() {
    const bool wanted = settings_.chkServer.Checked() && !projectFolder_.empty() &&
                        GetUserSetting(wb_, "MailServer", "Logs") == "1";
    if (!wanted || log_.Open(projectFolder_, wb_.platform.clock.Now())) return;
    AddError(std::string("Error: The session log could not be written.") + LineEnd);
}

}  // namespace mailvane
