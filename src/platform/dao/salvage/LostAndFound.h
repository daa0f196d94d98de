#pragma once

#include <map>
#include <string>
#include <vector>

#include "platform/dao/salvage/TableShape.h"

namespace mailvane {

/// Tables for what cannot be put where it belongs: nothing is dropped in silence.
class LostAndFound {
public:
    explicit LostAndFound(Connection& connection) : connection_(connection) {}

    /// A row for a table with the columns of `shape`, of the name "lost_and_found" and `suffix`.
    DaoError PutRow(const TableShape& shape, const std::string& suffix, std::int64_t key,
                    const std::vector<StoredValue>& values);
    /// A record of which nothing is known, for a table with numbered columns.
    DaoError PutRecord(PageNumber page, std::int64_t key, const std::vector<StoredValue>& values);

    /// How many rows each of these tables got.
    const std::map<std::string, std::int64_t>& Rows() const { return rows_; }

private:
    DaoResult<std::string> FreeName(const std::string& wanted);
    DaoError Insert(const std::string& table, const std::vector<StoredValue>& values);

    Connection& connection_;
    std::map<std::string, std::string> tables_;  ///< names by what they are for
    std::map<std::string, std::int64_t> rows_;
    std::size_t recordColumns_ = 0;  ///< of the table for records
};

}  // namespace mailvane
