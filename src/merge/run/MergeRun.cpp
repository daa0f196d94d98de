#include "merge/run/MergeRun.h"

#include "core/MessageBoxes.h"
#include "core/Waiting.h"
#include "core/run/frmStatus.h"
#include "core/settings/frmSettings.h"
#include "merge/run/MailingTable.h"
#include "merge/run/frmMSGOutbox.h"
#include "send/report/frmDeliveryReport.h"
#include "store/MessageStore.h"
#include "store/view/frmViewEmail.h"

namespace mailvane {

namespace {

constexpr const char* AccessingRecords = "Accessing records, please wait...";
constexpr const char* FilteringRecords = "Filtering records, please wait...";
constexpr const char* AccessingMessages = "Accessing new messages, please wait...";

}  // namespace

MergeRun::MergeRun(Workbench& wb, frmMerge& dialog)
    : wb_(wb),
      dialog_(dialog),
      view_(wb.forms.Get<frmViewDatabase>()),
      message_(wb.forms.Get<frmViewMerge>()) {}

void MergeRun::Start() {
    if (!AskAboutOptions()) return;
    CopySettings();
    const MergeOutcome outcome = Work();
    if (!dialog_.IsLoaded()) return;
    if (outcome == MergeOutcome::Complete) HandOver();
    if (outcome == MergeOutcome::Cancelled) {
        AskToDelete();
        dialog_.Unload();
    }
}

bool MergeRun::AskToProceed(const std::string& text) {
    return AskYesNo(wb_, text + "\r\nDo you want to proceed anyway?");
}

/// False ends the run; an option that was asked about counts no more.
bool MergeRun::AskAboutOptions() {
    for (const frmMerge::Doubt& doubt : dialog_.Doubts()) {
        doubt.option->SetChecked(false);
        if (!AskToProceed(doubt.text)) return false;
    }
    return true;
}

bool MergeRun::AskAboutPackets() {
    if (plan_.options.personal || dialog_.PacketSizeMakesSense()) return true;
    wb_.platform.windows.SetPointer(MousePointer::Normal);
    if (!AskToProceed("'Messages per packet' text-box contains invalid value: '" +
                      dialog_.txtPacket.Text() + "'."))
        return false;
    dialog_.txtPacket.SetText(MergeOptions::UsualPacketSize);
    return true;
}

void MergeRun::CopySettings() {
    frmSettings& settings = wb_.forms.Get<frmSettings>();
    settings.txtSMTPServer.SetText(dialog_.txtSMTPServer.Text());
    settings.txtSMTPPort.SetText(dialog_.txtSMTPPort.Text());
    settings.chkServer.SetChecked(dialog_.chkServer.Checked());
    settings.chkSaveSentMessages.SetChecked(dialog_.chkSaveSentMessages.Checked());
}

/// The message, and the whole dialog but for what ends the run.
std::vector<Control*> MergeRun::Locked() {
    std::vector<Control*> locked = message_.MessageControls();
    for (Control* control : dialog_.Controls())
        if (control != &dialog_.cmdCancel && control != &dialog_.SSCommand2)
            locked.push_back(control);
    return locked;
}

MergeOutcome MergeRun::Work() {
    LongRun run(wb_, {"Generating messages", Holds::Everything, Locked()});
    if (!run.Began()) return MergeOutcome::Stopped;
    BeginWork();
    MergeOutcome outcome = MergeOutcome::Stopped;
    if (MakePlan() && AskAboutPackets()) {
        wb_.platform.windows.SetPointer(MousePointer::ArrowBusy);
        MergeWalk walk(wb_, run, plan_);
        run.howFar = [&walk] { return walk.HowFar(); };
        outcome = walk.Generate();
        run.howFar = [text = walk.HowFar()] { return text; };
        const bool cancelledPersonal = outcome == MergeOutcome::Cancelled && plan_.options.personal;
        if (!plan_.mailingTable.empty() && !cancelledPersonal && outcome != MergeOutcome::Ended)
            CreateMailingTable(wb_, run, plan_);
        RecordRun(walk);
    }
    EndWork();
    return outcome;
}

void MergeRun::BeginWork() {
    message_.Grid1.SetRedraw(false);
    view_.Grid1.SetRedraw(false);
    if (const auto shown = view_.Data1.Recordset()) {
        const auto bookmark = shown->GetBookmark();
        if (bookmark.Ok()) savedBookmark_ = *bookmark;
    }
    wb_.platform.windows.SetPointer(MousePointer::Busy);
}

/// False when there is nobody to write to, which has been told.
bool MergeRun::MakePlan() {
    ShowPreparing(wb_, AccessingRecords);
    ShowPanel(AccessingRecords);
    plan_ = OpenMergePlan(wb_, dialog_.Options());
    EndPreparing(wb_);
    const bool byDates = plan_.recipients && plan_.options.dates;
    if (byDates || plan_.options.rows) ShowPanel(FilteringRecords);
    NarrowMergePlan(plan_);
    if (byDates && plan_.total == 0)
        return RefuseStart(
            "This message cannot be sent. \r\nChoose another table or select another date range.");
    if (plan_.total == 0)
        return RefuseStart(
            "This message cannot be sent. You don't have any records.\r\n"
            "Choose another table or select another date range.");
    ShowPanel("");
    return true;
}

bool MergeRun::RefuseStart(const std::string& text) {
    wb_.platform.windows.SetPointer(MousePointer::Normal);
    Tell(wb_, text, BoxIcon::Exclamation);
    return false;
}

/// Failures in here are passed over: the messages are made already.
void MergeRun::EndWork() {
    if (plan_.recipients) plan_.recipients->Close();
    if (auto* mail = wb_.forms.Find<frmViewEmail>()) mail->cmdRefresh.Press();
    if (message_.IsLoaded()) message_.cmdRefresh.Press();
    message_.Grid1.SetRedraw(true);
    view_.Grid1.SetRedraw(true);
    RestoreRow();
    ShowPanel("");
    wb_.platform.windows.SetPointer(MousePointer::Normal);
}

/// The database view stands on the row that it stood on before the run.
void MergeRun::RestoreRow() {
    const auto& shown = view_.Data1.Recordset();
    if (!savedBookmark_ || !shown || shown->SetBookmark(*savedBookmark_).Failed()) return;
    const auto row = shown->PositionOf(*savedBookmark_);
    if (row.Ok()) view_.Grid1.SetCurrentRow(*row);
}

/// For the delivery report. A run that has made nothing is not worth a line of it.
void MergeRun::RecordRun(const MergeWalk& walk) const {
    DeliveryRun run;
    run.began = began_;
    run.kind = DeliveryRun::Kind::Merge;
    run.table = ReportText(plan_.table);
    run.generated = walk.StoredMessages().value_or(0);
    if (run.generated > 0) RecordDeliveryRun(wb_, projectFolder_, std::move(run));
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

void MergeRun::ShowPanel(const std::string& text) {
    if (wb_.shell) wb_.shell->SetPanel(text);
}

}  // namespace mailvane
