#pragma once

#include <functional>
#include <string>
#include <vector>

#include "core/Workbench.h"
#include "database/exchange/TableExport.h"
#include "database/exchange/TableImport.h"

namespace mailvane {

/// Brings tables of a source into a database with the progress display on, and tells the outcome in
/// a box. All of them or, after a failure or Cancel, none; false then.
bool RunImports(Workbench& wb, Database& database, TableSource& source,
                const std::vector<TableImportOptions>& imports);

/// The same for an export to a file.
bool RunExport(Workbench& wb, Database& database, const TableExportOptions& options);

/// Imports for these tables of a source, each into a new table of a database that has the existing
/// ones. The names are the source's as far as a database can have them.
std::vector<TableImportOptions> ImportsIntoNewTables(const TableSource& source,
                                                     const std::vector<std::size_t>& tables,
                                                     std::vector<std::string> existing);
/// The name, or the name with the first number that makes it a new one.
std::string NewTableName(const std::string& wanted, const std::vector<std::string>& existing);

/// Makes a database file and fills it; whole or not at all: it has its name only when `fill` has
/// succeeded. False when `fill` says so, or after telling why there is no file.
bool MakeDatabaseFile(Workbench& wb, const std::string& path,
                      const std::function<bool(Database&)>& fill);

/// Offers to import an Access file into a new database beside it, and does so. True with the path
/// in `importedFile`; false when the user declines or the file cannot be read, which was told. The
/// Access file is never written.
bool OfferAccessImport(Workbench& wb, const std::string& accessFile, std::string& importedFile);

}  // namespace mailvane
