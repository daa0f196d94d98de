#include "shell/StoreUpkeep.h"

#include "core/Paths.h"
#include "core/Waiting.h"
#include "core/run/Progress.h"
#include "core/run/frmStatus.h"
#include "core/settings/frmSettings.h"
#include "database/view/frmViewDatabase.h"
#include "merge/message/frmViewMerge.h"
#include "platform/os/Files.h"
#include "store/MessageStore.h"
#include "store/view/frmViewEmail.h"

namespace mailvane {

namespace {

constexpr const char* BackupEnding = ".bak";

/// The status display over the steps of one compaction.
class UpkeepProgress {
public:
    UpkeepProgress(Workbench& wb, long steps, const std::string& caption)
        : wb_(wb), pointer_(wb), steps_(steps) {
        UpdateProgress(wb_, steps, 0, caption);
        wb_.platform.windows.PumpEvents();
    }
    ~UpkeepProgress() {
        UpdateProgress(wb_, 0, steps_);
        wb_.forms.Get<frmStatus>().Unload();
    }
    UpkeepProgress(const UpkeepProgress&) = delete;
    UpkeepProgress& operator=(const UpkeepProgress&) = delete;

    void Step() {
        if (++step_ < steps_) UpdateProgress(wb_, 0, step_);
        wb_.platform.windows.PumpEvents();
    }

private:
    Workbench& wb_;
    BusyPointer pointer_;
    long steps_;
    long step_ = 0;
};

DaoError CompactFile(const std::string& path, UpkeepProgress& progress) {
    const std::string backup = path + BackupEnding;
    DeleteFile(backup);
    progress.Step();
    DaoError outcome = DBEngine::CompactInPlace(path, backup);
    DeleteFile(backup);
    progress.Step();
    return outcome;
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

DaoError CompactMessages(Workbench& wb) {
    const std::string path = MessageStorePath(wb);
    UpkeepProgress progress(wb, 3, "Compacting messages...");
    CloseStore(wb);
    const DaoError outcome = CompactFile(path, progress);
    if (wb.state.ExitRequested) return outcome;
    if (DaoError failed = OpenMessageStore(wb); failed.Failed()) return failed;
    wb.forms.Get<frmViewEmail>().cmdRefresh.Press();
    return outcome;
}

DaoError CompactDatabase(Workbench& wb) {
    const std::string path = wb.forms.Get<frmSettings>().txtAccessDBPath.Text();
    if (!FileExists(path)) return {};
    UpkeepProgress progress(
        wb, 4, "Compacting the " + FileNameFromPath(path, PathSeparator, false) + " database...");
    UnloadIfLoaded<frmViewDatabase>(wb);
    UnloadIfLoaded<frmViewMerge>(wb);
    progress.Step();
    if (DaoError failed = DBEngine::RepairDatabase(path); failed.Failed()) return failed;
    return CompactFile(path, progress);
}

void CleanUpBackup(Workbench& wb) {
    CloseStore(wb);
    DeleteFile(MessageStorePath(wb) + BackupEnding);
}

}  // namespace mailvane
