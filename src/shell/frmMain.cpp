#include "shell/frmMain.h"

#include "core/project/frmProjectWizard.h"
#include "shell/CommandTable.h"

namespace mailvane {

frmMain::frmMain(Workbench& wb)
    : WorkbenchForm(wb, "frmMain", ProgramTitle, FormStyle::Main), RecentFile1(wb, ProgramTitle) {
    wb.shell = this;
    AddMainTools(ActiveBar1);
    for (Band& band : MainBands())
        ActiveBar1.AddBand(std::move(band));
    Progress1.SetVisible(false);
    ActiveBar1.onTool = [this](const Tool& tool) {
        // The tool may go or change its caption while its command runs.
        const Tool pressed = tool;
        ExecuteCommand(pressed.name, pressed.caption);
    };
    ActiveBar1.onHover = [this](const Tool* tool) {
        if (tool && panelBeforeHover_.empty()) panelBeforeHover_ = Panel() + " ";
        SetPanel(tool ? tool->tip : panelBeforeHover_.substr(0, panelBeforeHover_.size() - 1));
        if (!tool) panelBeforeHover_.clear();
    };
    // The project wizard unloads the forms that others read at any time.
    unloading_ = wb.forms.unloading.Observe([this](Form& form) {
        if (IsLoaded() && dynamic_cast<frmProjectWizard*>(&form))
            Windows().Post([this] { RestoreHiddenForms(); });
    });
    RecentFile1.onChange = [this](const std::vector<std::string>& paths) {
        ShowRecentFiles(paths);
    };
}

frmMain::~frmMain() {
    wb_.shell = nullptr;
}

void frmMain::ShowWhenAsked() {
    if (!showAsked_()) return;
    if (State() == WindowState::Minimized) SetState(WindowState::Normal);
    BringToFront();
}

void frmMain::SetRecordPanel(const std::string& text) {
    if (Progress1.Visible())
        savedPanel_ = text;
    else
        sbStatusBar.SetPanel(2, text);
}

void frmMain::ShowProgress() {
    if (Progress1.Visible()) return;
    savedPanel_ = sbStatusBar.Panel(2);
    sbStatusBar.SetPanel(2, "");
    Progress1.SetVisible(true);
}

void frmMain::HideProgress() {
    if (!Progress1.Visible()) return;
    Progress1.SetVisible(false);
    sbStatusBar.SetPanel(2, savedPanel_);
}

void frmMain::ShowRecentFiles(const std::vector<std::string>& paths) {
    for (std::size_t i = 0; i < paths.size(); ++i) {
        const std::string tool = "RecentFile" + std::to_string(i + 1);
        if (!paths[i].empty()) ActiveBar1.SetToolCaption(tool, paths[i]);
        ActiveBar1.SetToolVisible(tool, !paths[i].empty());
    }
}

}  // namespace mailvane
