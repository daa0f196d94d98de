#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/dao/DaoError.h"
#include "platform/dao/DaoValue.h"
#include "platform/dao/sql/SqlPlan.h"
#include "platform/dao/sql/SqlSyntax.h"
#include "platform/dao/structure/TableDef.h"

namespace mailvane {

/// Numbers that only the dialect itself raises.
namespace sql_error {
inline constexpr int AmbiguousColumn = 3079;
inline constexpr int ValueCount = 3346;
inline constexpr int TypeMismatch = 3464;
}  // namespace sql_error

/// What all steps of one translation share. The first error stays; what is translated after it is
/// thrown away, so no step needs to stop for it.
struct SqlContext {
    const SchemaReader& schema;
    const std::string& text;  ///< of the whole statement, for messages
    DaoError error = {};

    void Fail(DaoError found) {
        if (error.Ok()) error = std::move(found);
    }
    void FailSyntax() { Fail(MakeDaoError(dao_error::QuerySyntax, text)); }
    void FailMismatch() {
        Fail({sql_error::TypeMismatch, "Data type mismatch in criteria expression."});
    }
};

/// The tables that names can mean at one place; those of the statement around it come after.
struct SqlScope {
    struct Table {
        std::string name;       ///< its alias, or its own name
        std::string qualifier;  ///< quoted, with the point, as it goes before a column; may be ""
        TableDef def;
    };
    std::vector<Table> tables;
    const SqlScope* outer = nullptr;

    /// Position of the table of that name; empty when there is none here.
    std::optional<std::size_t> Find(const std::string& name) const;
};

enum class SqlType { Null, Text, Number, Date, Truth };

/// An expression of SQLite's that gives values of one type.
struct SqlValue {
    std::string sql;
    SqlType type = SqlType::Null;
    const Field* column = nullptr;  ///< when it is just that column, as stored; owned by the scope
    std::optional<DaoValue> constant;  ///< when it is a literal
};

struct SqlColumnReference {
    const SqlScope* scope = nullptr;
    std::size_t table = 0;
    const Field* field = nullptr;
};

/// Reads the tables that stand in a FROM; 3078 for one that there is not.
SqlScope OpenScope(SqlContext& context, const std::vector<SqlTableSource>& sources,
                   const SqlScope* outer = nullptr);

/// The column that a reference means, from the inside out; empty when there is none. 3079 when
/// several tables of one scope have it.
std::optional<SqlColumnReference> ResolveColumn(SqlContext& context, const SqlExpression& column,
                                                const SqlScope& scope);

/// A column as a value.
SqlValue ColumnValue(const SqlScope::Table& table, const Field& field);

}  // namespace mailvane
