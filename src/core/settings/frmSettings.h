#pragma once

#include <functional>
#include <string>

#include "core/Workbench.h"

namespace mailvane {

/// The project's settings, as the values of its controls, and the place where the send and receive
/// runs are started. Loaded as long as a project is open, mostly hidden. The order of the controls
/// is the order of the project file: new ones go to the end.
class frmSettings final : public WorkbenchForm {
public:
    explicit frmSettings(Workbench& wb);

    TextBox txtName{*this, "txtName"};
    TextBox txtEmail{*this, "txtEmail"};
    TextBox txtReplyTo{*this, "txtReplyTo"};
    TextBox txtSMTPServer{*this, "txtSMTPServer"};
    TextBox txtSMTPPort{*this, "txtSMTPPort", "25"};
    CheckBox chkServer{*this, "chkServer"};
    CheckBox chkSMTPAuth{*this, "chkSMTPAuth"};
    CheckBox chkSaveSentMessages{*this, "chkSaveSentMessages"};
    CheckBox chkSndTimeOut{*this, "chkSndTimeOut"};
    Slider Slider1{*this, "Slider1", 1, 30, 5};
    CheckBox chkDeleteUndeliverables{*this, "chkDeleteUndeliverables"};
    TextBox txtDeleteUndeliverables{*this, "txtDeleteUndeliverables", "4"};
    CheckBox chkWrap{*this, "chkWrap"};
    TextBox txtWrap{*this, "txtWrap", "65"};
    CheckBox chkIndent{*this, "chkIndent"};
    ComboBox cmbIndent{*this, "cmbIndent"};
    OptionButton optIdentityDefault{*this, "optIdentityDefault", true, "identity"};
    OptionButton optIdentityAnonymous{*this, "optIdentityAnonymous", false, "identity"};
    OptionButton optIdentityCustom{*this, "optIdentityCustom", false, "identity"};
    TextBox txtIdentityCustom{*this, "txtIdentityCustom"};
    CheckBox chkAddSignature{*this, "chkAddSignature"};
    OptionButton optText{*this, "optText", true, "signature"};
    OptionButton optFile{*this, "optFile", false, "signature"};
    TextBox txtSignature{*this, "txtSignature"};
    TextBox txtSigFile{*this, "txtSigFile"};
    CheckBox chkAddHTMLHeader{*this, "chkAddHTMLHeader"};
    TextBox txtAddHTMLHeader{*this, "txtAddHTMLHeader"};
    TextBox txtPOPServer{*this, "txtPOPServer"};
    TextBox txtPOPUser{*this, "txtPOPUser"};
    TextBox txtPOPPassword{*this, "txtPOPPassword"};
    CheckBox chkPOPDeleteMessages{*this, "chkPOPDeleteMessages"};
    CheckBox chkAutoImportEmail{*this, "chkAutoImportEmail"};
    CheckBox Check2{*this, "Check2"};
    TextBox txtAccessDBPath{*this, "txtAccessDBPath"};
    ComboBox cmbAccessTable{*this, "cmbAccessTable"};
    ComboBox cmbSMTPSecurity{*this, "cmbSMTPSecurity"};
    ComboBox cmbPOPSecurity{*this, "cmbPOPSecurity"};
    TextBox txtPOPPort{*this, "txtPOPPort", "110"};
    CheckBox chkSMTPVerify{*this, "chkSMTPVerify", true};
    CheckBox chkPOPVerify{*this, "chkPOPVerify", true};
    CheckBox chkStandardParts{*this, "chkStandardParts", true};

    Label lblTimeOut{*this, "lblTimeOut"};
    ListBoks lbxRules{*this, "lbxRules"};
    Tabs Tab1{*this, "Tab1"};
    Button cmdDataImport{*this, "cmdDataImport"};
    Button SSCommand1{*this, "SSCommand1"};
    Button cmdSMTPAuth{*this, "cmdSMTPAuth"};
    /// Try the mail accounts out; attached like the runs.
    Button cmdTestSMTP{*this, "cmdTestSMTP"};
    Button cmdTestPOP{*this, "cmdTestPOP"};
    Button cmdAccessBrowse{*this, "cmdAccessBrowse"};
    Button cmdSigBrowse{*this, "cmdSigBrowse"};
    Button cmdCreateDatabase{*this, "cmdCreateDatabase"};
    Button cmdNewTable{*this, "cmdNewTable"};
    Button cmdImportData{*this, "cmdImportData"};
    Button cmdExportData{*this, "cmdExportData"};
    Button cmdOk{*this, "cmdOk"};
    /// The runs; the parts that carry them out attach themselves when the form is made.
    Button cmdSendEmail{*this, "cmdSendEmail", Button::HiddenButton};
    Button cmdReadEmail{*this, "cmdReadEmail", Button::HiddenButton};
    /// Closes the error-log prompt for an absent user; the send run gives it its work.
    Timer Timer1{*this, "Timer1", std::chrono::seconds(30)};

    /// The text of txtAccessDBPath names another database file, or none, than before; told after
    /// cmbAccessTable has been filled.
    Event<> databaseChanged;
    /// A new database file has become the project's, with its table.
    Event<> databaseCreated;
    /// The user chose another table in cmbAccessTable.
    Event<> tableChosen;

    /// Pages of Tab1.
    enum Page {
        YouPage,
        SendingPage,
        ReceivingPage,
        DatabasePage,
        RulesPage,
        MessagePage,
        SignaturePage
    };
    /// Shows the form on that page with the keyboard in `control`.
    void ShowPage(Page page, Control& control);
    void OnCloseBox() override;

protected:
    void OnLoad() override;

private:
    void Leave();
    void FillChoices();
    void WireFields();
    void WireDatabaseFields();
    void SetTips();
    void CheckSignatureFile();
    void FillEmptyNumbers();
    void ApplyDependentStates();
    void CheckNumberField(TextBox& field, int minimum, int maximum, const std::string& fallback);
    void PutUsualPort();
    void BrowseDatabase();
    void BrowseSignature();
    void OpenDatabaseFile();
    void FillTables(const std::string& path);
    std::string openedDatabase_;
    bool databaseOpens_ = false;  ///< the file is there and is a database
    bool fillingTables_ = false;
    Subscription runsChanged_;
};

}  // namespace mailvane
