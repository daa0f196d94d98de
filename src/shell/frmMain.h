#pragma once

#include <functional>
#include <string>

#include "core/Shell.h"
#include "core/Workbench.h"
#include "core/project/Project.h"
#include "platform/os/FolderClaim.h"
#include "shell/AssignedTask.h"
#include "shell/StoreUpkeep.h"

namespace mailvane {

struct StartOptions {
    std::string commandLine;  ///< a project file, or "\SHC " and a task name; quotes are dropped
    /// Splash, connection wizard, project dialog, welcome screen and warnings are shown; otherwise
    /// what the start has to say comes in panel 1 only.
    bool dialogs = false;
    /// Where other starts hand their command lines over; not owned, null for none.
    FolderClaim* claim = nullptr;
};

/// The main window: menus, status bar, the hub of all commands. Holds no mail logic.
class frmMain final : public WorkbenchForm, public Shell {
public:
    explicit frmMain(Workbench& wb);
    ~frmMain() override;

    ActiveBar ActiveBar1{*this, "ActiveBar1"};
    StatusBar sbStatusBar{*this, "sbStatusBar", 2};
    ProgressBar Progress1{*this, "Progress1"};
    Button cmdSave{*this, "cmdSave", Button::HiddenButton, [this] { SaveOpenProject(); }};
    Button cmdProgress{*this, "cmdProgress", Button::HiddenButton, [this] { ShowProgress(); }};
    Button cmdNoProgress{*this, "cmdNoProgress", Button::HiddenButton, [this] { HideProgress(); }};
    Button cmdCompactMessages{*this, "cmdCompactMessages", Button::HiddenButton, [this] {
                                  wb_.runs.EndThen(Holds::Store, [this] { CompactMessageStore(); });
                              }};
    Button cmdCompactDatabase{*this, "cmdCompactDatabase", Button::HiddenButton, [this] {
                                  wb_.runs.EndThen(RecipientViews, [this] { CompactRecipients(); });
                              }};
    Timer Timer1{*this, "Timer1", std::chrono::milliseconds(50), [this] { SendAndReceive(); }};
    Timer Timer2{*this, "Timer2", std::chrono::milliseconds(500), [this] { TakeRequests(); }};

    /// Brings everything up: store, project, hidden forms. The window is shown at its end.
    void Start(const StartOptions& options);
    void ExitApplication();

    // Shell
    ControlAnswer ExecuteCommand(const std::string& toolName,
                                 const std::string& toolCaption) override;
    Form& MainForm() override { return *this; }
    void SetPanel(const std::string& text) override;
    std::string Panel() const override { return panel_; }
    void SetRecordPanel(const std::string& text) override;
    ProgressBar& Progress() override { return Progress1; }
    Button& ShowProgressButton() override { return cmdProgress; }
    Button& HideProgressButton() override { return cmdNoProgress; }
    Button& SaveButton() override { return cmdSave; }
    bool CompactMessageStore() override;
    bool CompactRecipients() override;
    void AddRecentFile(const std::string& path) override { RecentFile1.Add(path); }

    // Commands
    void NewProject();
    void OpenCommand();
    void SaveCommand();
    void SaveAsCommand();
    void RunProjectDialog();

    void OnCloseBox() override { ExitApplication(); }

private:
    void AddCommand(const Tool& command);
    void AddRecentFiles();
    void Hover(const Tool* tool);

    // The start.
    void ShowSplash();
    void RunStartUpChecks();
    void OpenFirstProject(const std::string& commandLine, bool dialogs);
    void OfferWelcome();
    void LoadHiddenForms();
    void RestoreHiddenFormsAfterWizard();
    void TellLargeStore();
    void TellInterruptedMerge(bool box);
    enum class TaskHost { OwnStart, OpenProgram };
    void OpenAssignedTask(const std::string& path, TaskHost host);
    void UseLineOfTask(const AssignedTask& task);
    void TakeRequests();
    bool CarryOut(const std::string& commandLine);

    // Projects.
    void OpenProject(const std::string& path);
    void OpenExistingProject(const std::string& path);
    void ShowNewProject();
    bool MakeProject(const std::string& path);
    void SaveOpenProject();

    // The end.
    void CloseProgram();
    void LeaveProgram();
    bool TellUpkeep(const DaoResult<RepairReport>& outcome, const std::string& path);

    void SendAndReceive();
    void ShowProgress();
    void HideProgress();
    void ShowRecentFiles(const std::vector<std::string>& paths);

    RecentFile RecentFile1;
    Subscription registered_;
    Subscription unloading_;
    FolderClaim* claim_ = nullptr;
    std::string savedPanel_;
    std::string panel_;  ///< of panel 1, also while a tool's tip is shown there
    bool sendAndReceiveRunning_ = false;
};

}  // namespace mailvane
