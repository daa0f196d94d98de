#pragma once

#include <functional>
#include <string>

#include "platform/dao/Database.h"

namespace mailvane {

struct TextImportOptions {
    std::string file;
    std::string table;
    bool header = true;  ///< the first record names the columns
};

struct TextImportResult {
    std::int64_t rows = 0;
    std::string error;  ///< "" when all went well; then and only then the table is there
};

/// Imports comma-separated text into a new table, all of it or nothing. An empty field is Null
/// unless it stands in quotes. `goOn` is told the bytes read so far now and then; false cancels.
TextImportResult ImportText(Database& database, const TextImportOptions& options,
                            const std::function<bool(std::int64_t bytes)>& goOn);

}  // namespace mailvane
