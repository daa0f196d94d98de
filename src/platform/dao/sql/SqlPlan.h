#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/dao/DaoError.h"
#include "platform/dao/structure/TableDef.h"

namespace mailvane {

/// Gives the description of a table by name (case ignored), or nothing when there is none.
using SchemaReader = std::function<std::optional<TableDef>(const std::string& table)>;

/// A statement of the dialect, turned into SQLite's. The engine runs it; nothing here touches a
/// file.
struct SqlPlan {
    enum class Kind { Select, Change };
    Kind kind = Kind::Change;

    // Kind::Change: the statements in order, run as one unit. The rows changed by the statement at
    // `countedStatement` are the result of Execute. Each is prepared only after the one before it
    // has run, since it may read a scratch table that that one made. Tables made on the way (by
    // SELECT INTO) are described in `createdTables`; the engine creates them before the first
    // statement. DROP TABLE has no statements: the engine drops `droppedTables`.
    std::vector<std::string> statements;
    std::size_t countedStatement = 0;
    std::vector<TableDef> createdTables;
    std::vector<std::string> droppedTables;

    // Kind::Select. `query` gives the columns asked for. When the rows are those of one table
    // (no grouping, no joins, no DISTINCT), `table` names it, `keyQuery` gives the keys alone, in
    // order, from that table's row key written as {key}, and `columns` the columns of that table
    // that are shown; such a recordset can be changed. The placeholder stands once, right behind
    // the SELECT that begins `keyQuery`; later braces belong to names and texts.
    std::string query;
    std::string table;
    std::string keyQuery;
    std::vector<std::string> columns;
};

/// 3075 for a text that is no statement of the dialect, 3078 for an unknown table (3376 in DROP
/// TABLE), 3061 for an unknown column, 3127 for a source column that the target of an INSERT lacks,
/// 3010 for a SELECT INTO an existing table.
DaoResult<SqlPlan> PlanStatement(const std::string& sql, const SchemaReader& schema);

/// A condition as FindFirst and Filter take it (no WHERE in front), as SQLite's expression over the
/// columns of `table`.
DaoResult<std::string> TranslateCondition(const std::string& condition, const TableDef& table);

/// A name as SQLite takes it, whatever characters it holds.
std::string QuoteName(const std::string& name);
/// A text literal as SQLite takes it.
std::string QuoteText(const std::string& text);

}  // namespace mailvane
