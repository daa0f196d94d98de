#include "database/upkeep/DatabaseUpkeep.h"

#include "core/MessageBoxes.h"
#include "core/Waiting.h"
#include "core/notices/frmMSGCompact.h"
#include "core/run/LongRun.h"
#include "core/settings/frmSettings.h"
#include "database/upkeep/SuspendedConnection.h"
#include "database/view/frmViewDatabase.h"
#include "platform/os/Files.h"

namespace mailvane {

namespace {

constexpr const char* BackupEnding = ".bak";

DaoResult<RepairReport> RepairOrCompact(const std::string& path, MaintainAction action) {
    const std::string backup = path + BackupEnding;
    if (action == MaintainAction::Compact) return DBEngine::CompactInPlace(path, backup);
    DaoResult<RepairReport> report = DBEngine::RepairDatabase(path);
    // A copy from before the damage may hold what the repair could not save.
    const bool outdated = report.Ok() && !report->damaged && IsFile(backup);
    if (outdated && !DeleteFile(backup)) return MakeDaoError(dao_error::DiskError, backup);
    return report;
}

void Maintain(Workbench& wb, MaintainAction action) {
    const bool repair = action == MaintainAction::Repair;
    std::string path;
    DaoResult<RepairReport> outcome = RepairReport();
    {
        const BusyPointer busy(wb);
        const LongRun run(
            wb, {repair ? "Repairing the database" : "Compacting the database", Holds::Recipients});
        if (!run.Began()) return;
        const SuspendedConnection suspended(wb);
        path = suspended.Path();
        outcome = RepairOrCompact(path, action);
    }
    if (auto* view = wb.forms.Find<frmViewDatabase>()) view->cmdRefresh.Press();
    if (outcome.Failed()) return Tell(wb, outcome.Error().description, BoxIcon::Exclamation);
    const std::string done = repair ? "repaired" : "compacted";
    Tell(wb, "Successfully " + done + " the '" + path + "' database." + outcome->Text());
}

}  // namespace

void MaintainDatabase(Workbench& wb, MaintainAction action) {
    if (action == MaintainAction::Compact && !ConfirmCompaction(wb)) return;
    wb.runs.EndThen(Holds::Recipients, [&wb, action] { Maintain(wb, action); });
}

void RemoveUpkeepLeftovers(Workbench& wb) {
    const std::string path = wb.forms.Get<frmSettings>().txtAccessDBPath.Text();
    if (IsFile(path)) DBEngine::RemoveLeftovers(path, path + BackupEnding);
}

}  // namespace mailvane
