#pragma once

#include "platform/tables/TableSource.h"

namespace mailvane {

/// Whether the file begins as the packages do in which workbooks (.xlsx, .ods) come.
bool IsSpreadsheetFile(const std::string& path);

/// The sheets of a workbook, .xlsx or .ods; rows without a value are passed over. The whole book is
/// read at once, into a temporary file. Null, with the reason in `error`, when it cannot be read.
std::unique_ptr<TableSource> OpenSpreadsheet(const std::string& path, std::string& error);

}  // namespace mailvane
