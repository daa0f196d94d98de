#include "core/project/frmProjectWizard.h"

#include "core/MessageBoxes.h"
#include "core/Paths.h"
#include "core/project/Project.h"
#include "core/project/ProjectPrompts.h"
#include "core/project/frmWelcome.h"
#include "core/settings/Settings.h"
#include "core/settings/frmSettings.h"
#include "core/text/Text.h"

namespace mailvane {

frmProjectWizard::frmProjectWizard(Workbench& wb)
    : WorkbenchForm(wb, "frmProjectWizard", "New project wizard") {
    txtProject.onLeave = [this] { CompleteLocation(); };
    txtDatabase.onEnter = [this] { cmdFinish.Press(); };
    pages_.mayLeave = [this](int page) { return page != 0 || HasLocation(); };
}

/// Who makes a second project is mostly the same sender.
void frmProjectWizard::OnLoad() {
    const auto* settings = wb_.forms.Find<frmSettings>();
    if (!settings) return;
    txtName.SetText(settings->txtName.Text());
    txtEmail.SetText(settings->txtEmail.Text());
    txtSMTP.SetText(settings->txtSMTPServer.Text());
    txtPOP3.SetText(settings->txtPOPServer.Text());
    txtLogin.SetText(settings->txtPOPUser.Text());
    txtPassword.SetText(settings->txtPOPPassword.Text());
    txtDatabase.SetText(settings->txtAccessDBPath.Text());
}

void frmProjectWizard::BrowseProject() {
    const std::string file = BrowseProjectFile(wb_, true);
    if (file.empty()) return;
    browsed_ = file;
    txtProject.SetText(file);
}

void frmProjectWizard::BrowseDatabase() {
    const std::string file = BrowseFile(wb_, false, "", "");
    if (!file.empty()) txtDatabase.SetText(file);
}

/// A bare name means a project file of that name in the usual folder.
void frmProjectWizard::CompleteLocation() {
    std::string location = Trim(txtProject.Text());
    if (location.empty()) return;
    if (location.find(PathSeparator) == std::string::npos)
        location = ProjectsFolder(wb_) + PathSeparator + location;
    const std::string name = FileNameFromPath(location, PathSeparator, false);
    if (!name.empty() && name.find('.') == std::string::npos) location += ProjectExtension;
    txtProject.SetText(location);
}

bool frmProjectWizard::HasLocation() {
    CompleteLocation();
    if (!Trim(txtProject.Text()).empty()) return true;
    Tell(wb_, "You need to enter location of your new project file.", BoxIcon::Exclamation);
    txtProject.Focus();
    return false;
}

/// The file dialog has asked already for the file that it gave.
bool frmProjectWizard::MayReplace() {
    const std::string file = Trim(txtProject.Text());
    return file == browsed_ || !FileExists(file) ||
           AskYesNo(wb_,
                    "The project file '" + file + "' already exists. Do you want to replace it?");
}

void frmProjectWizard::Finish() {
    CompleteLocation();
    if (finishing_ || !MayReplace()) return;
    if (!FileExists(TemplatePath(wb_))) return TellFilesCorrupted(wb_);
    finishing_ = true;
    wb_.runs.EndThen(Holds::Everything, [&wb = wb_] {
        if (auto* wizard = wb.forms.Find<frmProjectWizard>()) wizard->MakeProject();
    });
}

void frmProjectWizard::MakeProject() {
    wb_.state.NewProjectInProgress = true;
    LoadTemplate();
    FillSettings();
    wb_.state.CurrentProjectFile = Trim(txtProject.Text());
    if (!wb_.state.CurrentProjectFile.empty() && wb_.shell) wb_.shell->SaveButton().Press();
    Hide();
    ShowFirstWelcome();
    wb_.state.NewProjectInProgress = false;
    finishing_ = false;
    Unload();
}

/// The settings as a new project has them, without a file of their own.
void frmProjectWizard::LoadTemplate() {
    wb_.state.CurrentProjectFile = TemplatePath(wb_);
    UnloadProjectForms(wb_, Name());
    wb_.forms.Load<frmSettings>();
    if (wb_.shell) wb_.shell->SetPanel("");
    wb_.state.CurrentProjectFile.clear();
}

void frmProjectWizard::FillSettings() {
    auto& settings = wb_.forms.Get<frmSettings>();
    settings.txtEmail.SetText(txtEmail.Text());
    settings.txtName.SetText(txtName.Text());
    settings.txtPOPPassword.SetText(txtPassword.Text());
    settings.txtPOPUser.SetText(txtLogin.Text());
    settings.txtPOPServer.SetText(txtPOP3.Text());
    settings.txtSMTPServer.SetText(txtSMTP.Text());
    settings.txtAccessDBPath.SetText(txtDatabase.Text());
}

/// At the first start the welcome window waits until the wizard is over.
void frmProjectWizard::ShowFirstWelcome() {
    if (!wb_.state.FirstLaunch) return;
    const std::string welcome = GetUserSetting(wb_, "Settings", "Welcome");
    if (welcome == NotFound || welcome == "0") wb_.forms.Get<frmWelcome>().Show();
}

}  // namespace mailvane
