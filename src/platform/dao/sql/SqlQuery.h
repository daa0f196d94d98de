#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "platform/dao/sql/SqlContext.h"

namespace mailvane {

struct SqlOutput {
    std::string name;
    SqlValue value;
    std::string table;  ///< name of its table when it is a column that keeps its own name
};

/// A SELECT in pieces, from which the several statements that need it are put together.
struct SqlQuery {
    SqlScope scope;
    std::vector<SqlOutput> outputs;
    bool distinct = false;
    std::string body;   ///< FROM to HAVING
    std::string order;  ///< terms of ORDER BY
    std::string limit;
    /// The table whose rows are the rows of the result, each at most once.
    std::optional<std::size_t> rowTable;

    /// The statement with these expressions for columns.
    std::string Sql(const std::vector<std::string>& columns) const;
    /// The statement that gives the outputs under their names.
    std::string NamedSql() const;
};

SqlQuery TranslateSelect(SqlContext& context, const SqlSelect& select,
                         const SqlScope* outer = nullptr);

/// Gives columns that share a name with another one their table's name in front, with `joint`
/// between.
void QualifySharedNames(std::vector<SqlOutput>& outputs, const std::string& joint);

}  // namespace mailvane
