#pragma once

#include <string>
#include <vector>

#include "platform/dao/salvage/PageFile.h"

namespace mailvane {

/// What a file says of one table, index, view or trigger.
struct Definition {
    std::string type;
    std::string name;
    std::string table;  ///< that an index or a trigger belongs to
    PageNumber root = 0;
    std::string sql;  ///< "" for an index that comes with its table

    bool IsTable() const { return type == "table"; }
    bool IsIndex() const { return type == "index"; }
    bool IsVirtual() const { return IsTable() && sql.starts_with("CREATE VIRTUAL "); }
    /// SQLite's own, which it makes when it needs them.
    bool IsInternal() const { return name.starts_with("sqlite_"); }
};

struct Definitions {
    std::vector<Definition> all;  ///< in the order in which they were made
    bool damaged = false;         ///< some may be lost
};

/// Reads what the file defines. Where its list is damaged, the rest of it is looked for in the
/// pages to which no way leads any more.
Definitions ReadDefinitions(const PageFile& file);

}  // namespace mailvane
