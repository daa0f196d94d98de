#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace mailvane {

/// What a repair saved of one table, or put into a table of its own because it could not be told
/// where it belongs.
struct SavedTable {
    std::string name;
    std::int64_t fromTree = 0;        ///< rows that a walk through the table gave
    std::int64_t fromLoosePages = 0;  ///< rows on pages to which no way led any more
    std::int64_t fromIndexes = 0;     ///< rows that only indexes still held

    std::int64_t Rows() const { return fromTree + fromLoosePages + fromIndexes; }
};

/// What a repair or compaction found, and did about it.
struct RepairReport {
    bool damaged = false;  ///< all below is empty otherwise
    std::vector<SavedTable> tables;
    std::vector<std::string> lostObjects;  ///< indexes, views, triggers that could not be made anew
    std::string keptOriginal;              ///< where the damaged file is now

    /// Lines that tell a person what was saved, each with a line break in front; "" when nothing
    /// was damaged.
    std::string Text() const;
};

}  // namespace mailvane
