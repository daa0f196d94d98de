#include "core/MessageBoxes.h"
#include "core/run/frmStatus.h"
#include "core/settings/Settings.h"
#include "core/settings/frmOptions.h"
#include "shell/StoreUpkeep.h"
#include "shell/frmMain.h"

namespace mailvane {

/// A run that is under way is told to stop; the program closes when it has.
bool frmMain::WaitForRun() {
    const auto* status = wb_.forms.Find<frmStatus>();
    if (!wb_.state.RunBusy && !(status && status->Window.IsOpen())) return false;
    wb_.state.CancelRequested = true;
    Windows().Post([this] { ExitApplication(); });
    return true;
}

void frmMain::ExitApplication() {
    if (wb_.state.ExitRequested || WaitForRun()) return;
    Windows().SetPointer(MousePointer::Busy);
    cmdNoProgress.Press();
    const frmOptions& options = wb_.forms.Get<frmOptions>();
    const bool compactMessages = options.chkCompactMessages.Checked();
    const bool compactDatabase = options.chkCompactDatabase.Checked();
    if (options.chkSave.Checked()) SaveCommand();
    StoreWindowPlace(wb_, *this, "Main", "WindowState");
    wb_.state.ExitRequested = true;
    if (compactMessages)
        CompactMessageStore();
    else
        CleanUpBackup(wb_);
    if (compactDatabase) CompactRecipients();
    LeaveProgram();
}

void frmMain::LeaveProgram() {
    wb_.forms.UnloadAllExcept({});
    if (wb_.state.MainWorkspace) wb_.state.MainWorkspace->Close();
    wb_.state.MainWorkspace = nullptr;
    Windows().SetPointer(MousePointer::Normal);
    Windows().Quit();
}

bool frmMain::CompactMessageStore() {
    if (!wb_.state.RunBusy) return TellUpkeep(CompactMessages(wb_));
    Tell(wb_, "The messages cannot be compacted while a send or receive run is in progress.",
         BoxIcon::Exclamation);
    return false;
}

bool frmMain::CompactRecipients() {
    return TellUpkeep(CompactDatabase(wb_));
}

/// True when all went well.
bool frmMain::TellUpkeep(const DaoError& outcome) {
    if (outcome.Failed() && !wb_.state.UnattendedRun)
        Tell(wb_, "The file could not be compacted and stays as it was: " + outcome.description,
             BoxIcon::Exclamation);
    return outcome.Ok();
}

}  // namespace mailvane
