#include "core/MessageBoxes.h"
#include "core/Paths.h"
#include "core/Waiting.h"
#include "core/project/ProjectPrompts.h"
#include "core/run/frmStatus.h"
#include "core/settings/frmSettings.h"
#include "core/text/Text.h"
#include "shell/frmMain.h"

namespace mailvane {

void frmMain::OpenProject(const std::string& path) {
    SwitchProject(wb_, path);
    LoadHiddenForms();
}

void frmMain::OpenCommand() {
    const std::string path = BrowseProjectFile(wb_, false);
    if (!path.empty()) OpenExistingProject(path);
}

void frmMain::OpenExistingProject(const std::string& path) {
    if (!FileExists(path)) return TellFileNotFound(wb_);
    if (!IsProjectFile(wb_, path)) return Tell(wb_, NoProjectText(path), BoxIcon::Critical);
    wb_.runs.EndThen(Holds::Everything, [this, path] { OpenProject(path); });
}

void frmMain::NewProject() {
    const std::string path = Trim(BrowseProjectFile(wb_, true));
    if (path.empty()) return;
    wb_.runs.EndThen(Holds::Everything, [this, path] {
        if (MakeProject(path)) ShowNewProject();
    });
}

void frmMain::ShowNewProject() {
    Windows().SetPointer(MousePointer::Busy);
    WaitSeconds(wb_, 1);
    if (auto* status = wb_.forms.Find<frmStatus>()) status->Unload();
    frmSettings& settings = wb_.forms.Get<frmSettings>();
    settings.Tab1.SetCurrent(frmSettings::YouPage);
    settings.Show();
    WaitSeconds(wb_, 1);
    settings.txtAccessDBPath.Focus();
    Windows().SetPointer(MousePointer::Normal);
}

/// A project with the values of the template, saved under that name and open. False when the
/// template is missing or the file cannot be written, which has been told.
bool frmMain::MakeProject(const std::string& path) {
    if (!FileExists(TemplatePath(wb_))) {
        TellFilesCorrupted(wb_);
        return false;
    }
    wb_.state.NewProjectInProgress = true;
    OpenProject(TemplatePath(wb_));
    wb_.state.CurrentProjectFile.clear();
    const bool saved = SaveProject(wb_, path);
    wb_.state.NewProjectInProgress = false;
    if (saved) wb_.state.CurrentProjectFile = path;
    return saved;
}

void frmMain::SaveOpenProject() {
    if (wb_.state.ProjectOpen()) SaveProject(wb_, wb_.state.CurrentProjectFile);
}

void frmMain::SaveCommand() {
    if (!wb_.state.CurrentProjectFile.empty()) return SaveOpenProject();
    const std::string path = BrowseProjectFile(wb_, true);
    if (!path.empty() && SaveProject(wb_, path)) wb_.state.CurrentProjectFile = path;
}

void frmMain::SaveAsCommand() {
    const std::string name = BrowseProjectFile(wb_, true);
    if (name.empty() || name == " ") return;
    wb_.runs.EndThen(Holds::Everything, [this, name] {
        if (SaveProject(wb_, name)) OpenProject(name);
    });
}

}  // namespace mailvane
