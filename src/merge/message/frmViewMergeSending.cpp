#include "core/MessageBoxes.h"
#include "core/Paths.h"
#include "core/Waiting.h"
#include "core/run/LongRun.h"
#include "core/run/frmStatus.h"
#include "core/settings/frmSettings.h"
#include "core/text/Text.h"
#include "merge/message/frmViewMerge.h"
#include "merge/run/MergeGenerator.h"
#include "merge/run/frmMerge.h"
#include "store/MessageStore.h"
#include "store/view/frmViewEmail.h"

namespace mailvane {

namespace {

constexpr const char* NotSent = "The message could not be sent.\r\n\r\n";

/// The message stored last goes to the address typed.
DaoError AddressStoredMessage(ApplicationState& state, const std::string& address) {
    Recordset& outbox = *state.CurrentFolderRecordset;
    const auto stored = outbox.LastModified();
    if (stored.Failed()) return stored.Error();
    if (DaoError failed = outbox.SetBookmark(*stored); failed.Failed()) return failed;
    if (DaoError failed = outbox.Edit(); failed.Failed()) return failed;
    if (DaoError failed = outbox.Set("To", address); failed.Failed()) return failed;
    return outbox.Update();
}

}  // namespace

/// Whether there is a message to send; the user may send one without a body or a subject.
bool frmViewMerge::CheckMessage() {
    if (txtFrom.Text().empty()) {
        Tell(wb_, "Enter your e-mail address in the 'From' field.", BoxIcon::Exclamation);
        return false;
    }
    constexpr const char* Proceed = "\r\nDo you want to proceed anyway?";
    if (txtBody.Text().empty() && lstHTML.Count() == 0 && lstAttach.Count() == 0 &&
        !AskYesNo(wb_, std::string("This e-mail message has no body.") + Proceed))
        return false;
    return !txtSubject.Text().empty() ||
           AskYesNo(wb_, std::string("This e-mail message has no subject.") + Proceed);
}

void frmViewMerge::CheckAndStartMerge(bool sendNow) {
    if (!CheckMessage()) return;
    RequeryRecipients();
    if (!HasRecipients()) return TellNoRecords();
    wb_.state.SendNowFlag = sendNow;
    if (auto* dialog = wb_.forms.Find<frmMerge>()) dialog->Unload();
    wb_.forms.Get<frmMerge>().Show();
}

void frmViewMerge::RequeryRecipients() {
    const BusyPointer busy(wb_);
    ShowPreparing(wb_, AccessingRecords);
    wb_.forms.Get<frmViewEmail>();
    frmViewDatabase& view = wb_.forms.Get<frmViewDatabase>();
    view.Grid1.SetRedraw(false);
    if (const auto records = view.Data1.Recordset()) {
        // A table that cannot be read is one without records, and the caller says so.
        records->Requery().Ignore();
        records->MoveFirst().Ignore();
        view.Grid1.RowsChanged();
        view.Grid1.SetCurrentRow(0);
    }
    view.Grid1.SetRedraw(true);
    EndPreparing(wb_);
}

bool frmViewMerge::HasRecipients() const {
    const auto* view = wb_.forms.Find<frmViewDatabase>();
    return view && view->Data1.Recordset() && view->Data1.Recordset()->RecordCount() > 0;
}

void frmViewMerge::TellNoRecords() {
    Tell(wb_,
         "This message cannot be sent. You don't have any records in your '" +
             CurrentDatabaseTable(wb_) + "' table.",
         BoxIcon::Exclamation);
}

void frmViewMerge::TestMergeMessage() {
    Tell(wb_,
         "Testing the message will allow you to view it in your mail program before you send all "
         "messages. You will only send one, test message. Just enter your e-mail address and "
         "download the message as usual - from your favorite mail program. ",
         BoxIcon::Information);
    if (!CheckMessage()) return;
    if (!Data1.Recordset()) return TellNoRecords();
    const std::string address = AskTestAddress();
    if (address.empty()) return;
    const DaoResult<bool> stored = StoreTestMessage(address);
    if (stored.Failed())
        return Tell(wb_, "The message cannot be stored: " + stored.Error().description,
                    BoxIcon::Critical);
    if (!*stored || !IsLoaded()) return;
    wb_.state.FinalRunStep = true;
    wb_.forms.Get<frmSettings>().cmdSendEmail.Press();
    wb_.state.FinalRunStep = false;
}

/// "" when there is none to send to, which the user has been told.
std::string frmViewMerge::AskTestAddress() {
    const std::string address =
        wb_.platform.windows
            .InputBox({"Please enter your e-mail address: ", "E-mail Address",
                       wb_.forms.Get<frmSettings>().txtEmail.Text()})
            .value_or(std::string());
    if (address.empty())
        Tell(wb_, std::string(NotSent) + "Please specify some recipients for the message.",
             BoxIcon::Exclamation);
    else if (address.find('@') == std::string::npos)
        Tell(wb_, std::string(NotSent) + "Please enter correct e-mail address.",
             BoxIcon::Exclamation);
    else
        return address;
    return {};
}

/// The message for the row under the cursor, as a run makes it, in the Outbox. No column names its
/// recipient. False when it was ended while its tags ran; it is not in the Outbox then.
DaoResult<bool> frmViewMerge::StoreTestMessage(const std::string& address) {
    LongRun run(wb_, {"Making the test message", Holds::Everything, MessageControls()});
    if (!run.Began()) return false;
    MergePlan plan;
    plan.message = CopyMessage(wb_, *this);
    plan.message.addressColumn.clear();
    plan.recipients = Data1.Recordset();
    MergeGenerator generator(wb_, plan);
    generator.KeepWaiting = [&run] { return !run.Cancelled(); };
    if (DaoError failed = generator.BuildMessage(); failed.Failed()) return failed;
    generator.RunTags();
    if (run.Cancelled()) return false;
    if (DaoError missing = EnsureMessageStore(wb_); missing.Failed()) return missing;
    if (DaoError closed = OpenMessageStore(wb_); closed.Failed()) return closed;
    const DaoError stored = wb_.state.MessageStore->Transaction([&]() -> DaoError {
        if (DaoError failed = generator.StoreMessage(); failed.Failed()) return failed;
        return AddressStoredMessage(wb_.state, address);
    });
    if (stored.Ok()) return true;
    wb_.state.CurrentFolderRecordset = nullptr;  // it lists what was undone
    return stored;
}

/// The merge of an unattended run: nobody is there to choose another file or table, so that one
/// that is missing ends it.
void frmViewMerge::SendScheduled() {
    if (wb_.runs.Holder(Holds::Message) || !FileExists(ScheduledMessage)) return;
    OpenMergeDocument(ScheduledMessage);
    const std::string table = lblTable.Text();
    if (!Trim(table).empty() && !cmbTable.SetText(table)) return;
    if (txtFrom.Text().empty() || txtBody.Text().empty() || txtSubject.Text().empty()) return;
    cmdRefresh.Press();
    wb_.forms.Get<frmViewEmail>();
    if (!HasRecipients()) return;
    wb_.state.SendNowFlag = true;
    if (auto* dialog = wb_.forms.Find<frmMerge>()) dialog->Unload();
    wb_.forms.Get<frmMerge>().cmdStart.Press();
}

}  // namespace mailvane
