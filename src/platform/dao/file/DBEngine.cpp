#include <filesystem>
#include <utility>

#include "platform/dao/file/Connection.h"
#include "platform/dao/file/FreshFile.h"
#include "platform/dao/file/SoleFile.h"
#include "platform/dao/file/Workspace.h"
#include "platform/dao/salvage/Salvage.h"
#include "platform/dao/sql/SqlPlan.h"

namespace mailvane {

namespace {

/// Whether SQLite's check finds the file whole. Rows that break a rule of their table are no
/// damage.
DaoResult<bool> IsWhole(Connection& connection) {
    DaoResult<Statement> check = connection.Prepare("PRAGMA integrity_check(10000)");
    if (check.Failed()) return check.Error();
    for (;;) {
        const DaoResult<bool> row = check->Step();
        if (row.Failed() && row.Error().number == dao_error::DamagedFile) return false;
        if (row.Failed()) return row.Error();
        if (!*row) return true;
        const std::string told = check->Text(0);
        if (told != "ok" && !told.starts_with("NULL value in ") &&
            !told.starts_with("CHECK constraint failed in "))
            return false;
    }
}

/// Makes the indexes anew, and keeps them only if the file is whole then: what is damaged beyond
/// its indexes is not written to.
DaoResult<bool> IsWholeAfterReindex(Connection& connection) {
    const DaoResult<bool> before = IsWhole(connection);
    if (before.Failed()) return before.Error();
    DaoResult<bool> after = false;
    const DaoError outcome = connection.InUnit([&]() -> DaoError {
        if (DaoError failed = connection.Run("REINDEX"); failed.Failed()) return failed;
        after = IsWhole(connection);
        if (after.Failed()) return after.Error();
        return *after ? DaoError() : MakeDaoError(dao_error::DamagedFile, connection.Path());
    });
    if (outcome.Ok()) return true;
    return *before ? DaoResult<bool>(outcome) : DaoResult<bool>(false);
}

DaoError WriteDenseCopy(Connection& connection, const std::string& path) {
    if (DaoError failed = connection.Run("VACUUM INTO " + QuoteText(path)); failed.Failed())
        return failed;
    if (!connection.UsesWriteAheadLog()) return {};
    DaoResult<std::shared_ptr<Connection>> copy = Connection::Open(path, OpenMode::Exclusive);
    if (copy.Failed()) return copy.Error();
    const DaoResult<std::string> set = (*copy)->QueryText("PRAGMA journal_mode=WAL");
    return set.Failed() ? set.Error() : DaoError();
}

DaoError TakeContentOfFile(Connection& connection, const std::string& path) {
    DaoResult<std::shared_ptr<Connection>> copy = Connection::Open(path, OpenMode::Exclusive);
    return copy.Failed() ? copy.Error() : connection.TakeContentOf(**copy);
}

/// Gives the file a second name, beside its own, that no other file has.
DaoResult<std::string> KeepOriginal(const std::string& path) {
    namespace fs = std::filesystem;
    for (int number = 1;; ++number) {
        const std::string kept = path + ".damaged" + (number == 1 ? "" : std::to_string(number));
        if (fs::exists(fs::symlink_status(kept))) continue;
        std::error_code failure;
        fs::create_hard_link(path, kept, failure);
        // Not every file system has second names.
        if (failure && !fs::copy_file(path, kept, failure))
            return MakeDaoError(dao_error::DiskError, failure.message());
        return kept;
    }
}

/// What SQLite did not merge into a file when it closed it would be lost with the file's name.
DaoError CheckLogIsMerged(const std::string& path) {
    for (const char* log : {"-wal", "-journal"}) {
        std::error_code missing;
        const auto size = std::filesystem::file_size(path + log, missing);
        if (!missing && size > 0) return MakeDaoError(dao_error::DiskError, path + log);
    }
    return {};
}

DaoResult<RepairReport> SalvageToFile(const std::string& damaged, const std::string& path) {
    DaoResult<std::shared_ptr<Connection>> fresh = Connection::Create(path);
    if (fresh.Failed()) return fresh.Error();
    DaoResult<RepairReport> report = SalvageInto(damaged, **fresh);
    (*fresh)->Close();
    if (report.Failed()) return report;
    if (DaoError failed = CheckLogIsMerged(path); failed.Failed()) return failed;
    return report;
}

/// Puts what can be saved of a damaged file into its place, and keeps it under another name.
DaoResult<RepairReport> ReplaceDamaged(const std::string& path) {
    if (DaoError failed = CheckLogIsMerged(path); failed.Failed()) return failed;
    FreshFile file(path);
    DaoResult<RepairReport> report = SalvageToFile(path, file.Path());
    if (report.Failed()) return report;
    const DaoResult<std::string> kept = KeepOriginal(path);
    if (kept.Failed()) return kept.Error();
    RemoveCompanions(path);
    if (DaoError failed = file.PutInPlace(path); failed.Failed()) {
        std::error_code ignored;
        std::filesystem::remove(*kept, ignored);
        return failed;
    }
    report->keptOriginal = *kept;
    return report;
}

/// The file, open, when SQLite finds it whole; otherwise it is closed again and `damage` says what
/// is the matter.
DaoResult<std::shared_ptr<Connection>> OpenIfWhole(const SoleFile& file, DaoError& damage) {
    DaoResult<std::shared_ptr<Connection>> connection = file.Open();
    damage = connection.Error();
    // Where the head is damaged there seems to be no database at all.
    if (damage.number == dao_error::DamagedFile || damage.number == dao_error::UnrecognizedFormat)
        return std::shared_ptr<Connection>();
    if (connection.Failed()) return connection;
    const DaoResult<bool> whole = IsWholeAfterReindex(**connection);
    if (whole.Failed()) return whole.Error();
    if (*whole) return connection;
    (*connection)->Close();
    damage = MakeDaoError(dao_error::DamagedFile, file.Path());
    return std::shared_ptr<Connection>();
}

/// The report of a file that is no database is why it is none.
DaoResult<RepairReport> RepairDamage(const SoleFile& file, const DaoError& damage) {
    DaoResult<RepairReport> report = ReplaceDamaged(file.Path());
    const bool nothingFound = report.Error().number == dao_error::DamagedFile;
    return nothingFound ? DaoResult<RepairReport>(damage) : report;
}

}  // namespace

DaoResult<RepairReport> DBEngine::RepairDatabase(const std::string& path) {
    const DaoResult<SoleFile> file = SoleFile::Take(path);
    if (file.Failed()) return file.Error();
    DaoError damage;
    const DaoResult<std::shared_ptr<Connection>> whole = OpenIfWhole(*file, damage);
    if (whole.Failed()) return whole.Error();
    return damage.Failed() ? RepairDamage(*file, damage) : RepairReport();
}

DaoResult<RepairReport> DBEngine::CompactInPlace(const std::string& path,
                                                 const std::string& backup) {
    const DaoResult<SoleFile> file = SoleFile::Take(path);
    if (file.Failed()) return file.Error();
    DaoError damage;
    const DaoResult<std::shared_ptr<Connection>> whole = OpenIfWhole(*file, damage);
    if (whole.Failed()) return whole.Error();
    if (damage.Failed()) return RepairDamage(*file, damage);

    FreshFile copy(CanonicalPath(backup));
    if (DaoError failed = WriteDenseCopy(**whole, copy.Path()); failed.Failed()) return failed;
    // Not by renaming: a program that is just about to read the file has it open already, and would
    // go on with the old one.
    if (DaoError failed = TakeContentOfFile(**whole, copy.Path()); failed.Failed()) return failed;
    if (DaoError failed = copy.PutInPlace(file->Path()); failed.Failed()) return failed;
    return RepairReport();
}

void DBEngine::RemoveLeftovers(const std::string& path, const std::string& backup) {
    // Whoever is at work on the file holds it exclusively.
    const std::string canonical = CanonicalPath(path);
    const DaoResult<FileLock> lock = FileLock::Take(canonical, false);
    if (lock.Failed()) return;
    for (const std::string& target : {canonical, CanonicalPath(backup)})
        const FreshFile leftover(target);
}

}  // namespace mailvane
