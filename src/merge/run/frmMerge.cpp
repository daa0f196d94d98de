#include "merge/run/frmMerge.h"

#include <algorithm>
#include <cmath>

#include "core/MessageBoxes.h"
#include "core/Running.h"
#include "core/commands/ToolTable.h"
#include "core/run/frmStatus.h"
#include "core/settings/frmSettings.h"
#include "core/text/Text.h"
#include "database/view/frmViewDatabase.h"
#include "merge/check/frmMergeCheck.h"
#include "merge/check/frmMergePreview.h"
#include "merge/message/frmViewMerge.h"
#include "merge/run/MergeRun.h"
#include "send/direct/frmMailServer.h"

namespace mailvane {

namespace {

/// The text as a number of rows; what is beyond 32 bits is as good as without end.
std::int64_t RowNumber(const std::string& text) {
    constexpr double Most = 2147483647;
    return std::llrint(std::clamp(NumberOf(text), -Most, Most));
}

}  // namespace

frmMerge::frmMerge(Workbench& wb) : WorkbenchForm(wb, "frmMerge", "E-mail Merge") {
    WireControls();
    DisableToolsOfLaterVersions();
}

void frmMerge::WireControls() {
    optPersonal.onClick = optBulk.onClick = [this] { EnableBulkFields(); };
    chkServer.onClick = [this] { CopyServerChoice(); };
    chkDate.onClick = [this] { CheckDateColumn(); };
    cmbField.onClick = [this] { LeaveDateColumn(); };
    txtFractional1.onChange = [this] { CheckRowNumber(txtFractional1); };
    txtFractional2.onChange = [this] { CheckRowNumber(txtFractional2); };
    cmdStart.onClick = [this] { Start(); };
    cmdCancel.onClick = [this] { Cancel(); };
    SSCommand1.onClick = [this] {
        ShowMailServer(wb_);
        chkServer.SetChecked(wb_.forms.Get<frmSettings>().chkServer.Checked());
        CopyServerChoice();
    };
    SSCommand2.onClick = [this] { ShowHelpContext(wb_); };
}

void frmMerge::DisableToolsOfLaterVersions() {
    for (Button* button :
         {&cmdRemoveRecords, &cmdRemoveAddresses, &cmdCompare, &cmdText, &cmdClean}) {
        button->SetEnabled(false);
        button->SetTip(LaterTip);
    }
}

void frmMerge::OnLoad() {
    FillColumns();
    CopySettings();
    EnableBulkFields();
    const DateTime now = wb_.platform.clock.Now();
    const auto today = DateTime::FromParts(now.Year(), now.Month(), now.Day());
    Date1.SetValue(*today);
    Date2.SetValue(*today);
}

void frmMerge::FillColumns() {
    const auto& recipients = wb_.forms.Get<frmViewDatabase>().Data1.Recordset();
    if (!recipients) return;
    int dateColumn = 0;
    int addressColumn = 0;
    for (const Field& field : recipients->Fields()) {
        if (field.type == FieldType::Date) dateColumn = cmbField.Count();
        if (ContainsText(field.name, "email") || ContainsText(field.name, "e-mail"))
            addressColumn = cmbEmail.Count();
        cmbField.AddItem(field.name);
        cmbEmail.AddItem(field.name);
    }
    cmbField.SetListIndex(dateColumn);
    cmbEmail.SetListIndex(addressColumn);
    Label1.SetText("Send to list: " + CurrentDatabaseTable(wb_));
    Label2.SetText("Records: " + std::to_string(recipients->RecordCount()));
}

void frmMerge::CopySettings() {
    const frmSettings& settings = wb_.forms.Get<frmSettings>();
    txtSMTPServer.SetText(settings.txtSMTPServer.Text());
    txtSMTPPort.SetText(settings.txtSMTPPort.Text());
    chkSaveSentMessages.SetChecked(settings.chkSaveSentMessages.Checked());
    chkServer.SetChecked(settings.chkServer.Checked());
    CopyServerChoice();
}

void frmMerge::EnableBulkFields() {
    txtTo.SetEnabled(optBulk.IsSet());
    cmbEmail.SetEnabled(optBulk.IsSet());
}

void frmMerge::CopyServerChoice() {
    SSCommand1.SetEnabled(chkServer.Checked());
    txtSMTPServer.SetEnabled(!chkServer.Checked());
    txtSMTPPort.SetEnabled(!chkServer.Checked());
    wb_.forms.Get<frmSettings>().chkServer.SetChecked(chkServer.Checked());
}

bool frmMerge::DateColumnChosen() const {
    const auto* view = wb_.forms.Find<frmViewDatabase>();
    if (!view || !view->Data1.Recordset()) return false;
    for (const Field& field : view->Data1.Recordset()->Fields())
        if (SameName(field.name, cmbField.Text())) return field.type == FieldType::Date;
    return false;
}

void frmMerge::CheckDateColumn() {
    if (!chkDate.Checked() || DateColumnChosen()) return;
    Tell(wb_, "Database field '" + cmbField.Text() +
                  "' is not a date data type field. \r\n"
                  "You must select date data type field in order to use this criteria.");
}

void frmMerge::LeaveDateColumn() {
    if (!chkDate.Checked() || DateColumnChosen()) return;
    Tell(wb_, "Your database field '" + cmbField.Text() +
                  "' is not a date data type field. \r\n"
                  "You can use this criteria only with date data type fields.");
    chkDate.SetChecked(false);
}

void frmMerge::CheckRowNumber(TextBox& field) {
    if (NumberOf(field.Text()) != 0) return;
    Tell(wb_, "Invalid value. ");
    field.SetText("1");
}

/// A bracket in the name itself would end it early; without it, no table has that name.
std::string frmMerge::Bracketed(const std::string& name) {
    std::string inner = name;
    std::erase(inner, ']');
    return "[" + inner + "]";
}

std::string frmMerge::RecipientsSource(const std::string& table) const {
    if (!chkMax.Checked()) return table;
    const std::string all = Bracketed(table);
    return "SELECT TOP " + std::to_string(RowNumber(txtMax.Text())) + " " + all + ".* FROM " + all +
           ";";
}

std::string frmMerge::DateFilter() const {
    return Bracketed(cmbField.Text()) + " BETWEEN #" + Date1.Value().GeneralDate() + "# And #" +
           Date2.Value().GeneralDate() + "#";
}

std::int64_t frmMerge::FirstRow() const {
    return RowNumber(txtFractional1.Text());
}

std::int64_t frmMerge::LastRow() const {
    return RowNumber(txtFractional2.Text());
}

/// The rows of the run as the options stand now; options that the run would ask about count as far
/// as they make sense.
MergeRows frmMerge::NarrowedRows() const {
    const DataControl& shown = wb_.forms.Get<frmViewDatabase>().Data1;
    MergeRows rows;
    if (!shown.Database()) return rows;
    rows.recipients =
        shown.Database()->OpenRecordset(RecipientsSource(shown.CurrentTable())).ValueOr(nullptr);
    if (rows.recipients && chkDate.Checked() && DateColumnChosen()) {
        rows.recipients->SetFilter(DateFilter());
        rows.recipients = rows.recipients->OpenFiltered().ValueOr(nullptr);
    }
    if (!rows.recipients) return rows;
    const std::int64_t all = rows.recipients->RecordCount();
    const std::int64_t first =
        chkFractional.Checked() ? std::clamp<std::int64_t>(FirstRow() - 1, 0, all) : 0;
    const std::int64_t end =
        chkFractional.Checked() ? std::clamp<std::int64_t>(LastRow(), first, all) : all;
    rows.first = static_cast<std::size_t>(first);
    rows.count = static_cast<std::size_t>(end - first);
    return rows;
}

void frmMerge::Check() {
    MergeParts parts = PartsOf(wb_.forms.Get<frmViewMerge>());
    if (optBulk.IsSet()) parts.addressColumn = cmbEmail.Text();
    ShowMergeCheck(wb_, parts, NarrowedRows());
}

/// A packet size that the run would ask about counts as the usual one.
void frmMerge::Preview() {
    MergePlan plan;
    plan.rows = NarrowedRows();
    plan.addressing = {optPersonal.IsSet(), wb_.forms.Get<frmViewMerge>().txtTo.Text(),
                       txtTo.Text()};
    plan.bulkColumn = cmbEmail.Text();
    const std::string size = Trim(txtPacket.Text());
    const bool makesSense = IsNumeric(size) && NumberOf(size) >= 1;
    plan.packetSize = NumberOf(makesSense ? size : UsualPacketSize);
    ShowMergePreview(wb_, std::move(plan));
}

void frmMerge::Start() {
    if (running_) return;
    running_ = true;
    MergeRun(wb_, *this).Start();
    running_ = false;
}

/// While messages are made the run ends itself at the next one; otherwise there is nothing to end.
void frmMerge::Cancel() {
    const auto* status = wb_.forms.Find<frmStatus>();
    if (status && status->Window.IsOpen() &&
        ContainsText(status->lblCaption1.Text(), "Generating message"))
        wb_.state.CancelRequested = true;
    else
        Unload();
}

}  // namespace mailvane
