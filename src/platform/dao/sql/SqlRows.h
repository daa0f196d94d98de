#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "platform/dao/sql/SqlContext.h"

namespace mailvane {

/// "FROM" and "WHERE" of a statement with their meaning; the parts belong to the statement.
struct SqlRowSource {
    const std::vector<SqlTableSource>& from;
    const SqlExpression* where;  ///< null when there is none
    const SqlScope& scope;       ///< of `from`
};

/// A table with its alias.
std::string TableSql(const SqlScope::Table& table);

/// The tables with their joins, as SQLite writes them.
std::string FromSql(SqlContext& context, const SqlRowSource& rows);

/// A condition over the table `target` alone that holds for those of its rows that take part in
/// the result; "" when all do. Joins of two tables on one pair of columns, which are the common
/// ones, become a look-up of values: their cost does not grow with the number of pairs.
std::string RowsTakingPart(SqlContext& context, const SqlRowSource& rows, std::size_t target);

/// The tables of `scope` that an expression names, as a bit for each; all bits when it cannot be
/// told.
std::size_t TablesNamed(SqlContext& context, const SqlExpression& expression,
                        const SqlScope& scope);

}  // namespace mailvane
