#include "core/shell/frmMain.h"

#include <filesystem>

#include "core/Paths.h"
#include "core/ProgramFolder.h"
#include "core/Progress.h"
#include "core/Settings.h"
#include "core/Text.h"
#include "core/frmOptions.h"
#include "core/frmSettings.h"
#include "core/shell/CommandTable.h"
#include "platform/os/Files.h"
#include "store/MergeMark.h"
#include "store/MessageStore.h"
#include "store/frmViewEmail.h"

namespace mailvane {

namespace {

void TakeNumber(const std::string& setting, double& value) {
    if (IsNumeric(setting)) value = NumberOf(setting);
}

}  // namespace

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
    RecentFile1.onChange = [this](const std::vector<std::string>& paths) {
        ShowRecentFiles(paths);
    };
}

frmMain::~frmMain() {
    wb_.shell = nullptr;
}

void frmMain::Start(const StartOptions& options) {
    wb_.state.FirstLaunch = true;
    PrepareProgramFolder(wb_);
    RestorePlace();
    wb_.state.MainWorkspace = Workspace::Create();
    wb_.state.ViewEmailPreload = true;
    wb_.forms.Load<frmViewEmail>();
    wb_.state.ViewEmailPreload = false;
    RecentFile1.Load();
    wb_.state.UnattendedRun = false;
    OpenFirstProject(options);
    LoadHiddenForms();
    Windows().SetPointer(MousePointer::Normal);
    Show();
    showAsked_ = options.showAsked;
    if (showAsked_) Timer2.Start();
    TellInterruptedMerge(options.dialogs);
}

void frmMain::ShowWhenAsked() {
    if (!showAsked_()) return;
    if (State() == WindowState::Minimized) SetState(WindowState::Normal);
    BringToFront();
}

void frmMain::RestorePlace() {
    FormRect rect;
    TakeNumber(GetUserSetting(wb_, "Settings", "MainLeft"), rect.left);
    TakeNumber(GetUserSetting(wb_, "Settings", "MainTop"), rect.top);
    const std::string state = GetUserSetting(wb_, "Settings", "WindowState");
    if (state != "2") TakeNumber(GetUserSetting(wb_, "Settings", "MainWidth"), rect.width);
    TakeNumber(GetUserSetting(wb_, "Settings", "MainHeight"), rect.height);
    SetRect(rect);
    SetState(state == "2" ? WindowState::Maximized : WindowState::Normal);
}

void frmMain::OpenFirstProject(const StartOptions& options) {
    const std::string line = ReplaceText(options.commandLine, "\"", "");
    if (FileExists(line)) return OpenProject(std::filesystem::absolute(line).string());
    const std::string last = RecentFile1.Paths().front();
    if (GetUserSetting(wb_, "Settings", "Load") == "1" && FileExists(last)) OpenProject(last);
}

void frmMain::OpenProject(const std::string& path) {
    SwitchProject(wb_, path);
    LoadHiddenForms();
}

void frmMain::OpenExistingProject(const std::string& path) {
    if (FileExists(path)) return OpenProject(path);
    Tell(wb_, "File not found. Please verify the correct file name was given. ", BoxIcon::Critical);
}

/// The forms whose controls other parts read at any time.
void frmMain::LoadHiddenForms() {
    wb_.forms.Get<frmSettings>();
    wb_.forms.Get<frmViewEmail>();
    wb_.forms.Get<frmOptions>();
}

/// What a merge run that died has left; told until a person has seen it.
void frmMain::TellInterruptedMerge(bool box) {
    if (!wb_.state.MessageStore || !wb_.state.MessageStore->IsOpen()) return;
    const auto found = MergeMark::Find(*wb_.state.MessageStore);
    if (found.Failed() || !*found) return;
    const UnfinishedMerge& run = **found;
    std::string text = InterruptedMergeText(run);
    SetPanel(text);
    if (!box || wb_.state.UnattendedRun) return;
    text += "\r\n\r\nIt began on " + run.started.GeneralDate() + " with the table '" + run.table +
            "'. These messages are whole and can be sent as they are.";
    if (run.firstRow > 0)
        text += " For the others, start the merge again with \"Start from row #\" " +
                std::to_string(run.firstRow + run.made) + ".";
    Tell(wb_, text, BoxIcon::Exclamation);
    MergeMark::Clear(*wb_.state.MessageStore).Ignore();  // told again if that fails
}

