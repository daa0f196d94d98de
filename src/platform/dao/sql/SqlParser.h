#pragma once

#include <string>

#include "platform/dao/DaoError.h"
#include "platform/dao/sql/SqlSyntax.h"

namespace mailvane {

/// Reads one statement, with or without a semicolon at its end. 3075 for anything else, and for a
/// text nested deeper than SQLite could follow.
DaoResult<SqlStatement> ParseSqlStatement(const std::string& sql);

/// Reads a condition as it would stand behind WHERE; 3075 likewise.
DaoResult<SqlExpressionPtr> ParseSqlCondition(const std::string& condition);

}  // namespace mailvane
