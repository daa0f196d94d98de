#include "core/settings/frmSettings.h"

#include <initializer_list>
#include <utility>

#include "core/MessageBoxes.h"
#include "core/Paths.h"
#include "core/project/Project.h"
#include "core/settings/frmOptions.h"
#include "core/text/Text.h"

namespace mailvane {

namespace {

constexpr const char* DefaultWrap = "65";
constexpr const char* DefaultRetries = "4";
constexpr const char* PlainPopPort = "110";
constexpr const char* SecurePopPort = "995";
constexpr int TlsFromTheStart = 2;  ///< entry of the security lists

std::string MinutesText(int minutes) {
    return minutes == 1 ? "1 minute" : std::to_string(minutes) + " minutes";
}

}  // namespace

frmSettings::frmSettings(Workbench& wb) : WorkbenchForm(wb, "frmSettings", "Project settings") {
    FillChoices();
    WireFields();
    WireDatabaseFields();
    runsChanged_ = wb.runs.changed.Observe([this] { ApplyDependentStates(); });
    ApplyDependentStates();
    Check2.SetVisible(false);  // kept for the project files that carry it
    lblTimeOut.SetText(MinutesText(Slider1.Value()));
}

void frmSettings::FillChoices() {
    cmbIndent.SetItems({">", "|", ":", "#", "*"});
    cmbIndent.SetListIndex(0);
    for (ComboBox* box : {&cmbSMTPSecurity, &cmbPOPSecurity}) {
        box->SetItems({"Automatic", "STARTTLS required", "TLS from the start", "None"});
        box->SetListIndex(0);
    }
}

void frmSettings::WireFields() {
    for (CheckBox* box : {&chkServer, &chkSMTPAuth, &chkAutoImportEmail})
        box->onClick = [this] { ApplyDependentStates(); };
    for (OptionButton* option :
         {&optIdentityDefault, &optIdentityAnonymous, &optIdentityCustom, &optText, &optFile})
        option->onClick = [this] { ApplyDependentStates(); };
    Slider1.onChange = [this] { lblTimeOut.SetText(MinutesText(Slider1.Value())); };
    cmbPOPSecurity.onClick = [this] { PutUsualPort(); };
    txtWrap.onLeave = [this] { CheckNumberField(txtWrap, 30, 132, DefaultWrap); };
    txtDeleteUndeliverables.onLeave = [this] {
        CheckNumberField(txtDeleteUndeliverables, 1, 132, DefaultRetries);
    };
    cmdSigBrowse.onClick = [this] { BrowseSignature(); };
    cmdOk.onClick = [this] { Leave(); };
}

void frmSettings::WireDatabaseFields() {
    txtAccessDBPath.onChange = [this] { OpenDatabaseFile(); };
    txtAccessDBPath.onLeave = [this] {
        if (!FileExists(txtAccessDBPath.Text())) txtAccessDBPath.SetText("");
    };
    cmbAccessTable.onClick = [this] {
        if (!fillingTables_ && !wb_.state.LoadingProject) tableChosen.Tell();
    };
    cmdAccessBrowse.onClick = [this] { BrowseDatabase(); };
}

void frmSettings::OnLoad() {
    if (wb_.state.ProjectOpen()) {
        wb_.state.LoadingProject = true;
        LoadProject(wb_, wb_.state.CurrentProjectFile);
        wb_.state.LoadingProject = false;
    }
    wb_.forms.Get<frmOptions>().ApplyTipTime();
    SetTips();
    optIdentityDefault.SetCaption(std::string("Identify as &") + ProgramTitle + ".");
    if (!wb_.state.ProjectFolder.empty()) {
        lbxRules.SetFile(RulesFile(wb_.state));
        lbxRules.Load();
    }
    CheckSignatureFile();
    FillEmptyNumbers();
    ApplyDependentStates();
}

void frmSettings::CheckSignatureFile() {
    if (!optFile.IsSet() || FileExists(txtSigFile.Text()) || wb_.state.UnattendedRun) return;
    Tell(wb_, "Your signature file cannot be found.", BoxIcon::Exclamation);
    optText.SetValue(true);
    if (txtSignature.Text().empty()) chkAddSignature.SetChecked(false);
}

void frmSettings::FillEmptyNumbers() {
    const bool secure = cmbPOPSecurity.ListIndex() == TlsFromTheStart;
    const std::pair<TextBox*, const char*> numbers[] = {
        {&txtWrap, DefaultWrap},
        {&txtDeleteUndeliverables, DefaultRetries},
        {&txtPOPPort, secure ? SecurePopPort : PlainPopPort},
    };
    for (const auto& [field, number] : numbers)
        if (Trim(field->Text()).empty()) field->SetText(number);
}

/// What a run was started with stays as it is until its end.
void frmSettings::ApplyDependentStates() {
    const bool sending = !wb_.runs.Holder(Holds::Settings);
    for (Control* control : std::initializer_list<Control*>{
             &cmbSMTPSecurity, &chkSMTPVerify, &chkServer, &chkSMTPAuth, &chkSaveSentMessages,
             &chkDeleteUndeliverables, &txtDeleteUndeliverables, &optIdentityDefault,
             &optIdentityAnonymous, &optIdentityCustom, &chkAddHTMLHeader, &txtAddHTMLHeader})
        control->SetEnabled(sending);
    txtIdentityCustom.SetEnabled(sending && optIdentityCustom.IsSet());
    txtSMTPServer.SetEnabled(sending && !chkServer.Checked());
    txtSMTPPort.SetEnabled(sending && !chkServer.Checked());
    cmdTestSMTP.SetEnabled(!chkServer.Checked());
    SSCommand1.SetEnabled(sending && chkServer.Checked());
    cmdSMTPAuth.SetEnabled(sending && chkSMTPAuth.Checked());
    const bool recipients = !wb_.runs.Holder(Holds::Recipients);
    txtAccessDBPath.SetEnabled(recipients);
    cmdAccessBrowse.SetEnabled(recipients);
    cmbAccessTable.SetEnabled(recipients && databaseOpens_);
    txtSigFile.SetEnabled(optFile.IsSet());
    cmdSigBrowse.SetEnabled(optFile.IsSet());
    txtSignature.SetEnabled(optText.IsSet());
    cmdDataImport.SetEnabled(chkAutoImportEmail.Checked());
}

void frmSettings::CheckNumberField(TextBox& field, int minimum, int maximum,
                                   const std::string& fallback) {
    const double number = NumberOf(field.Text());
    if (IsNumeric(field.Text()) && number >= minimum && number <= maximum) return;
    Tell(wb_,
         "Please enter a number of characters between " + std::to_string(minimum) + " and " +
             std::to_string(maximum) + ".",
         BoxIcon::None, "Error");
    field.SetText(fallback);
}

void frmSettings::PutUsualPort() {
    if (wb_.state.LoadingProject) return;
    const bool secure = cmbPOPSecurity.ListIndex() == TlsFromTheStart;
    if (txtPOPPort.Text() == (secure ? PlainPopPort : SecurePopPort))
        txtPOPPort.SetText(secure ? SecurePopPort : PlainPopPort);
}

void frmSettings::BrowseDatabase() {
    const std::string path = BrowseFile(wb_, false, "", "");
    if (!path.empty()) txtAccessDBPath.SetText(path);
}

void frmSettings::BrowseSignature() {
    const std::string path = BrowseFile(wb_, false, "Text files", ".txt");
    if (!path.empty()) txtSigFile.SetText(path);
}

void frmSettings::OpenDatabaseFile() {
    const std::string path = FileExists(txtAccessDBPath.Text()) ? txtAccessDBPath.Text() : "";
    fillingTables_ = true;
    FillTables(path);
    fillingTables_ = false;
    ApplyDependentStates();
    if (std::exchange(openedDatabase_, path) != path) databaseChanged.Tell();
}

void frmSettings::FillTables(const std::string& path) {
    cmbAccessTable.Clear();
    databaseOpens_ = false;
    if (path.empty()) return;
    const auto workspace = Workspace::Create();
    const auto database = workspace->OpenDatabase(path);
    const auto tables = database.Ok() ? (*database)->UserTableNames()
                                      : DaoResult<std::vector<std::string>>(database.Error());
    workspace->Close();
    if (tables.Ok()) {
        cmbAccessTable.SetItems(*tables);
        cmbAccessTable.SetListIndex(0);
        databaseOpens_ = true;
    } else if (!wb_.state.LoadingProject) {
        Tell(wb_, tables.Error().description, BoxIcon::Critical);
    }
}

void frmSettings::ShowPage(Page page, Control& control) {
    Tab1.SetCurrent(page);
    Show();
    BringToFront();
    control.Focus();
}

void frmSettings::OnCloseBox() {
    Leave();
}

/// What was set is kept: a project that has a file is saved.
void frmSettings::Leave() {
    Hide();
    if (wb_.state.ProjectOpen() && wb_.shell) wb_.shell->SaveButton().Press();
}

void frmSettings::SetTips() {
    const std::pair<Control*, const char*> tips[] = {
        {&txtName, "Your name, as recipients see it in the From line"},
        {&txtEmail, "Your e-mail address"},
        {&txtReplyTo, "Address that answers go to; empty for your e-mail address"},
        {&optIdentityDefault, "Messages name this program as their mailer"},
        {&optIdentityAnonymous, "Messages name no mailer"},
        {&optIdentityCustom, "Messages name the mailer that you enter"},
        {&txtIdentityCustom, "Name of the mailer in your messages"},
        {&txtSMTPServer, "Server that takes your outgoing mail, such as smtp.example.com"},
        {&txtSMTPPort, "25, 587, or 465 with TLS from the start"},
        {&cmbSMTPSecurity, "How the connection to the server is encrypted"},
        {&chkSMTPVerify, "Refuse a server whose certificate does not hold its name"},
        {&chkServer, "Deliver straight to the recipients' servers, without a server of your own"},
        {&chkSMTPAuth, "The server asks for a user name and password"},
        {&cmdTestSMTP, "Connect to the server, log on, and say what worked"},
        {&cmdTestPOP, "Connect to the server, log on, and say what worked"},
        {&chkSaveSentMessages, "Keep a copy of each sent message in Sent Items"},
        {&chkSndTimeOut, "Give up a message when the server is silent for so long"},
        {&Slider1, "Minutes of silence"},
        {&chkDeleteUndeliverables, "Remove messages that could not be sent after so many tries"},
        {&txtDeleteUndeliverables, "Number of tries, 1 to 132"},
        {&txtPOPServer, "Server that holds your incoming mail"},
        {&txtPOPPort, "110, or 995 with TLS from the start"},
        {&cmbPOPSecurity, "How the connection to the server is encrypted"},
        {&chkPOPVerify, "Refuse a server whose certificate does not hold its name"},
        {&txtPOPUser, "User name of your mail account"},
        {&txtPOPPassword, "Password of your mail account"},
        {&chkPOPDeleteMessages, "Delete messages on the server once they are received"},
        {&chkAutoImportEmail, "Run the import jobs on received messages"},
        {&txtAccessDBPath, "File with the recipients' tables"},
        {&cmdAccessBrowse, "Choose the database file"},
        {&cmbAccessTable, "Table whose rows are the recipients"},
        {&cmdCreateDatabase, "Make a database file, empty or out of a file that you have"},
        {&cmdNewTable, "Design a table of the database"},
        {&cmdImportData, "Bring text, a spreadsheet or another database into this one"},
        {&cmdExportData, "Write a table to a text file or a spreadsheet"},
        {&chkWrap, "Break long lines of outgoing text"},
        {&txtWrap, "Characters a line, 30 to 132"},
        {&chkIndent, "Mark the quoted text of replies and forwards"},
        {&cmbIndent, "Character before each quoted line"},
        {&chkAddHTMLHeader, "Put a comment at the top of HTML messages"},
        {&chkStandardParts,
         "Each part of a message with an attachment says in full what it holds; off writes the "
         "parts as earlier versions did"},
        {&txtAddHTMLHeader, "Text of the comment"},
        {&chkAddSignature, "Put a signature below outgoing messages"},
        {&txtSignature, "Text of the signature"},
        {&txtSigFile, "Text file with the signature"},
        {&cmdSigBrowse, "Choose the text file"},
    };
    for (const auto& [control, tip] : tips)
        control->SetTip(tip);
}

}  // namespace mailvane
