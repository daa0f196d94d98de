#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/dao/file/Database.h"
#include "platform/os/DateTime.h"

namespace mailvane {

/// A merge run that did not come to its end: the program died under it.
struct UnfinishedMerge {
    std::string table;          ///< the recipients
    std::int64_t total = 0;     ///< messages that it was to make
    std::int64_t firstRow = 0;  ///< of the recipients, from 1; 0 when messages stand for no rows
    DateTime started;
    std::int64_t made = 0;  ///< messages that it put into the Outbox
};

/// Marks in the store that a merge run is under way, so that the user can be told how far it came
/// when nobody took the mark away. A system table of the store.
namespace MergeMark {
/// Before the first message. Replaces the mark of an earlier run.
DaoError Set(Database& store, const UnfinishedMerge& run);
DaoError Clear(Database& store);
/// Nothing when the last run came to its end. The messages are counted by the first call that
/// finds the mark: later they leave the Outbox.
DaoResult<std::optional<UnfinishedMerge>> Find(Database& store);
}  // namespace MergeMark

/// What the user is told of it in one line.
std::string InterruptedMergeText(const UnfinishedMerge& run);

}  // namespace mailvane
