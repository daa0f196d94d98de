#include "core/MessageBoxes.h"
#include "core/Paths.h"
#include "core/run/LongRun.h"
#include "core/settings/Settings.h"
#include "core/settings/frmOptions.h"
#include "core/settings/frmSettings.h"
#include "shell/StoreUpkeep.h"
#include "shell/frmMain.h"
#include "store/MessageStore.h"

namespace mailvane {

void frmMain::ExitApplication() {
    wb_.runs.EndThen(
        Holds::Everything, [this] { CloseProgram(); }, HowFar::Kept);
}

void frmMain::CloseProgram() {
    if (wb_.state.ExitRequested) return;
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
    DaoResult<RepairReport> outcome = RepairReport();
    {
        LongRun run(wb_, {"Compacting messages", Holds::Store});
        if (!run.Began()) return false;
        outcome = CompactMessages(wb_, run);
    }
    return TellUpkeep(outcome, MessageStorePath(wb_));
}

bool frmMain::CompactRecipients() {
    const std::string path = wb_.forms.Get<frmSettings>().txtAccessDBPath.Text();
    if (!FileExists(path)) return true;
    if (!wb_.runs.Holder(RecipientViews)) UnloadRecipientViews(wb_);
    DaoResult<RepairReport> outcome = RepairReport();
    {
        LongRun run(wb_, {"Compacting the database", RecipientViews});
        if (!run.Began()) return false;
        outcome = CompactDatabase(wb_, path, run);
    }
    return TellUpkeep(outcome, path);
}

/// True when all went well.
bool frmMain::TellUpkeep(const DaoResult<RepairReport>& outcome, const std::string& path) {
    if (wb_.state.UnattendedRun) return outcome.Ok();
    if (outcome.Failed())
        Tell(wb_,
             "The file could not be compacted and stays as it was: " + outcome.Error().description,
             BoxIcon::Exclamation);
    else if (outcome->damaged)
        Tell(wb_, "Successfully repaired the '" + path + "' database." + outcome->Text(),
             BoxIcon::Exclamation);
    return outcome.Ok();
}

}  // namespace mailvane
