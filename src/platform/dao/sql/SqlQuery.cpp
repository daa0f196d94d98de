#include "platform/dao/sql/SqlQuery.h"

#include <algorithm>

#include "platform/dao/sql/SqlExpressions.h"
#include "platform/dao/sql/SqlRows.h"

namespace mailvane {
namespace {

/// Computed columns without a name are called Expr1000, Expr1001 and so on, by their position.
constexpr std::size_t FirstExpressionNumber = 1000;

/// SQLite gives no more.
constexpr std::size_t MaxColumns = 2000;

class SelectTranslator {
public:
    SelectTranslator(SqlContext& context, const SqlSelect& select, const SqlScope* outer)
        : context_(context), select_(select) {
        query_.scope = OpenScope(context, select.from, outer);
    }

    SqlQuery Run() {
        // With a table missing, every reference to it would only raise errors of its own.
        if (context_.error.Failed()) return std::move(query_);
        aggregates_ = Grouped() ? SqlAggregates::Allowed : SqlAggregates::Refused;
        for (const SqlSelectItem& item : select_.items) {
            AddOutputs(item);
            if (query_.outputs.size() > MaxColumns) context_.FailSyntax();
            if (context_.error.Failed()) return std::move(query_);
        }
        query_.distinct = select_.distinct == SqlSelect::Distinct::Values;
        ChooseRows();
        AddGroups();
        AddOrder();
        if (select_.top) query_.limit = " LIMIT " + std::to_string(*select_.top);
        return std::move(query_);
    }

private:
    bool Grouped() const {
        return !select_.groupBy.empty() ||
               std::any_of(select_.items.begin(), select_.items.end(),
                           [](const SqlSelectItem& item) {
                               return item.expression && HasAggregate(*item.expression);
                           });
    }

    void AddOutputs(const SqlSelectItem& item) {
        if (item.star) {
            AddColumns(item.table);
            return;
        }
        SqlValue value = TranslateValue(context_, *item.expression, query_.scope, aggregates_);
        if (!item.alias.empty()) {
            query_.outputs.push_back({item.alias, std::move(value), {}});
        } else if (value.column != nullptr) {
            const auto found = ResolveColumn(context_, *item.expression, query_.scope);
            query_.outputs.push_back(
                {value.column->name, std::move(value), found->scope->tables[found->table].name});
        } else {
            const std::size_t number = FirstExpressionNumber + query_.outputs.size();
            query_.outputs.push_back({"Expr" + std::to_string(number), std::move(value), {}});
        }
    }

    void AddColumns(const std::string& tableName) {
        bool known = false;
        for (const SqlScope::Table& table : query_.scope.tables) {
            if (!tableName.empty() && !SameName(table.name, tableName)) continue;
            known = true;
            for (const Field& field : table.def.fields) {
                query_.outputs.push_back({field.name, ColumnValue(table, field), table.name});
            }
        }
        if (!known) context_.Fail(MakeDaoError(dao_error::TableNotFound, tableName));
    }

    /// The table that DISTINCTROW is about: the only one that the columns come from.
    std::optional<std::size_t> OnlyShownTable() {
        std::size_t shown = 0;
        for (const SqlSelectItem& item : select_.items) {
            if (!item.star) {
                shown |= TablesNamed(context_, *item.expression, query_.scope);
                continue;
            }
            if (item.table.empty()) return std::nullopt;
            if (const auto table = query_.scope.Find(item.table)) shown |= std::size_t{1} << *table;
        }
        for (std::size_t i = 0; i < query_.scope.tables.size(); ++i) {
            if (shown == std::size_t{1} << i) return i;
        }
        return std::nullopt;
    }

