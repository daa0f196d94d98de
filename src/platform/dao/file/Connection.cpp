#include "platform/dao/file/Connection.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>

#include "platform/dao/file/FileFormat.h"
#include "platform/dao/file/Workspace.h"
#include "platform/dao/sql/SqlFunctions.h"

namespace mailvane {

namespace {

constexpr int BusyWaitMilliseconds = 5000;
constexpr std::size_t MaxKeptStatements = 64;

std::string SavepointName(int depth) {
    return "mv" + std::to_string(depth);
}

}  // namespace

std::string CanonicalPath(const std::string& path) {
    std::error_code failure;
    const std::filesystem::path canonical = std::filesystem::weakly_canonical(path, failure);
    return failure ? path : canonical.string();
}

bool FlushToDisk(const std::string& path) {
    const int handle = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (handle < 0) return false;
    const bool flushed = ::fsync(handle) == 0;
    ::close(handle);
    return flushed;
}

Connection::Connection(std::string path, std::optional<FileLock> lock)
    : path_(std::move(path)), lock_(std::move(lock)) {}

Connection::~Connection() {
    Close();
}

DaoResult<std::shared_ptr<Connection>> Connection::Open(const std::string& path, OpenMode mode) {
    const std::string canonical = CanonicalPath(path);
    if (DaoError refused = CheckFile(canonical); refused.Failed()) return refused;
    DaoResult<FileLock> lock = FileLock::Take(canonical, mode == OpenMode::Exclusive);
    if (lock.Failed()) return lock.Error();
    std::shared_ptr<Connection> connection(new Connection(canonical, std::move(*lock)));
    if (DaoError failed = connection->OpenFile(Opening::Existing); failed.Failed()) return failed;
    return connection;
}

DaoResult<std::shared_ptr<Connection>> Connection::Create(const std::string& path) {
    const std::string canonical = CanonicalPath(path);
    if (std::filesystem::exists(std::filesystem::symlink_status(canonical)))
        return MakeDaoError(dao_error::DatabaseExists);
    DaoResult<FileLock> lock = FileLock::Take(canonical, false);
    if (lock.Failed()) return lock.Error();
    std::shared_ptr<Connection> connection(new Connection(canonical, std::move(*lock)));
    if (DaoError failed = connection->OpenFile(Opening::New); failed.Failed()) return failed;
    return connection;
}

DaoResult<std::shared_ptr<Connection>> Connection::OpenUnlocked(const std::string& path) {
    std::shared_ptr<Connection> connection(new Connection(path, std::nullopt));
    if (DaoError failed = connection->OpenFile(Opening::WithoutLocks); failed.Failed())
        return failed;
    return connection;
}

DaoError Connection::OpenFile(Opening opening) {
    const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_EXRESCODE |
                      (opening == Opening::New ? SQLITE_OPEN_CREATE : 0);
    const char* system = opening == Opening::WithoutLocks ? "unix-none" : nullptr;
    if (sqlite3_open_v2(path_.c_str(), &database_, flags, system) != SQLITE_OK) {
        Close();
        return MakeDaoError(dao_error::CannotOpenFile, path_);
    }
    sqlite3_busy_timeout(database_, BusyWaitMilliseconds);
    // A misspelt column is an error, not a text; what a foreign file defines runs nothing of ours.
    sqlite3_db_config(database_, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
    sqlite3_db_config(database_, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    if (const int code = RegisterSqlFunctions(database_); code != SQLITE_OK) return ErrorOf(code);
    // Without locks there is no shared memory either.
    const char* first = opening == Opening::New            ? "PRAGMA journal_mode=WAL"
                        : opening == Opening::WithoutLocks ? "PRAGMA locking_mode=EXCLUSIVE"
                                                           : nullptr;
    if (first != nullptr)
        if (const DaoResult<std::string> set = QueryText(first); set.Failed()) return set.Error();
    return ReadHead();
}

DaoError Connection::ReadHead() {
    const DaoResult<std::int64_t> tables = QueryWhole("SELECT count(*) FROM sqlite_schema");
    if (tables.Failed()) {
        const DaoError error = tables.Error();
        Close();
        return error.number == dao_error::UnrecognizedFormat ? ForeignFormatError(path_) : error;
    }
    const DaoResult<std::string> journal = QueryText("PRAGMA journal_mode");
    if (journal.Failed()) return journal.Error();
    writeAheadLog_ = *journal == "wal";
    // With the rollback journal a power failure can damage the file unless every commit waits.
    return Run(writeAheadLog_ ? "PRAGMA synchronous=NORMAL" : "PRAGMA synchronous=FULL");
}

void Connection::Close() {
    for (const KeptStatement& statement : kept_)
        sqlite3_finalize(statement.second);
    kept_.clear();
    // A statement still on loan keeps SQLite's side alive until it is given back.
    sqlite3_close_v2(database_);
    database_ = nullptr;
    lock_.reset();
}

DaoResult<Statement> Connection::Prepare(const std::string& sql) {
    if (!IsOpen()) return MakeDaoError(dao_error::ObjectInvalid);
    const auto kept = std::find_if(kept_.begin(), kept_.end(),
                                   [&](const KeptStatement& one) { return one.first == sql; });
    if (kept != kept_.end()) {
        Statement statement(*this, std::move(kept->first), kept->second);
        kept_.erase(kept);
        return statement;
    }
    return PrepareAnew(sql, true);
}

DaoResult<Statement> Connection::PrepareAnew(const std::string& sql, bool keep) {
    if (!IsOpen()) return MakeDaoError(dao_error::ObjectInvalid);
    sqlite3_stmt* handle = nullptr;
    const int code = sqlite3_prepare_v3(database_, sql.data(), static_cast<int>(sql.size()),
                                        keep ? SQLITE_PREPARE_PERSISTENT : 0, &handle, nullptr);
    if (code != SQLITE_OK) return ErrorOf(code);
    return Statement(*this, keep ? sql : std::string(), handle);
}

void Connection::GiveBack(std::string sql, sqlite3_stmt* handle) {
    if (!IsOpen() || sql.empty()) {
        sqlite3_finalize(handle);
        return;
    }
    sqlite3_reset(handle);
    sqlite3_clear_bindings(handle);
    kept_.emplace_front(std::move(sql), handle);
    if (kept_.size() <= MaxKeptStatements) return;
    sqlite3_finalize(kept_.back().second);
    kept_.pop_back();
}

DaoError Connection::Run(const std::string& sql) {
    DaoResult<Statement> statement = PrepareAnew(sql, false);
    return statement.Failed() ? statement.Error() : statement->Finish();
}

DaoError Connection::RunKept(const std::string& sql) {
    DaoResult<Statement> statement = Prepare(sql);
    return statement.Failed() ? statement.Error() : statement->Finish();
}

DaoResult<std::int64_t> Connection::QueryWhole(const std::string& sql) {
    DaoResult<Statement> statement = Prepare(sql);
    if (statement.Failed()) return statement.Error();
    const DaoResult<bool> row = statement->Step();
    if (row.Failed()) return row.Error();
    return *row ? statement->Whole(0) : 0;
}

DaoResult<std::string> Connection::QueryText(const std::string& sql) {
    DaoResult<Statement> statement = Prepare(sql);
    if (statement.Failed()) return statement.Error();
    const DaoResult<bool> row = statement->Step();
    if (row.Failed()) return row.Error();
    return *row ? statement->Text(0) : std::string();
}

DaoError Connection::InUnit(const std::function<DaoError()>& work, bool durable) {
    if (DaoError failed = BeginUnit(durable); failed.Failed()) return failed;
    const DaoError outcome = work();
    if (!IsOpen()) return outcome.Failed() ? outcome : MakeDaoError(dao_error::ObjectInvalid);
    const DaoError ended = EndUnit(outcome);
    if (ended.Failed()) schema_.Forget();
    return ended;
}

DaoError Connection::BeginUnit(bool durable) {
    if (!IsOpen()) return MakeDaoError(dao_error::ObjectInvalid);
    if (depth_ > 0) {
        if (DaoError failed = RunKept("SAVEPOINT " + SavepointName(depth_)); failed.Failed())
            return failed;
        // SQLite cannot raise the level now; the commit that ends it all makes up for it.
        durable_ = durable_ || durable;
        ++depth_;
        return {};
    }
    // At once for writing: a reader that turns writer later can meet another's commit and fail.
    if (DaoError failed = RunKept("BEGIN IMMEDIATE"); failed.Failed()) return failed;
    durable_ = durable;
    depth_ = 1;
    return {};
}

DaoError Connection::EndUnit(const DaoError& outcome) {
    --depth_;
    if (depth_ == 0) {
        if (outcome.Ok()) return CommitOutermost();
        // SQLite ends the transaction by itself after some errors (disk full, for one).
        if (sqlite3_get_autocommit(database_) == 0) RunKept("ROLLBACK").Ignore();
        return outcome;
    }
    const std::string name = SavepointName(depth_);
    if (outcome.Ok()) return RunKept("RELEASE " + name);
    if (sqlite3_get_autocommit(database_) == 0) {
        RunKept("ROLLBACK TO " + name).Ignore();
        RunKept("RELEASE " + name).Ignore();
    }
    return outcome;
}

DaoError Connection::CommitOutermost() {
    const DaoError committed = RunKept("COMMIT");
    if (committed.Failed()) {
        if (sqlite3_get_autocommit(database_) == 0) RunKept("ROLLBACK").Ignore();
        return committed;
    }
    // With write-ahead logging the rows are in the log, but not yet surely on the disk.
    if (!durable_ || !writeAheadLog_ || FlushLog()) return {};
    return MakeDaoError(dao_error::DiskError, path_ + "-wal");
}

/// Through SQLite's own handle of the log.
bool Connection::FlushLog() const {
    sqlite3_file* log = nullptr;
    const int found = sqlite3_file_control(database_, "main", SQLITE_FCNTL_JOURNAL_POINTER, &log);
    if (found != SQLITE_OK || log == nullptr || log->pMethods == nullptr) return false;
    return log->pMethods->xSync(log, SQLITE_SYNC_NORMAL | SQLITE_SYNC_DATAONLY) == SQLITE_OK;
}

DaoError Connection::InOneRead(const std::function<DaoError()>& work) {
    if (!IsOpen()) return MakeDaoError(dao_error::ObjectInvalid);
    if (sqlite3_get_autocommit(database_) == 0) return work();
    if (DaoError failed = RunKept("BEGIN"); failed.Failed()) return failed;
    const DaoError outcome = work();
    const DaoError ended = RunKept("COMMIT");
    return outcome.Failed() ? outcome : ended;
}

DaoError Connection::TakeContentOf(Connection& other) {
    sqlite3_backup* copying = sqlite3_backup_init(database_, "main", other.database_, "main");
    if (copying == nullptr) return ErrorOf(sqlite3_errcode(database_));
    sqlite3_backup_step(copying, -1);
    const int code = sqlite3_backup_finish(copying);
    schema_.Forget();
    return code == SQLITE_OK ? DaoError() : ErrorOf(code);
}

std::int64_t Connection::Changes() const {
    return sqlite3_changes64(database_);
}
std::int64_t Connection::TotalChanges() const {
    return sqlite3_total_changes64(database_);
}
std::int64_t Connection::LastInsertedKey() const {
    return sqlite3_last_insert_rowid(database_);
}

std::int64_t Connection::MostRows() {
    // The pages that SQLite counts include those of a transaction that is not in the file yet.
    const std::int64_t pages = std::atoll(QueryText("PRAGMA page_count").ValueOr("").c_str());
    const std::int64_t size = std::atoll(QueryText("PRAGMA page_size").ValueOr("").c_str());
    return pages * size / 2;
}

}  // namespace mailvane
