#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "platform/dao/file/Database.h"
#include "platform/tables/TableSource.h"

namespace mailvane {

struct TableImportOptions {
    std::size_t source = 0;  ///< which of the source's tables
    bool header = true;      ///< its first row names the columns, where the source does not
    std::string table;       ///< the table that takes the rows
    bool newTable = true;    ///< it is made; otherwise rows are added to it
    /// The column that each of the source's goes to, "" for one that is left out. Empty: all of
    /// them, by their names.
    std::vector<std::string> columns;
    /// Rows that do not fit are kept in a new file in this folder; "" for the database's.
    std::string folder;
};

struct TableImportResult {
    std::int64_t rows = 0;
    std::int64_t rejected = 0;
    std::string rejectedFile;  ///< where they are, with line and reason; "" when there are none
    std::string error;         ///< "" when all went well; otherwise the database is as it was
};

/// Told how far an import or export has come; false cancels it.
using TableProgress = std::function<bool(std::int64_t done, std::int64_t total)>;

/// Brings one table of a source into the database, as one unit. A new table gets the column types
/// that all the values allow. Too long a row, a value that does not fit its column, a key that is
/// there already: the row is put aside and the import goes on.
TableImportResult ImportTable(Database& database, TableSource& source,
                              const TableImportOptions& options, const TableProgress& goOn);

/// Names for new columns, made from the source's: names that the engine takes, no two alike.
std::vector<std::string> NewColumnNames(const std::vector<SourceColumn>& columns);
/// The column of an existing table that each of the source's columns goes to, by name; "" where
/// there is none. Without names in the source the columns match in their order.
std::vector<std::string> MatchColumns(const std::vector<SourceColumn>& columns,
                                      const TableDef& table);

}  // namespace mailvane
