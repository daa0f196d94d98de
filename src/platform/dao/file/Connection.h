#pragma once

#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "platform/dao/DaoError.h"
#include "platform/dao/file/FileLock.h"
#include "platform/dao/file/Statement.h"
#include "platform/dao/structure/Schema.h"

struct sqlite3;
struct sqlite3_stmt;

namespace mailvane {

enum class OpenMode;

/// One open SQLite file: its prepared statements, its transactions, and SQLite's errors as the
/// engine's numbers.
class Connection {
public:
    /// Opens an existing database file, with the outcomes that Workspace::OpenDatabase tells.
    static DaoResult<std::shared_ptr<Connection>> Open(const std::string& path, OpenMode mode);
    /// Makes a new file, with write-ahead logging.
    static DaoResult<std::shared_ptr<Connection>> Create(const std::string& path);
    /// Opens a file without taking a lock: for who holds all of them (SoleFile).
    static DaoResult<std::shared_ptr<Connection>> OpenUnlocked(const std::string& path);
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    const std::string& Path() const { return path_; }
    /// More rows than this no table of the file can have: each takes two bytes at least.
    std::int64_t MostRows();
    bool IsOpen() const { return database_ != nullptr; }
    void Close();

    /// A statement for repeated use.
    DaoResult<Statement> Prepare(const std::string& sql);
    /// Runs one statement to its end, without keeping it.
    DaoError Run(const std::string& sql);
    /// The first column of the only row of a query.
    DaoResult<std::int64_t> QueryWhole(const std::string& sql);
    DaoResult<std::string> QueryText(const std::string& sql);

    /// Runs `work` as one unit, inside the unit under way if there is one. A failure undoes it.
    DaoError InUnit(const std::function<DaoError()>& work, bool durable = false);

    /// Replaces all that is in the file by what is in the other one, as one unit.
    DaoError TakeContentOf(Connection& other);

    /// Runs many small reads on one state of the file, with the cost of one lock.
    DaoError InOneRead(const std::function<DaoError()>& work);

    std::int64_t Changes() const;       ///< rows that the last statement changed
    std::int64_t TotalChanges() const;  ///< rows changed through this connection so far
    std::int64_t LastInsertedKey() const;
    bool UsesWriteAheadLog() const { return writeAheadLog_; }
    Schema& Tables() { return schema_; }

    /// The error that SQLite's result code stands for, with its message.
    DaoError ErrorOf(int code);

private:
    friend class Statement;
    using KeptStatement = std::pair<std::string, sqlite3_stmt*>;

    enum class Opening { Existing, New, WithoutLocks };

    Connection(std::string path, std::optional<FileLock> lock);
    DaoError OpenFile(Opening opening);
    DaoError ReadHead();
    DaoError ConstraintError(int code, const std::string& message);
    DaoResult<Statement> PrepareAnew(const std::string& sql, bool keep);
    DaoError RunKept(const std::string& sql);
    void GiveBack(std::string sql, sqlite3_stmt* handle);
    DaoError BeginUnit(bool durable);
    DaoError EndUnit(const DaoError& outcome);
    DaoError CommitOutermost();
    bool FlushLog() const;

    std::string path_;
    std::optional<FileLock> lock_;
    sqlite3* database_ = nullptr;
    std::list<KeptStatement> kept_;  ///< the most recently used first
    int depth_ = 0;
    bool durable_ = false;
    bool writeAheadLog_ = false;
    Schema schema_{*this};
};

/// The path by which every opening of the file knows it, symbolic links followed.
std::string CanonicalPath(const std::string& path);

/// Flushes a file, or the entries of a folder, to the disk.
bool FlushToDisk(const std::string& path);

}  // namespace mailvane
