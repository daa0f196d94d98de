#include "shell/frmMain.h"

#include "core/Paths.h"
#include "send/SendCommands.h"
#include "shell/MainBands.h"

namespace mailvane {

namespace {

constexpr const char* RecentFileTool = "RecentFile";  ///< and its number, from 1

}  // namespace

frmMain::frmMain(Workbench& wb)
    : WorkbenchForm(wb, "frmMain", ProgramTitle, FormStyle::Main), RecentFile1(wb, ProgramTitle) {
    wb.shell = this;
    for (const Tool& command : wb.commands.All())
        AddCommand(command);
    AddRecentFiles();
    for (Band& band : MainBands())
        ActiveBar1.AddBand(std::move(band));
    registered_ = wb.commands.registered.Observe([this](const Tool& tool) { AddCommand(tool); });
    ActiveBar1.onHover = [this](const Tool* tool) { Hover(tool); };
    Progress1.SetVisible(false);
    RestoreHiddenFormsAfterWizard();
}

frmMain::~frmMain() {
    wb_.shell = nullptr;
}

void frmMain::AddCommand(const Tool& command) {
    Tool tool = command;
    if (tool.onClick)
        tool.onClick = [this, name = tool.name, caption = tool.caption] {
            ExecuteCommand(name, caption);
        };
    ActiveBar1.AddTool(std::move(tool));
}

void frmMain::AddRecentFiles() {
    for (const char number : std::string("12345")) {
        const std::string name = std::string(RecentFileTool) + number;
        ActiveBar1.AddTool({.name = name, .visible = false, .onClick = [this, name] {
                                ExecuteCommand(name, ActiveBar1.FindTool(name)->caption);
                            }});
    }
    RecentFile1.onChange = [this](const auto& paths) { ShowRecentFiles(paths); };
}

ControlAnswer frmMain::ExecuteCommand(const std::string& toolName, const std::string& toolCaption) {
    const Tool* tool = ActiveBar1.FindTool(toolName);
    if (!tool) return ControlAnswer::NoSuchEntry;
    if (!tool->On()) return ControlAnswer::Disabled;
    if (wb_.state.LoadingProject) return ControlAnswer::Done;
    if (const Tool* command = wb_.commands.Find(toolName))
        RunHandler(command->onClick);
    else
        OpenExistingProject(toolCaption);
    return ControlAnswer::Done;
}

/// A tip covers the text of the moment, which is there again when the mouse has left.
void frmMain::Hover(const Tool* tool) {
    const std::string tip = tool ? tool->ShownTip() : std::string();
    sbStatusBar.SetPanel(1, tip.empty() ? panel_ : tip);
}

void frmMain::SetPanel(const std::string& text) {
    panel_ = text;
    sbStatusBar.SetPanel(1, text);
}

void frmMain::SendAndReceive() {
    Timer1.Stop();
    if (sendAndReceiveRunning_) return;
    sendAndReceiveRunning_ = true;
    SendThenReceive(wb_);
    sendAndReceiveRunning_ = false;
}

void frmMain::TakeRequests() {
    while (const auto request = claim_->TakeRequest())
        claim_->Answer(*request, CarryOut(request->commandLine));
}

/// The command line of another start. False when there is no room for its work now: a run is under
/// way, or a dialog waits for its answer.
bool frmMain::CarryOut(const std::string& commandLine) {
    const std::string task = TaskFileOf(wb_, commandLine);
    const bool isProject = task.empty() && FileExists(commandLine);
    if ((!task.empty() && wb_.runs.Current()) ||
        ((!task.empty() || isProject) && Windows().ModalDepth() > 0))
        return false;
    if (!task.empty()) {
        Windows().Post([this, task] { OpenAssignedTask(task, TaskHost::OpenProgram); });
        return true;
    }
    if (State() == WindowState::Minimized) SetState(WindowState::Normal);
    BringToFront();
    if (isProject) Windows().Post([this, commandLine] { OpenExistingProject(commandLine); });
    return true;
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
        const std::string tool = RecentFileTool + std::to_string(i + 1);
        if (!paths[i].empty()) ActiveBar1.SetToolCaption(tool, paths[i]);
        ActiveBar1.SetToolVisible(tool, !paths[i].empty());
    }
}

}  // namespace mailvane
