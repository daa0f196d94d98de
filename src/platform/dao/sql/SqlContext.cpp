#include "platform/dao/sql/SqlContext.h"

namespace mailvane {
namespace {

/// SQLite joins no more than 64.
constexpr std::size_t MaxTables = 32;

SqlType TypeOfField(FieldType type) {
    switch (type) {
        case FieldType::Boolean:
            return SqlType::Truth;
        case FieldType::Byte:
        case FieldType::Integer:
        case FieldType::Long:
        case FieldType::Currency:
        case FieldType::Single:
        case FieldType::Double:
            return SqlType::Number;
        case FieldType::Date:
            return SqlType::Date;
        case FieldType::Text:
        case FieldType::Memo:
        case FieldType::LongBinary:
            return SqlType::Text;
    }
    return SqlType::Text;
}

}  // namespace

std::optional<std::size_t> SqlScope::Find(const std::string& name) const {
    for (std::size_t i = 0; i < tables.size(); ++i) {
        if (SameName(tables[i].name, name)) return i;
    }
    return std::nullopt;
}

SqlScope OpenScope(SqlContext& context, const std::vector<SqlTableSource>& sources,
                   const SqlScope* outer) {
    SqlScope scope;
    scope.outer = outer;
    if (sources.size() > MaxTables) context.FailSyntax();
    if (context.error.Failed()) return scope;
    for (const SqlTableSource& source : sources) {
        std::optional<TableDef> def = context.schema(source.table);
        if (!def) {
            context.Fail(MakeDaoError(dao_error::TableNotFound, source.table));
            continue;
        }
        const std::string& name = source.alias.empty() ? def->name : source.alias;
        if (scope.Find(name)) context.FailSyntax();
        scope.tables.push_back({name, QuoteName(name) + ".", std::move(*def)});
    }
    return scope;
}

std::optional<SqlColumnReference> ResolveColumn(SqlContext& context, const SqlExpression& column,
                                                const SqlScope& scope) {
    for (const SqlScope* place = &scope; place != nullptr; place = place->outer) {
        std::optional<SqlColumnReference> found;
        for (std::size_t i = 0; i < place->tables.size(); ++i) {
            const SqlScope::Table& table = place->tables[i];
            if (!column.table.empty() && !SameName(table.name, column.table)) continue;
            const Field* field = table.def.FindField(column.text);
            if (field == nullptr) continue;
            if (found) {
                context.Fail({sql_error::AmbiguousColumn,
                              "The specified field '" + column.text +
                                  "' could refer to more than one table listed in the FROM clause "
                                  "of your SQL statement."});
            }
            found = SqlColumnReference{place, i, field};
        }
        if (found) return found;
    }
    return std::nullopt;
}

SqlValue ColumnValue(const SqlScope::Table& table, const Field& field) {
    return {table.qualifier + QuoteName(field.name), TypeOfField(field.type), &field, std::nullopt};
}

}  // namespace mailvane