    /// With DISTINCTROW, rows of one shown table come out once however many partners they have: the
    /// other tables become a condition on it.
    void ChooseRows() {
        const SqlRowSource rows{select_.from, select_.where.get(), query_.scope};
        const bool plain = !Grouped() && !query_.distinct;
        const bool single = select_.from.size() == 1;
        if (plain && single) query_.rowTable = 0;
        if (plain && !single && select_.distinct == SqlSelect::Distinct::Rows) {
            query_.rowTable = OnlyShownTable();
        }
        std::string where;
        if (query_.rowTable && !single) {
            where = RowsTakingPart(context_, rows, *query_.rowTable);
            query_.body = " FROM " + TableSql(query_.scope.tables[*query_.rowTable]);
        } else {
            query_.body = FromSql(context_, rows);
            if (select_.where) where = TranslateTruth(context_, *select_.where, query_.scope);
        }
        if (!where.empty()) query_.body += " WHERE " + where;
    }

    void AddGroups() {
        std::string groups;
        for (const SqlExpressionPtr& key : select_.groupBy) {
            groups += (groups.empty() ? "" : ", ") +
                      Collated(TranslateValue(context_, *key, query_.scope));
        }
        if (!groups.empty()) query_.body += " GROUP BY " + groups;
        if (select_.having) {
            if (!Grouped()) context_.FailSyntax();
            query_.body +=
                " HAVING " + TranslateTruth(context_, *select_.having, query_.scope, aggregates_);
        }
    }

    void AddOrder() {
        for (const SqlSortTerm& term : select_.orderBy) {
            if (query_.rowTable && select_.from.size() > 1 && !OnRowTable(*term.expression)) {
                context_.FailSyntax();
            }
            query_.order += (query_.order.empty() ? "" : ", ") + SortSql(*term.expression) +
                            (term.descending ? " DESC" : "");
        }
    }

    bool OnRowTable(const SqlExpression& expression) {
        const std::size_t tables = TablesNamed(context_, expression, query_.scope);
        return (tables & ~(std::size_t{1} << *query_.rowTable)) == 0;
    }

    /// A plain number is the position of a shown column.
    std::string SortSql(const SqlExpression& expression) {
        const SqlValue value = TranslateValue(context_, expression, query_.scope, aggregates_);
        if (!value.constant) return Collated(value);
        const auto* position = std::get_if<std::int64_t>(&value.constant->Raw());
        const auto count = static_cast<std::int64_t>(query_.outputs.size());
        if (position == nullptr || *position < 1 || *position > count) {
            context_.FailSyntax();
            return {};
        }
        return Collated(query_.outputs[static_cast<std::size_t>(*position - 1)].value);
    }

    SqlContext& context_;
    const SqlSelect& select_;
    SqlQuery query_;
    SqlAggregates aggregates_ = SqlAggregates::Refused;
};

}  // namespace

std::string SqlQuery::Sql(const std::vector<std::string>& columns) const {
    std::string sql = distinct ? "SELECT DISTINCT " : "SELECT ";
    for (std::size_t i = 0; i < columns.size(); ++i)
        sql += (i > 0 ? ", " : "") + columns[i];
    sql += body;
    if (!order.empty()) sql += " ORDER BY " + order;
    return sql + limit;
}

std::string SqlQuery::NamedSql() const {
    std::vector<std::string> columns;
    for (const SqlOutput& output : outputs) {
        const std::string sql = distinct ? Collated(output.value) : output.value.sql;
        columns.push_back(sql + " AS " + QuoteName(output.name));
    }
    return Sql(columns);
}

SqlQuery TranslateSelect(SqlContext& context, const SqlSelect& select, const SqlScope* outer) {
    return SelectTranslator(context, select, outer).Run();
}

void QualifySharedNames(std::vector<SqlOutput>& outputs, const std::string& joint) {
    std::vector<std::string> names;
    for (const SqlOutput& output : outputs)
        names.push_back(output.name);
    for (SqlOutput& output : outputs) {
        const auto uses = std::count_if(names.begin(), names.end(), [&](const std::string& name) {
            return SameName(name, output.name);
        });
        if (uses > 1 && !output.table.empty()) output.name = output.table + joint + output.name;
    }
}

}  // namespace mailvane
