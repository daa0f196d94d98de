#include "platform/dao/salvage/Salvage.h"

#include "platform/dao/file/Connection.h"
#include "platform/dao/salvage/FileSalvage.h"

namespace mailvane {

DaoResult<RepairReport> SalvageInto(const std::string& damagedPath, Connection& fresh) {
    const std::optional<PageFile> file = PageFile::Open(damagedPath);
    if (!file) return MakeDaoError(dao_error::DamagedFile, damagedPath);
    FileSalvage salvage(*file, fresh);
    if (DaoError failed = fresh.InUnit([&] { return salvage.Run(); }); failed.Failed())
        return failed;
    if (!salvage.FoundAnything()) return MakeDaoError(dao_error::DamagedFile, damagedPath);
    if (file->HeadIsSound() && !file->UsesWriteAheadLog()) {
        const DaoResult<std::string> set = fresh.QueryText("PRAGMA journal_mode=DELETE");
        if (set.Failed()) return set.Error();
    }
    return salvage.Report();
}

}  // namespace mailvane
