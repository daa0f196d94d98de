#pragma once

#include <string>

#include "BenchSupport.h"
#include "core/Workbench.h"
#include "core/settings/Settings.h"
#include "core/settings/frmSettings.h"
#include "database/DatabaseService.h"
#include "platform/forms/HeadlessWindows.h"
#include "platform/os/Files.h"
#include "send/SendService.h"
#include "shell/frmMain.h"

namespace mailvane::bench {

/// The program without a screen, started as it starts for a script, in a folder of its own and with
/// a project. A prompt that comes up is a fault of the benchmark.
class HeadlessProgram {
public:
    HeadlessProgram(const std::string& folder, Clock& clock)
        : windows_(clock),
          platform_{
              windows_, clock, processes_, folder, MAILVANE_SHARE_DIR, folder + "/registry.ini"},
          databases_(wb),
          sending_(wb) {
        // The notice at the end of a merge run waits for a click.
        SaveUserSetting(wb, "Messages", "Outbox", "1");
        wb.forms.Load<frmMain>().Start({});
        wb.state.ProjectName = "Bench";
        wb.state.ProjectFolder = folder + "/Projects/Bench";
        wb.state.CurrentProjectFile = wb.state.ProjectFolder + ".poc";
        MakeFolders(wb.state.ProjectFolder);
        Settle();
    }
    HeadlessProgram(const HeadlessProgram&) = delete;
    HeadlessProgram& operator=(const HeadlessProgram&) = delete;

    frmSettings& Settings() { return wb.forms.Get<frmSettings>(); }
    /// Handles what waits for an idle moment.
    void Settle() {
        windows_.PumpEvents();
        windows_.HandleIdle();
    }
    void CheckPrompts() const {
        for (const ShownPrompt& prompt : windows_.prompts.Shown())
            Fail("The program asked: " + prompt.Line());
    }

private:
    HeadlessWindows windows_;
    SystemProcesses processes_;
    Platform platform_;

public:
    Workbench wb{platform_};

private:
    DatabaseService databases_;
    SendService sending_;
};

}  // namespace mailvane::bench
