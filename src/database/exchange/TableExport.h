#pragma once

#include <optional>

#include "database/exchange/TableImport.h"
#include "platform/tables/text/DelimitedReader.h"

namespace mailvane {

struct TableExportOptions {
    std::string table;
    /// The rows to take, in this order; without a list all of them.
    std::optional<std::vector<Bookmark>> rows;
    std::string file;        ///< a name that ends in .xlsx makes a workbook, any other a text
    DelimitedFormat format;  ///< of a text
    bool header = true;      ///< the column names come first
};

struct TableExportResult {
    std::int64_t rows = 0;
    int sheets = 0;     ///< of a workbook: a table that one sheet cannot hold goes on in a further
    std::string error;  ///< "" when all went well; then and only then the file has changed
};

bool IsSpreadsheetName(const std::string& file);

/// Writes a table, or some of its rows, to a file. In a text a Null is nothing, an empty text two
/// quotes, a date "yyyy-mm-dd" with its time if it has one, bytes are hexadecimal digits; so what
/// is imported again is equal.
TableExportResult ExportTable(Database& database, const TableExportOptions& options,
                              const TableProgress& goOn);

}  // namespace mailvane