void frmMain::NewProject() {
    const std::string path = Trim(BrowseFile(wb_, true, "Mailvane projects", ".poc"));
    if (path.empty()) return;
    if (!FileExists(TemplatePath(wb_))) return TellFilesCorrupted();
    wb_.state.NewProjectInProgress = true;
    OpenProject(TemplatePath(wb_));
    wb_.state.CurrentProjectFile.clear();
    SaveProject(wb_, path);
    wb_.state.NewProjectInProgress = false;

    Windows().SetPointer(MousePointer::Busy);
    WaitSeconds(wb_, 1);
    if (Form* status = wb_.forms.FindByName("frmStatus")) status->Unload();
    frmSettings& settings = wb_.forms.Get<frmSettings>();
    settings.Tab1.SetCurrent(frmSettings::YouPage);
    settings.Show();
    WaitSeconds(wb_, 1);
    settings.txtAccessDBPath.Focus();
    Windows().SetPointer(MousePointer::Normal);
    wb_.state.CurrentProjectFile = path;
}

void frmMain::SaveOpenProject() {
    if (wb_.state.ProjectOpen()) SaveProject(wb_, wb_.state.CurrentProjectFile);
}

void frmMain::SaveCommand() {
    if (wb_.state.CurrentProjectFile.empty())
        wb_.state.CurrentProjectFile = BrowseFile(wb_, true, "Mailvane projects", ".poc");
    SaveOpenProject();
}

void frmMain::SaveAsCommand() {
    const std::string name = BrowseFile(wb_, true, "Mailvane projects", ".poc");
    if (name.empty() || name == " ") return;
    SaveProject(wb_, name);
    OpenProject(name);
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

void frmMain::TellFilesCorrupted() {
    Tell(wb_,
         "Some very important files are corrupted. To solve the problem please reinstall the "
         "program. ",
         BoxIcon::Critical);
}

void frmMain::StorePlace() {
    if (State() == WindowState::Normal) {
        SaveUserSetting(wb_, "Settings", "MainLeft", std::to_string(Rect().left));
        SaveUserSetting(wb_, "Settings", "MainTop", std::to_string(Rect().top));
        SaveUserSetting(wb_, "Settings", "MainWidth", std::to_string(Rect().width));
        SaveUserSetting(wb_, "Settings", "MainHeight", std::to_string(Rect().height));
    }
    SaveUserSetting(wb_, "Settings", "WindowState", std::to_string(static_cast<int>(State())));
}

void frmMain::CloseStores() {
    wb_.forms.Get<frmViewEmail>().DataEmail.Close();
    CloseMessageStore(wb_);
    if (wb_.state.MainWorkspace) wb_.state.MainWorkspace->Close();
    wb_.state.MainWorkspace = nullptr;
    DeleteFile(MessageStorePath(wb_) + ".bak");
}

void frmMain::ExitApplication() {
    const Form* status = wb_.forms.FindByName("frmStatus");
    if (wb_.state.RunBusy || (status && status->Visible())) {
        // A run is told to stop; the program closes when it has.
        wb_.state.CancelRequested = true;
        Windows().Post([this] { ExitApplication(); });
        return;
    }
    Windows().SetPointer(MousePointer::Busy);
    cmdNoProgress.Press();
    if (wb_.forms.Get<frmOptions>().chkSave.Checked()) SaveCommand();
    StorePlace();
    wb_.state.ExitRequested = true;
    wb_.forms.UnloadAllExcept({"frmMain", "frmViewEmail"});
    CloseStores();
    wb_.forms.UnloadAllExcept({});
    Windows().SetPointer(MousePointer::Normal);
    Windows().Quit();
}

}  // namespace mailvane
