#pragma once

#include <memory>
#include <string>

#include "platform/dao/records/TableRows.h"
#include "platform/tables/TableSource.h"

namespace mailvane {

/// The user tables of an SQLite file, one of ours or any other. Null, with the reason in `error`,
/// when it cannot be opened.
std::unique_ptr<TableSource> OpenSqliteFile(const std::string& path, std::string& error);

/// The row that a scan stands on, as cells. Bytes are left as they are.
void CellsOf(const TableScan& scan, std::vector<Cell>& row);

}  // namespace mailvane
