#pragma once

#include <string>

#include "platform/dao/DaoError.h"
#include "platform/dao/structure/TableDef.h"

namespace mailvane {

class Connection;
struct TableInfo;

/// 3125 unless the engine takes the name for a table, column or index: 1 to 64 bytes, no leading
/// blank, none of . ! ` [ ] and no control character.
DaoError CheckName(const std::string& name);
/// 3264 without fields, 3191 for a name twice, 3265 for an index over a column that is not there.
DaoError CheckTable(const TableDef& table);

/// Makes an empty table, without its indexes except the one that lies in an auto-number column.
DaoError CreateEmptyTable(Connection& connection, const TableDef& table);
/// Makes one of a table's indexes, unless it lies in an auto-number column. 3022 when rows stand in
/// the way.
DaoError CreateIndexOf(Connection& connection, const TableDef& table, const Index& index);
/// Whether the index is the key of an auto-number column, which the table itself holds.
bool LiesInAutoNumber(const TableDef& table, const Index& index);

/// Gives a table another definition where SQLite cannot change it in place: a new table takes the
/// rows of the old one in row order, with the columns that both have, and then its name and
/// triggers. The indexes are those of the changed definition.
DaoError RebuildTable(Connection& connection, const TableInfo& old, const TableDef& changed);

}  // namespace mailvane
