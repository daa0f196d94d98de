#include "merge/frmMerge.h"

#include "core/Progress.h"
#include "core/Running.h"
#include "core/Text.h"
#include "core/ToolTable.h"
#include "core/frmSettings.h"
#include "core/frmStatus.h"
#include "database/frmViewDatabase.h"
#include "merge/MergeRun.h"

namespace mailvane {

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
    SSCommand2.onClick = [this] { ShowHelpContext(wb_); };
}

void frmMerge::DisableToolsOfLaterVersions() {
    for (Button* button :
         {&cmdRemoveRecords, &cmdRemoveAddresses, &cmdCompare, &cmdText, &cmdClean, &SSCommand1}) {
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
}

void frmMerge::EnableBulkFields() {
    txtTo.SetEnabled(optBulk.IsSet());
    cmbEmail.SetEnabled(optBulk.IsSet());
}

void frmMerge::CopyServerChoice() {
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

void frmMerge::Start() {
    if (running_) return;
    running_ = true;
    MergeRun(wb_, *this).Start();
    running_ = false;
}

/// While messages are made the run ends itself at the next one; otherwise there is nothing to end.
void frmMerge::Cancel() {
    const auto* status = wb_.forms.Find<frmStatus>();
    if (status && status->Visible() &&
        ContainsText(status->lblCaption1.Text(), "Generating message"))
        wb_.state.CancelRequested = true;
    else
        Unload();
}

}  // namespace mailvane
