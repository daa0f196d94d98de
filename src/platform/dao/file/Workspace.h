#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/dao/file/Database.h"
#include "platform/dao/salvage/RepairReport.h"

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

/// Operations on closed files. A link is followed, and stays. While one is at work nobody else can
/// read or write the file: what another program commits is never lost. 3356 while anyone has it
/// open, 3027 when it is marked read-only; nothing is touched then.
namespace DBEngine {
/// Checks the file and rebuilds its indexes. On damage every row that its pages still give is
/// copied into a fresh file that takes its place, and the damaged one is kept as "NAME.damaged",
/// with a number when there is one already.
DaoResult<RepairReport> RepairDatabase(const std::string& path);
/// Makes the file dense, in one unit, and then puts a copy of it at `backup`, over what is there:
/// each is the old one or the new one at any moment, whole. A damaged file is repaired instead, and
/// what is at `backup` stays.
DaoResult<RepairReport> CompactInPlace(const std::string& path, const std::string& backup);
/// Removes the unfinished files of a repair or compaction of `path` that was killed; does nothing
/// while one is under way.
void RemoveLeftovers(const std::string& path, const std::string& backup);
}  // namespace DBEngine

}  // namespace mailvane
