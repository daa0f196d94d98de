#pragma once

#include <string>

#include "core/Workbench.h"
#include "core/project/WizardPages.h"

namespace mailvane {

/// Makes a new project in four steps: its file, the sender, the mail servers, the recipients.
class frmProjectWizard final : public WorkbenchForm {
public:
    explicit frmProjectWizard(Workbench& wb);

    Panel pnlProject{*this, "pnlProject"};
    TextBox txtProject{*this, "txtProject"};
    Button cmdBrowseProject{*this, "cmdBrowseProject", [this] { BrowseProject(); }};
    Panel pnlSender{*this, "pnlSender"};
    TextBox txtName{*this, "txtName"};
    TextBox txtEmail{*this, "txtEmail"};
    Panel pnlServers{*this, "pnlServers"};
    TextBox txtSMTP{*this, "txtSMTP"};
    TextBox txtPOP3{*this, "txtPOP3"};
    TextBox txtLogin{*this, "txtLogin"};
    TextBox txtPassword{*this, "txtPassword"};
    Panel pnlDatabase{*this, "pnlDatabase"};
    TextBox txtDatabase{*this, "txtDatabase"};
    Button cmdBrowseDatabase{*this, "cmdBrowseDatabase", [this] { BrowseDatabase(); }};
    Button cmdBack{*this, "cmdBack"};
    Button cmdNext{*this, "cmdNext"};
    Button cmdFinish{*this, "cmdFinish", [this] { Finish(); }};
    Button cmdCancel{*this, "cmdCancel", [this] { Unload(); }};

protected:
    void OnLoad() override;
    bool OnQueryUnload() override { return !finishing_; }

private:
    void BrowseProject();
    void BrowseDatabase();
    void CompleteLocation();
    bool HasLocation();
    bool MayReplace();
    void Finish();
    void MakeProject();
    void LoadTemplate();
    void FillSettings();
    void ShowFirstWelcome();
    WizardPages pages_{{{&pnlProject, &txtProject},
                        {&pnlSender, &txtName},
                        {&pnlServers, &txtSMTP},
                        {&pnlDatabase, &txtDatabase}},
                       cmdBack,
                       cmdNext};
    std::string browsed_;  ///< the location that the file dialog gave
    bool finishing_ = false;
};

}  // namespace mailvane
