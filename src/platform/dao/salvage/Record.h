#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/dao/DaoValue.h"
#include "platform/dao/salvage/TreePage.h"

namespace mailvane {

/// A value as it stands in a record; texts come as UTF-8.
struct StoredValue {
    DaoValue value;
    bool bytes = false;  ///< a text that is none, but bytes

    friend bool operator==(const StoredValue&, const StoredValue&) = default;
};

/// The values of a record, in the order in which they are stored.
struct Record {
    std::vector<StoredValue> values;
    bool whole = true;  ///< false: the rest of it is lost, and Null stands for what was there
};

/// Nothing when it is no record.
std::optional<Record> ReadRecord(const PageFile& file, const TreePage& page, const Cell& cell);

/// Whether nothing in the page is damaged, as far as it shows, and there are records in it.
bool HoldsWholeRecords(const PageFile& file, const TreePage& page);

const std::string* TextIn(const StoredValue& value);  ///< null when it is no text
std::optional<std::int64_t> WholeIn(const StoredValue& value);

}  // namespace mailvane
