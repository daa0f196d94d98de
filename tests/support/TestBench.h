#pragma once

#include <string>
#include <utility>
#include <vector>

#include "core/Paths.h"
#include "core/Workbench.h"
#include "platform/forms/HeadlessWindows.h"
#include "platform/os/Files.h"
#include "support/ManualClock.h"
#include "support/RecordingProcesses.h"
#include "support/TempFolder.h"

namespace mailvane::test {

/// The machine and the workbench for tests: no screen, time that passes without waiting, a program
/// folder of its own. The installation's share folder is the real one.
struct HeadlessBench {
    /// A path in the program folder.
    std::string InProgramFolder(const std::string& name) const {
        return platform.programFolder + "/" + name;
    }

    TempFolder folder;
    ManualClock clock;
    HeadlessWindows windows{clock};
    RecordingProcesses processes;
    Platform platform{windows,
                      clock,
                      processes,
                      folder.Path() + "/program",
                      MAILVANE_SOURCE_DIR "/share",
                      folder.Path() + "/registry.ini"};
    Workbench wb{platform};
};

/// A main window that only has what the shell hands out.
class FakeMainForm final : public WorkbenchForm {
public:
    explicit FakeMainForm(Workbench& wb)
        : WorkbenchForm(wb, "frmMain", "Mailvane", FormStyle::Main) {}

    ProgressBar Progress1{*this, "Progress1"};
    Button cmdProgress{*this, "cmdProgress", Button::HiddenButton};
    Button cmdNoProgress{*this, "cmdNoProgress", Button::HiddenButton};
    Button cmdSave{*this, "cmdSave", Button::HiddenButton};
};

/// Remembers what it was asked for. Give the buttons an onClick to see them pressed.
class FakeShell final : public Shell {
public:
    explicit FakeShell(FakeMainForm& form) : form_(form) {}

    ControlAnswer ExecuteCommand(const std::string& toolName,
                                 const std::string& toolCaption) override {
        commands.emplace_back(toolName, toolCaption);
        return ControlAnswer::Done;
    }
    Form& MainForm() override { return form_; }
    void SetPanel(const std::string& text) override {
        panel = text;
        panels.push_back(text);
    }
    std::string Panel() const override { return panel; }
    void SetRecordPanel(const std::string& text) override { recordPanel = text; }
    ProgressBar& Progress() override { return form_.Progress1; }
    Button& ShowProgressButton() override { return form_.cmdProgress; }
    Button& HideProgressButton() override { return form_.cmdNoProgress; }
    Button& SaveButton() override { return form_.cmdSave; }
    bool CompactMessageStore() override { return ++messagesCompacted > 0; }
    bool CompactRecipients() override { return ++recipientsCompacted > 0; }
    void AddRecentFile(const std::string& path) override { recentFiles.push_back(path); }

    std::vector<std::pair<std::string, std::string>> commands;
    std::string panel;
    std::vector<std::string> panels;  ///< every text that panel 1 has had
    std::string recordPanel;
    std::vector<std::string> recentFiles;
    int messagesCompacted = 0;
    int recipientsCompacted = 0;

private:
    FakeMainForm& form_;
};

/// The same with "Projects" in the program folder and a shell that remembers.
struct TestBench : HeadlessBench {
    TestBench() {
        MakeFolders(platform.programFolder + "/Projects");
        wb.state.MainWorkspace = Workspace::Create();
        wb.shell = &shell;
    }

    PromptScript& Prompts() { return windows.prompts; }
    /// Makes the project folder of a project that has not been saved by the program.
    void UseProject(const std::string& name = "Test") {
        wb.state.ProjectName = name;
        wb.state.ProjectFolder = InProgramFolder("Projects/" + name);
        wb.state.CurrentProjectFile = wb.state.ProjectFolder + ".poc";
        MakeFolders(wb.state.ProjectFolder);
    }
    /// Handles what waits: posted work, due timers, the destruction of unloaded forms.
    void Settle() {
        for (int round = 0; round < 3; ++round) {
            windows.PumpEvents();
            windows.HandleIdle();
        }
    }

    FakeMainForm& mainForm = wb.forms.Load<FakeMainForm>();
    FakeShell shell{mainForm};
};

}  // namespace mailvane::test
