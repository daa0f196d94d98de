#include "shell/StoreUpkeep.h"

#include "core/Paths.h"
#include "core/Waiting.h"
#include "database/view/frmViewDatabase.h"
#include "merge/message/frmViewMerge.h"
#include "platform/os/Files.h"
#include "store/MessageStore.h"
#include "store/view/frmViewEmail.h"

namespace mailvane {

namespace {

constexpr const char* BackupEnding = ".bak";

/// The steps of one compaction. They cannot be interrupted, so that no window would come before
/// the work is done: the text stands in the status bar.
class UpkeepSteps {
public:
    UpkeepSteps(Workbench& wb, LongRun& run, long steps, const std::string& caption)
        : wb_(wb), pointer_(wb), run_(run) {
        run_.ShowProgress(steps, caption);
        if (wb_.shell) wb_.shell->SetPanel(caption);
        wb_.platform.windows.PumpEvents();
    }
    void Next() {
        run_.Step(++step_);
        wb_.platform.windows.PumpEvents();
    }

private:
    Workbench& wb_;
    BusyPointer pointer_;
    LongRun& run_;
    long step_ = 0;
};

DaoResult<RepairReport> CompactFile(const std::string& path, UpkeepSteps& steps) {
    const std::string backup = path + BackupEnding;
    steps.Next();
    DaoResult<RepairReport> report = DBEngine::CompactInPlace(path, backup);
    // A copy from before the damage may hold what the repair could not save.
    if (report.Ok() && !report->damaged) DeleteFile(backup);
    steps.Next();
    return report;
}

void CloseStore(Workbench& wb) {
    if (auto* view = wb.forms.Find<frmViewEmail>()) view->DataEmail.Close();
    CloseMessageStore(wb);
}

template <class F>
void UnloadIfLoaded(Workbench& wb) {
    if (F* form = wb.forms.Find<F>()) form->Unload();
}

}  // namespace

DaoResult<RepairReport> CompactMessages(Workbench& wb, LongRun& run) {
    UpkeepSteps steps(wb, run, 3, "Compacting messages...");
    CloseStore(wb);
    DaoResult<RepairReport> outcome = CompactFile(MessageStorePath(wb), steps);
    if (wb.state.ExitRequested) return outcome;
    if (DaoError failed = OpenMessageStore(wb); failed.Failed()) return failed;
    wb.forms.Get<frmViewEmail>().cmdRefresh.Press();
    return outcome;
}

void UnloadRecipientViews(Workbench& wb) {
    UnloadIfLoaded<frmViewDatabase>(wb);
    UnloadIfLoaded<frmViewMerge>(wb);
}

DaoResult<RepairReport> CompactDatabase(Workbench& wb, const std::string& path, LongRun& run) {
    UpkeepSteps steps(
        wb, run, 4,
        "Compacting the " + FileNameFromPath(path, PathSeparator, false) + " database...");
    steps.Next();
    return CompactFile(path, steps);
}

void CleanUpBackup(Workbench& wb) {
    CloseStore(wb);
    DeleteFile(MessageStorePath(wb) + BackupEnding);
}

}  // namespace mailvane
