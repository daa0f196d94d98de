#pragma once

#include <string>
#include <vector>

#include "platform/dao/DaoError.h"
#include "platform/dao/salvage/Record.h"

namespace mailvane {

class Connection;

struct StoredColumn {
    std::string name;
    std::string declaredType;
    bool required = false;
    bool computed = false;  ///< stored, but never written by anyone
    bool text = false;      ///< numbers turn into texts in it
};

/// An index, by the places that its columns have in the records of the table.
struct IndexShape {
    static constexpr int Key = -1;      ///< in place of a place: the row's key
    static constexpr int Unknown = -2;  ///< an expression

    std::string name;
    std::vector<int> places;
};

/// How the rows of a table are stored.
struct TableShape {
    std::string name;
    std::vector<StoredColumn> columns;  ///< in the order of the values in a record
    int keyColumn = -1;                 ///< the column that shows the row's key; -1 for none
    bool keyed = true;                  ///< false: the table is kept as an index
    std::string keySql;                 ///< names the row's key; "" when no name is left for it
    std::vector<IndexShape> indexes;    ///< of a keyed table

    /// Whether a record could be a row of the table.
    bool CanHold(const Record& record) const;
};

DaoResult<TableShape> ReadShape(Connection& connection, const std::string& table);

}  // namespace mailvane
