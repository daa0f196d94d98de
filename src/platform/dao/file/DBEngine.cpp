#include <filesystem>
#include <utility>

#include "platform/dao/file/Connection.h"
#include "platform/dao/file/Salvage.h"
#include "platform/dao/file/Workspace.h"
#include "platform/dao/sql/SqlPlan.h"

namespace mailvane {

namespace {

void RemoveFile(const std::string& path) {
    std::error_code ignored;
    std::filesystem::remove(path, ignored);
}

/// A file under a temporary name beside the one that it is to become; removed unless it was put in
/// place.
class FreshFile {
public:
    explicit FreshFile(std::string target)
        : target_(std::move(target)), path_(target_ + ".mailvane-new") {
        RemoveAll();
    }
    ~FreshFile() { RemoveAll(); }
    FreshFile(const FreshFile&) = delete;
    FreshFile& operator=(const FreshFile&) = delete;

    const std::string& Path() const { return path_; }

    DaoError PutInPlace() {
        std::error_code failure;
        const auto replaced = std::filesystem::status(target_, failure);
        if (std::filesystem::is_regular_file(replaced))
            std::filesystem::permissions(path_, replaced.permissions(), failure);
        if (!FlushToDisk(path_)) return MakeDaoError(dao_error::DiskError, path_);
        std::filesystem::rename(path_, target_, failure);
        if (failure) return MakeDaoError(dao_error::DiskError, failure.message());
        const std::filesystem::path folder = std::filesystem::path(target_).parent_path();
        // The new name is there for everyone; only a power failure could still lose it.
        FlushToDisk(folder.empty() ? "." : folder.string());
        return {};
    }

private:
    void RemoveAll() {
        for (const char* part : {"", "-wal", "-shm", "-journal", ".lock"})
            RemoveFile(path_ + part);
    }

    std::string target_;
    std::string path_;
};

/// Whether SQLite's check finds the file whole.
DaoResult<bool> IsWhole(Connection& connection) {
    DaoResult<std::string> report = connection.QueryText("PRAGMA integrity_check(1)");
    if (report.Ok()) return *report == "ok";
    if (report.Error().number == dao_error::DamagedFile) return false;
    return report.Error();
}

/// Rebuilt indexes may be all that a damaged file needs.
DaoResult<bool> IsWholeAfterReindex(Connection& connection) {
    const DaoResult<bool> before = IsWhole(connection);
    if (before.Failed()) return before.Error();
    const DaoError reindexed = connection.Run("REINDEX");
    if (reindexed.Failed()) return *before ? DaoResult<bool>(reindexed) : DaoResult<bool>(false);
    return *before ? DaoResult<bool>(true) : IsWhole(connection);
}

DaoError SetWriteAheadLog(Connection& connection) {
    const DaoResult<std::string> set = connection.QueryText("PRAGMA journal_mode=WAL");
    return set.Failed() ? set.Error() : DaoError();
}

DaoError WriteDenseCopy(Connection& connection, const std::string& path) {
    if (DaoError failed = connection.Run("VACUUM INTO " + QuoteText(path)); failed.Failed())
        return failed;
    if (!connection.UsesWriteAheadLog()) return {};
    DaoResult<std::shared_ptr<Connection>> copy = Connection::Open(path, OpenMode::Exclusive);
    return copy.Failed() ? copy.Error() : SetWriteAheadLog(**copy);
}

/// The file takes the place of the open one, which is closed. The lock stays with the path until
/// the new file is there; SQLite's side of the old one goes first, because its log would be taken
/// for the new file's.
DaoError PutInPlaceOf(Connection& old, FreshFile& file) {
    const std::string target = old.Path();
    const FileLock lock = old.CloseKeepingLock();
    RemoveFile(target + "-wal");
    RemoveFile(target + "-shm");
    RemoveFile(target + "-journal");
    return file.PutInPlace();
}

}  // namespace

DaoError DBEngine::RepairDatabase(const std::string& path) {
    DaoResult<std::shared_ptr<Connection>> damaged = Connection::Open(path, OpenMode::Exclusive);
    if (damaged.Failed()) return damaged.Error();
    // Pages are looked at closely as they are read, so that garbage is not taken for rows.
    if (DaoError failed = (*damaged)->Run("PRAGMA cell_size_check=ON"); failed.Failed())
        return failed;
    const DaoResult<bool> whole = IsWholeAfterReindex(**damaged);
    if (whole.Failed()) return whole.Error();
    if (*whole) return {};

    FreshFile file((*damaged)->Path());
    {
        DaoResult<std::shared_ptr<Connection>> fresh = Connection::Create(file.Path());
        if (fresh.Failed()) return fresh.Error();
        if (DaoError failed = SalvageInto(**damaged, **fresh); failed.Failed()) return failed;
    }
    return PutInPlaceOf(**damaged, file);
}

DaoError DBEngine::CompactDatabase(const std::string& source, const std::string& target) {
    DaoResult<std::shared_ptr<Connection>> connection =
        Connection::Open(source, OpenMode::Exclusive);
    if (connection.Failed()) return connection.Error();
    if (std::filesystem::exists(std::filesystem::symlink_status(target)))
        return MakeDaoError(dao_error::DatabaseExists);
    FreshFile file(target);
    if (DaoError failed = WriteDenseCopy(**connection, file.Path()); failed.Failed()) return failed;
    return file.PutInPlace();
}

DaoError DBEngine::CompactInPlace(const std::string& path, const std::string& backup) {
    DaoResult<std::shared_ptr<Connection>> connection = Connection::Open(path, OpenMode::Exclusive);
    if (connection.Failed()) return connection.Error();
    FreshFile copy(backup);
    if (DaoError failed = WriteDenseCopy(**connection, copy.Path()); failed.Failed()) return failed;
    if (DaoError failed = copy.PutInPlace(); failed.Failed()) return failed;
    FreshFile file((*connection)->Path());
    std::error_code failure;
    if (!std::filesystem::copy_file(backup, file.Path(), failure))
        return MakeDaoError(dao_error::DiskError, failure.message());
    return PutInPlaceOf(**connection, file);
}

void DBEngine::RemoveLeftovers(const std::string& path, const std::string& backup) {
    // Whoever is at work on the file holds it exclusively.
    const DaoResult<FileLock> lock = FileLock::Take(path, false);
    if (lock.Failed()) return;
    for (const std::string& target : {path, backup})
        const FreshFile leftover(target);
}

}  // namespace mailvane
