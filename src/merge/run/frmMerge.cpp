#include "merge/run/frmMerge.h"

#include <algorithm>
#include <cmath>

#include "core/MessageBoxes.h"
#include "core/Running.h"
#include "core/run/LongRun.h"
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

bool IsCount(const std::string& text) {
    return IsNumeric(text) && NumberOf(text) >= 1;
}

}  // namespace

frmMerge::frmMerge(Workbench& wb) : WorkbenchForm(wb, "frmMerge", "E-mail Merge") {
    WireControls();
}

void frmMerge::WireControls() {
    optPersonal.onClick = optBulk.onClick = [this] { EnableBulkFields(); };
    chkServer.onClick = [this] { CopyServerChoice(); };
    chkDate.onClick = [this] { CheckDateColumn(); };
    cmbField.onClick = [this] { LeaveDateColumn(); };
    txtFractional1.onChange = [this] { CheckRowNumber(txtFractional1); };
    txtFractional2.onChange = [this] { CheckRowNumber(txtFractional2); };
    cmdStart.onClick = [this] { MergeRun(wb_, *this).Start(); };
    cmdCheck.onClick = [this] { ShowMergeCheck(wb_, MakeMergePlan(wb_, Options())); };
    cmdPreview.onClick = [this] { ShowMergePreview(wb_, MakeMergePlan(wb_, Options())); };
    cmdCancel.onClick = [this] { Cancel(); };
    SSCommand1.onClick = [this] {
        ShowMailServer(wb_);
        chkServer.SetChecked(wb_.forms.Get<frmSettings>().chkServer.Checked());
        CopyServerChoice();
    };
    SSCommand2.onClick = [this] { ShowHelpContext(wb_); };
}

/// The tools that the database view has handlers for; the others stay off.
void frmMerge::AttachTableTools() {
    using View = frmViewDatabase;
    const std::pair<Button*, Button View::*> tools[] = {
        {&cmdRemoveRecords, &View::cmdRemoveDuplicates},
        {&cmdRemoveAddresses, &View::cmdRemoveRecipients},
        {&cmdCompare, &View::cmdCompare},
        {&cmdText, &View::cmdFilterText},
        {&cmdClean, &View::cmdCleanUp}};
    for (const auto& [button, tool] : tools)
        if ((wb_.forms.Get<View>().*tool).onClick)
            button->onClick = [this, tool = tool] { (wb_.forms.Get<View>().*tool).Press(); };
}

void frmMerge::OnLoad() {
    AttachTableTools();
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

std::vector<frmMerge::Doubt> frmMerge::Doubts() {
    std::vector<Doubt> doubts;
    if (chkDate.Checked() && !DateColumnChosen())
        doubts.push_back(
            {&chkDate, "Your database field '" + cmbField.Text() +
                           "' is not a date data type field. \r\n"
                           "You can use this criteria only with date data type fields."});
    if (chkMax.Checked()) txtMax.SetText(Trim(txtMax.Text()));
    if (chkFractional.Checked())
        for (TextBox* field : {&txtFractional1, &txtFractional2})
            field->SetText(Trim(field->Text()));
    if (chkMax.Checked() && !IsCount(txtMax.Text()))
        doubts.push_back(
            {&chkMax, "'Maximum number of messages' text box contains invalid value: '" +
                          txtMax.Text() + "'."});
    const std::string first = txtFractional1.Text();
    const std::string last = txtFractional2.Text();
    const bool range = IsCount(first) && IsCount(last) && NumberOf(first) <= NumberOf(last);
    if (chkFractional.Checked() && !range)
        doubts.push_back({&chkFractional, "Invalid range of rows for fractional sending: 'from " +
                                              first + " to " + last + "'."});
    return doubts;
}

bool frmMerge::PacketSizeMakesSense() const {
    return IsCount(txtPacket.Text());
}

MergeOptions frmMerge::Options() {
    const std::vector<Doubt> doubts = Doubts();
    const auto counts = [&doubts](const CheckBox& option) {
        return option.Checked() &&
               std::ranges::find(doubts, &option, &Doubt::option) == doubts.end();
    };
    MergeOptions options;
    options.personal = optPersonal.IsSet();
    if (counts(chkMax)) options.maximum = RowNumber(txtMax.Text());
    if (counts(chkDate))
        options.dates = MergeOptions::Dates{cmbField.Text(), Date1.Value(), Date2.Value()};
    if (counts(chkFractional))
        options.rows =
            MergeOptions::Rows{RowNumber(txtFractional1.Text()), RowNumber(txtFractional2.Text())};
    txtPacket.SetText(Trim(txtPacket.Text()));
    options.packetSize =
        NumberOf(PacketSizeMakesSense() ? txtPacket.Text() : MergeOptions::UsualPacketSize);
    options.bulkTo = txtTo.Text();
    options.addressColumn = cmbEmail.Text();
    options.mailingTable = chkCreate.Checked();
    return options;
}

/// A run that works on the dialog's message is ended first.
bool frmMerge::OnQueryUnload() {
    return MayUnload(wb_, *this, Holds::Message);
}

/// A run ends itself at its next step; otherwise there is nothing to end.
void frmMerge::Cancel() {
    if (LongRun* run = wb_.runs.Holder(Holds::Message))
        run->Cancel();
    else
        Unload();
}

}  // namespace mailvane
