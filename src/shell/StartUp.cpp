#include <filesystem>

#include "connection/frmConnectionWizard.h"
#include "connection/frmDial.h"
#include "core/Machine.h"
#include "core/MessageBoxes.h"
#include "core/Paths.h"
#include "core/ProgramFolder.h"
#include "core/Waiting.h"
#include "core/notices/frmMSGLargeEmailDB.h"
#include "core/notices/frmMSGResources.h"
#include "core/project/frmProjectDialog.h"
#include "core/project/frmProjectWizard.h"
#include "core/project/frmWelcome.h"
#include "core/records/RecordFile.h"
#include "core/settings/Settings.h"
#include "core/settings/frmOptions.h"
#include "core/settings/frmSettings.h"
#include "core/text/Text.h"
#include "platform/os/Files.h"
#include "send/run/frmStatusEmail.h"
#include "shell/AssignedTask.h"
#include "shell/frmMain.h"
#include "shell/frmSplash.h"
#include "store/MergeMark.h"
#include "store/MessageStore.h"
#include "store/view/frmViewEmail.h"

namespace mailvane {

namespace {

constexpr int ScarceResources = 16;  ///< percent
constexpr std::int64_t LargeStore = 500'000'000;

bool IsUnset(const std::string& setting) {
    return setting == NotFound || setting == "0";
}

void UnloadSplash(Workbench& wb) {
    if (auto* splash = wb.forms.Find<frmSplash>()) splash->Unload();
}

}  // namespace

void frmMain::Start(const StartOptions& options) {
    if (options.dialogs) ShowSplash();
    wb_.state.FirstLaunch = true;
    wb_.state.ExitRequested = false;
    PrepareProgramFolder(wb_);
    RestoreWindowPlace(wb_, *this, "Main", "WindowState");
    const std::string line = ReplaceText(options.commandLine, "\"", "");
    const std::string task = TaskFileOf(wb_, line);
    if (options.dialogs && task.empty()) RunStartUpChecks();
    wb_.state.MainWorkspace = Workspace::Create();
    wb_.state.ViewEmailPreload = true;
    wb_.forms.Load<frmViewEmail>();
    wb_.state.ViewEmailPreload = false;
    RecentFile1.Load();
    wb_.state.UnattendedRun = false;
    if (task.empty())
        OpenFirstProject(line, options.dialogs);
    else
        OpenAssignedTask(task, TaskHost::OwnStart);
    UnloadSplash(wb_);
    // A task may have closed the program already, and so may the script that plays.
    if (!IsLoaded() || Windows().Quitting()) return;
    LoadHiddenForms();
    Windows().SetPointer(MousePointer::Normal);
    Show();
    if (options.dialogs && !wb_.state.UnattendedRun) TellLargeStore();
    claim_ = options.claim;
    if (claim_) Timer2.Start();
    TellInterruptedMerge(options.dialogs);
}

void frmMain::ShowSplash() {
    wb_.forms.Get<frmSplash>().Show();
    Windows().PumpEvents();
    const int free = FreeResourcesPercent();
    if (free != 0 && free < ScarceResources) ShowModalDialog(wb_, wb_.forms.Get<frmMSGResources>());
}

/// The first start asks how this machine is connected.
void frmMain::RunStartUpChecks() {
    if (EqualText(GetUserSetting(wb_, "Proxy", "Status"), "yes")) return;
    if (auto* splash = wb_.forms.Find<frmSplash>()) splash->Hide();
    ShowModalDialog(wb_, wb_.forms.Get<frmConnectionWizard>());
}

void frmMain::OpenFirstProject(const std::string& commandLine, bool dialogs) {
    if (FileExists(commandLine)) {
        if (IsProjectFile(wb_, commandLine))
            return OpenProject(std::filesystem::absolute(commandLine).string());
        SetPanel(NoProjectText(commandLine));
        if (dialogs) Tell(wb_, NoProjectText(commandLine), BoxIcon::Critical);
    }
    const std::string last = RecentFile1.Paths().front();
    if (GetUserSetting(wb_, "Settings", "Load") == "1" && FileExists(last) &&
        IsProjectFile(wb_, last)) {
        Show();
        OpenProject(last);
    } else if (dialogs) {
        UnloadSplash(wb_);
        Show();
        RunProjectDialog();
    }
    if (dialogs) OfferWelcome();
}

void frmMain::RunProjectDialog() {
    const ProjectChoice choice = AskForProject(wb_, RecentFile1.Paths());
    if (choice.cancelled || Windows().Quitting()) return;
    if (choice.isNew)
        wb_.runs.EndThen(Holds::Everything, [this, file = choice.file] { MakeProject(file); });
    else if (!choice.file.empty())
        OpenExistingProject(choice.file);
    if (!choice.wizard) return;
    auto& wizard = wb_.forms.Get<frmProjectWizard>();
    wizard.Show();
    wizard.BringToFront();
}

/// Comes when no wizard is at work; the wizard shows it at its end.
void frmMain::OfferWelcome() {
    if (auto* wizard = wb_.forms.Find<frmProjectWizard>()) {
        if (wizard->Visible()) return;
        wizard->Unload();
    }
    if (IsUnset(GetUserSetting(wb_, "Settings", "Welcome"))) wb_.forms.Get<frmWelcome>().Show();
}

/// The forms whose controls other parts read at any time.
void frmMain::LoadHiddenForms() {
    wb_.forms.Get<frmSettings>();
    wb_.forms.Get<frmViewEmail>();
    wb_.forms.Get<frmOptions>();
}

/// The project wizard unloads the forms that others read at any time.
void frmMain::RestoreHiddenFormsAfterWizard() {
    unloading_ = wb_.forms.unloading.Observe([this](Form& form) {
        if (!IsLoaded() || !dynamic_cast<frmProjectWizard*>(&form)) return;
        Windows().Post([this] {
            if (IsLoaded() && !wb_.state.ExitRequested) LoadHiddenForms();
        });
    });
}

void frmMain::TellLargeStore() {
    if (FileSize(MessageStorePath(wb_)) <= LargeStore) return;
    ShowModalDialog(wb_, wb_.forms.Get<frmMSGLargeEmailDB>());
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

/// Unattended: nobody is asked anything while it is carried out. It closes no program that a person
/// has opened, nor makes its window small.
void frmMain::OpenAssignedTask(const std::string& path, TaskHost host) {
    SetPanel("Opening assigned task...");
    AssignedTask task;
    if (LoadRecordFile(path, task)) {
        task.NoteStart(wb_.platform.clock.Now());
        SaveRecordFile(path, task);
    }
    wb_.state.UnattendedRun = true;
    const bool small = task.Minimised && host == TaskHost::OwnStart;
    Show();
    if (small) {
        SetState(WindowState::Minimized);
        UnloadSplash(wb_);
    }
    if (FileExists(task.Project) && IsProjectFile(wb_, task.Project)) {
        OpenProject(task.Project);
        if (small) wb_.forms.Get<frmStatusEmail>().SetState(WindowState::Minimized);
        UseLineOfTask(task);
    }
    if (host == TaskHost::OpenProgram)
        wb_.state.UnattendedRun = false;
    else if (task.CloseWhenDone)
        ExitApplication();
}

void frmMain::UseLineOfTask(const AssignedTask& task) {
    if (task.DialFirst && !EnsureDialUp(wb_)) {
        SetPanel("Dialing " + task.Connection + "...");
        frmDial& dial = wb_.forms.Get<frmDial>();
        dial.Hide();
        dial.lPhonebook.SetItems({task.Connection});
        dial.lPhonebook.SetListIndex(0);
        dial.cmdDialNow.Press();
    }
    WaitSeconds(wb_, 2);
    if (!task.HangUpAfter) return;
    SetPanel("Disconnecting from " + task.Connection + "...");
    wb_.forms.Get<frmDial>().cmdDisconnect.Press();
}

}  // namespace mailvane
