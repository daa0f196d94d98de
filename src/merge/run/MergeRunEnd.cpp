#include "core/MessageBoxes.h"
#include "core/Waiting.h"
#include "core/run/Progress.h"
#include "core/run/frmStatus.h"
#include "core/settings/frmSettings.h"
#include "core/text/Text.h"
#include "merge/run/MergeRun.h"
#include "merge/run/frmMSGOutbox.h"
#include "send/report/frmDeliveryReport.h"
#include "store/MessageStore.h"
#include "store/view/frmViewEmail.h"

namespace mailvane {

namespace {

constexpr const char* CreatingMailingTable = "Creating mailing table, please wait...";
constexpr const char* AccessingMessages = "Accessing new messages, please wait...";

void CloseStatus(Workbench& wb) {
    if (auto* status = wb.forms.Find<frmStatus>()) status->Hide();
    if (wb.shell) wb.shell->HideProgressButton().Press();
}

}  // namespace

/// Failures in here are passed over: the messages are made already.
void MergeRun::FinishMergeRun() {
    if (recipients_ && dialog_.chkCreate.Checked() && !noMailingTable_) CreateMailingTable();
    if (recipients_) recipients_->Close();
    RecordRun();
    if (auto* mail = wb_.forms.Find<frmViewEmail>()) mail->cmdRefresh.Press();
    if (message_.IsLoaded()) message_.cmdRefresh.Press();
    message_.SetRunning(false);
    message_.Grid1.SetRedraw(true);
    view_.Grid1.SetRedraw(true);
    dialog_.cmdStart.SetEnabled(true);
    if (savedBookmark_ && view_.Data1.Recordset())
        view_.Data1.Recordset()->SetBookmark(*savedBookmark_).Ignore();
    CloseStatus(wb_);
    ShowPanel("");
    wb_.platform.windows.SetPointer(MousePointer::Normal);
}

/// A number that a query of one row and column gives; nothing when the store cannot be asked.
std::optional<std::int64_t> MergeRun::StoreNumber(const std::string& query) const {
    if (OpenMessageStore(wb_).Failed()) return {};
    const auto rows = wb_.state.MessageStore->OpenRecordset(query);
    const DaoResult<DaoValue> value = rows.Ok() ? (*rows)->Get(0) : rows.Error();
    if (value.Failed()) return {};
    return static_cast<std::int64_t>(value->NumberOr(0));
}

/// ID of the last message that was put into the Outbox; IDs are never given out twice.
std::optional<std::int64_t> MergeRun::NewestMessage() const {
    return StoreNumber("SELECT max(ID) FROM [" + std::string(OutboxFolder) + "]");
}

/// For the delivery report. A run that has made nothing is not worth a line of it.
void MergeRun::RecordRun() const {
    if (done_ == 0 || !newestBefore_) return;
    DeliveryRun run;
    run.began = began_;
    run.kind = DeliveryRun::Kind::Merge;
    run.table = ReportText(table_);
    run.generated = StoreNumber("SELECT count(*) FROM [" + std::string(OutboxFolder) +
                                "] WHERE ID > " + std::to_string(*newestBefore_))
                        .value_or(0);
    if (run.generated > 0) RecordDeliveryRun(wb_, projectFolder_, std::move(run));
}

void MergeRun::CreateMailingTable() {
    ShowPanel(CreatingMailingTable);
    const std::string source = frmMerge::Bracketed(table_);
    const std::string target = frmMerge::Bracketed(mailingTable_);
    // A second run in the same second finds the table made and adds to it.
    const auto made =
        database_->Execute("SELECT TOP 1 " + source + ".* INTO " + target + " FROM " + source);
    if (made.Ok() && database_->Execute("DELETE * FROM " + target).Failed()) return;
    const auto mailingTable = database_->OpenRecordset(mailingTable_);
    if (mailingTable.Failed()) return;
    CopyRows(**mailingTable);
    (*mailingTable)->Close();
}

/// The rows that the run was for, made into messages or not. A value that the table does not take
/// is left out in silence; a file that takes nothing is told.
void MergeRun::CopyRows(Recordset& mailingTable) {
    if (total_ < 1) return;
    SkipRows(firstRow_ - 1);
    UpdateProgress(wb_, static_cast<long>(total_), 0, CreatingMailingTable);
    std::int64_t copied = 0;
    while (copied < total_ && !recipients_->EndOfFile()) {
        const DaoError failed = CopyGroup(mailingTable, copied);
        if (failed.Failed())
            return Tell(wb_,
                        "The table '" + mailingTable_ + "' cannot be written: " +
                            failed.description + "\r\nIts last rows are missing.",
                        BoxIcon::Critical);
        YieldBriefly(wb_);
        UpdateProgress(wb_, 0, static_cast<long>(copied));
    }
}

/// The rows from one yield to the next, as one unit.
DaoError MergeRun::CopyGroup(Recordset& mailingTable, std::int64_t& copied) {
    return database_->Transaction([&]() -> DaoError {
        do {
            mailingTable.AddNew().Ignore();
            for (const Field& field : recipients_->Fields()) {
                const auto value = recipients_->Get(field.name);
                if (value.Ok()) mailingTable.Set(field.name, *value).Ignore();
            }
            const DaoError failed = mailingTable.Update();
            if (IsStorageFailure(failed)) return failed;
            ++copied;
            recipients_->MoveNext().Ignore();
        } while (copied < total_ && !recipients_->EndOfFile() &&
                 !wb_.platform.windows.YieldIsDue());
        return {};
    });
}

/// Deletes all of the Outbox, also what was there before the run.
void MergeRun::AskToDelete() {
    if (!AskYesNo(wb_,
                  "Do you want to delete all generated messages from your Outbox e-mail folder?",
                  BoxIcon::Question, "Delete messages"))
        return;
    const BusyPointer busy(wb_);
    if (wb_.state.MessageStore)
        if (const auto deleted = wb_.state.MessageStore->Execute("DELETE * FROM [Outbox]");
            deleted.Failed())
            Tell(wb_, deleted.Error().description, BoxIcon::Exclamation);
    if (auto* mail = wb_.forms.Find<frmViewEmail>()) mail->cmdRefresh.Press();
}

void MergeRun::HandOver() {
    ShowPreparing(wb_, AccessingMessages);
    ShowPanel(AccessingMessages);
    if (wb_.state.MessageStore) {
        const auto outbox = wb_.state.MessageStore->OpenRecordset(OutboxFolder);
        if (outbox.Ok()) (*outbox)->Close();
    }
    EndPreparing(wb_);
    ShowPanel("");
    dialog_.Hide();
    if (!wb_.state.UnattendedRun) ShowModalDialog(wb_, wb_.forms.Get<frmMSGOutbox>());
    if (wb_.state.SendNowFlag && dialog_.IsLoaded()) {
        wb_.state.FinalRunStep = true;
        wb_.forms.Get<frmSettings>().cmdSendEmail.Press();
        wb_.state.FinalRunStep = false;
    }
    dialog_.Unload();
}

}  // namespace mailvane
