#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/dao/file/Database.h"

namespace mailvane {

/// The session through which databases are opened. Closing it closes them.
class Workspace {
public:
    static std::shared_ptr<Workspace> Create(const std::string& user = "admin");

    /// Opens a file of this engine or any ordinary SQLite file. 3024 when missing, 3343 when it is
    /// no database, 3049 when damaged, 3356 when another opening stands in the way: an exclusive
    /// one anywhere, or any one when `mode` is exclusive. An Access file gets 3343 with a text that
    /// says what it is; it is never written.
    DaoResult<std::shared_ptr<Database>> OpenDatabase(const std::string& path,
                                                      OpenMode mode = OpenMode::Shared);
    /// 3204 "Database already exists." when the file is there.
    DaoResult<std::shared_ptr<Database>> CreateDatabase(const std::string& path);
    void Close();

private:
    Workspace() = default;
    std::shared_ptr<Database> Register(std::shared_ptr<Connection> connection);

    std::vector<std::weak_ptr<Database>> databases_;
};

/// Operations on closed files.
namespace DBEngine {
/// Checks the file and rebuilds its indexes. On damage every readable row is copied into a fresh
/// file that takes its place. 3356 while anyone has it open.
DaoError RepairDatabase(const std::string& path);
/// Writes a fresh, dense copy of `source` to `target` (whole or not at all).
DaoError CompactDatabase(const std::string& source, const std::string& target);
/// Writes a dense copy to `backup`, over what is there, and puts another such copy in the place of
/// the file. Each file is the old one or the new one at any moment, whole. 3356 while anyone has it
/// open.
DaoError CompactInPlace(const std::string& path, const std::string& backup);
/// Removes the unfinished files of a repair or compaction of `path` that was killed; does nothing
/// while one is under way.
void RemoveLeftovers(const std::string& path, const std::string& backup);
}  // namespace DBEngine

}  // namespace mailvane
