#pragma once

#include <memory>
#include <string>

#include "platform/tables/text/DelimitedReader.h"

namespace mailvane {

enum class TableFileKind { Delimited, Spreadsheet, Access, Sqlite };

/// By what the file holds; whatever is not known is delimited text.
TableFileKind KindOfTableFile(const std::string& path);

/// The tables of a file of any kind, only to be read; `format` is for delimited text. Null, with
/// the reason in `error`, when it cannot be read.
std::unique_ptr<TableSource> OpenTableFile(const std::string& path, const DelimitedFormat& format,
                                           std::string& error);

}  // namespace mailvane
