#pragma once

#include <string>

#include "platform/dao/DaoError.h"

namespace mailvane {

/// Says to every other opening of a database, in this process and in others, that it is open.
/// Held on a file of its own beside the database ("<name>.lock"), because SQLite's own locks on
/// the database file are lost when any other handle of that file is closed. The last holder
/// removes the file.
class FileLock {
public:
    /// 3356 when another holder stands in the way. Where a file cannot be made beside the database
    /// (a read-only folder), a shared lock is granted without one.
    static DaoResult<FileLock> Take(const std::string& databasePath, bool exclusive);

    ~FileLock();
    FileLock(FileLock&& other) noexcept;
    FileLock& operator=(FileLock&&) = delete;

private:
    FileLock(std::string path, int handle);
    std::string path_;
    int handle_;  ///< -1 for a lock without a file
};

}  // namespace mailvane
