#include "platform/dao/sql/SqlPlan.h"

#include <algorithm>

#include "platform/dao/sql/SqlContext.h"
#include "platform/dao/sql/SqlExpressions.h"
#include "platform/dao/sql/SqlParser.h"
#include "platform/dao/sql/SqlQuery.h"
#include "platform/dao/sql/SqlRows.h"
#include "platform/dao/structure/Schema.h"

namespace mailvane {
namespace {

std::string Quoted(const std::string& text, char quote) {
    std::string quoted(1, quote);
    for (const char character : text)
        quoted.append(character == quote ? 2 : 1, character);
    return quoted + quote;
}

std::string Joined(const std::vector<std::string>& parts) {
    std::string joined;
    for (std::size_t i = 0; i < parts.size(); ++i)
        joined += (i > 0 ? ", " : "") + parts[i];
    return joined;
}

/// The rows that a SELECT INTO makes have columns of the types that they come from; what else
/// belongs to a column (keys, numbering, defaults) stays behind.
Field CopiedField(const SqlOutput& output) {
    Field field;
    field.name = output.name;
    field.type = FieldTypeOf(output.value);
    if (output.value.column != nullptr) field.size = output.value.column->size;
    field.allowZeroLength = field.IsText();
    return field;
}

class Planner {
public:
    Planner(const std::string& sql, const SchemaReader& schema) : context_{schema, sql} {}

    DaoResult<SqlPlan> Run(const SqlStatement& statement) {
        std::visit([this](const auto& parsed) { Plan(parsed); }, statement);
        if (context_.error.Failed()) return context_.error;
        return std::move(plan_);
    }

private:
    void Plan(const SqlSelect& select) {
        SqlQuery query = TranslateSelect(context_, select);
        if (context_.error.Failed()) return;
        if (select.from.size() > 1) {
            QualifySharedNames(query.outputs, select.into.empty() ? "." : "_");
        }
        if (!select.into.empty()) {
            PlanInto(select.into, query);
            return;
        }
        plan_.kind = SqlPlan::Kind::Select;
        plan_.query = query.NamedSql();
        if (query.rowTable) PlanKeys(query);
    }

    /// Rows of one table can be changed when each column shown is one of its own.
    void PlanKeys(const SqlQuery& query) {
        for (const SqlOutput& output : query.outputs) {
            const auto shown = std::find(plan_.columns.begin(), plan_.columns.end(), output.name);
            if (output.table.empty() || shown != plan_.columns.end()) {
                plan_.columns.clear();
                return;
            }
            plan_.columns.push_back(output.name);
        }
        plan_.table = query.scope.tables[*query.rowTable].def.name;
        // Rows alike in what they are sorted by keep the order of their keys.
        plan_.keyQuery = "SELECT {key}" + query.body + " ORDER BY " + query.order +
                         (query.order.empty() ? "1" : ", 1") + query.limit;
    }

    void PlanInto(const std::string& name, const SqlQuery& query) {
        if (context_.schema(name)) context_.Fail(MakeDaoError(dao_error::TableExists, name));
        TableDef made;
        made.name = name;
        std::vector<std::string> columns;
        for (const SqlOutput& output : query.outputs) {
            if (made.FindField(output.name) != nullptr) context_.FailSyntax();
            made.fields.push_back(CopiedField(output));
            columns.push_back(QuoteName(output.name));
        }
        plan_.createdTables.push_back(std::move(made));
        plan_.statements.push_back("INSERT INTO " + QuoteName(name) + " (" + Joined(columns) +
                                   ") " + query.NamedSql());
    }

    void Plan(const SqlInsert& insert) {
        const std::optional<TableDef> target = context_.schema(insert.table);
        if (!target) {
            context_.Fail(MakeDaoError(dao_error::TableNotFound, insert.table));
            return;
        }
        if (insert.query) {
            InsertQuery(insert, *target);
        } else {
            InsertValues(insert, *target);
        }
    }

    void InsertQuery(const SqlInsert& insert, const TableDef& target) {
        SqlQuery query = TranslateSelect(context_, *insert.query);
        if (insert.query->from.size() > 1) QualifySharedNames(query.outputs, ".");
        std::vector<std::string> names = insert.columns;
        if (names.empty()) {
            for (const SqlOutput& output : query.outputs)
                names.push_back(output.name);
        }
        std::vector<SqlValue> values;
        for (const SqlOutput& output : query.outputs)
            values.push_back(output.value);
        std::vector<std::string> stored = StoredValues(target, names, values);
        for (std::size_t i = 0; query.distinct && i < stored.size(); ++i) {
            if (values[i].type == SqlType::Text) stored[i] += " COLLATE NOCASE";
        }
        plan_.statements.push_back(InsertSql(target, names) + query.Sql(stored));
    }

    void InsertValues(const SqlInsert& insert, const TableDef& target) {
        std::vector<std::string> names = insert.columns;
        if (names.empty()) {
            for (const Field& field : target.fields)
                names.push_back(field.name);
        }
        const SqlScope nothing;
        std::vector<SqlValue> values;
        for (const SqlExpressionPtr& value : insert.values) {
            values.push_back(TranslateValue(context_, *value, nothing));
        }
        const std::vector<std::string> stored = StoredValues(target, names, values);
        plan_.statements.push_back(InsertSql(target, names) + "VALUES (" + Joined(stored) + ")");
    }

    static std::string InsertSql(const TableDef& target, const std::vector<std::string>& names) {
        std::vector<std::string> quoted;
        for (const std::string& name : names)
            quoted.push_back(QuoteName(name));
        return "INSERT INTO " + QuoteName(target.name) + " (" + Joined(quoted) + ") ";
    }

    /// The values as the columns of those names hold them.
    std::vector<std::string> StoredValues(const TableDef& target,
                                          const std::vector<std::string>& names,
                                          const std::vector<SqlValue>& values) {
        std::vector<std::string> stored;
        if (names.size() != values.size()) {
            context_.Fail({sql_error::ValueCount,
                           "Number of query values and destination fields are not the same."});
            return stored;
        }
        for (std::size_t i = 0; i < names.size(); ++i) {
            const Field* field = target.FindField(names[i]);
            if (field == nullptr) {
                context_.Fail(MakeDaoError(dao_error::UnknownFieldInInsert, names[i]));
                return stored;
            }
            stored.push_back(ConvertTo(context_, values[i], *field));
        }
        return stored;
    }

    void Plan(const SqlUpdate& update) {
        const std::vector<SqlTableSource> from = TableAlone(update.table);
        const SqlScope scope = OpenScope(context_, from);
        if (context_.error.Failed()) return;
        std::string sql = "UPDATE " + QuoteName(scope.tables[0].def.name) + " SET ";
        for (const auto& [name, expression] : update.assignments) {
            const Field* field = scope.tables[0].def.FindField(name);
            if (field == nullptr) {
                context_.Fail(MakeDaoError(dao_error::TooFewParameters));
                return;
            }
            const SqlValue value = TranslateValue(context_, *expression, scope);
            sql += (&name == &update.assignments.front().first ? "" : ", ") +
                   QuoteName(field->name) + " = " + ConvertTo(context_, value, *field);
        }
        if (update.where) sql += " WHERE " + TranslateTruth(context_, *update.where, scope);
        plan_.statements.push_back(std::move(sql));
    }

    static std::vector<SqlTableSource> TableAlone(const std::string& table) {
        std::vector<SqlTableSource> from(1);
        from[0].table = table;
        return from;
    }

    void Plan(const SqlDelete& statement) {
        const SqlScope scope = OpenScope(context_, statement.from);
        if (context_.error.Failed()) return;
        const std::vector<std::size_t> targets = DeleteTargets(statement, scope);
        const SqlRowSource rows{statement.from, statement.where.get(), scope};
        std::vector<std::string> drops;
        std::vector<std::string> deletes;
        // Which rows go is settled for every table while all rows are still there: the first
        // deletion looks for itself, the keys of the others are set aside before it.
        for (std::size_t i = 0; i < targets.size(); ++i) {
            const SqlScope::Table& table = scope.tables[targets[i]];
            const std::string front = "DELETE FROM " + TableSql(table);
            std::string condition = RowsTakingPart(context_, rows, targets[i]);
            if (!condition.empty()) condition = " WHERE " + condition;
            if (i == 0) {
                deletes.push_back(front + condition);
                continue;
            }
            const std::string key = table.qualifier + RowKeyName(table.def.fields);
            const std::string scratch = "temp." + QuoteName(ScratchName(i));
            plan_.statements.push_back("CREATE TEMP TABLE " + QuoteName(ScratchName(i)) +
                                       " AS SELECT " + key + " AS k FROM " + TableSql(table) +
                                       condition);
            deletes.push_back(front + " WHERE " + key + " IN (SELECT k FROM " + scratch + ")");
            drops.push_back("DROP TABLE " + scratch);
        }
        plan_.countedStatement = plan_.statements.size();
        for (std::vector<std::string>* part : {&deletes, &drops}) {
            std::move(part->begin(), part->end(), std::back_inserter(plan_.statements));
        }
    }

    /// Positions of the tables that lose rows, each once.
    std::vector<std::size_t> DeleteTargets(const SqlDelete& statement, const SqlScope& scope) {
        std::vector<std::size_t> targets;
        if (statement.targets.empty()) {
            if (scope.tables.size() > 1) context_.FailSyntax();
            targets.push_back(0);
        }
        for (const std::string& name : statement.targets) {
            const std::optional<std::size_t> table = scope.Find(name);
            if (!table) {
                context_.Fail(MakeDaoError(dao_error::TableNotFound, name));
                break;
            }
            if (std::find(targets.begin(), targets.end(), *table) == targets.end()) {
                targets.push_back(*table);
            }
        }
        return targets;
    }

    /// A name that no table of the database has, so that the scratch table hides none.
    std::string ScratchName(std::size_t number) const {
        std::string name = "mv_keys_" + std::to_string(number);
        while (context_.schema(name))
            name += '_';
        return name;
    }

    void Plan(const SqlDrop& drop) {
        const std::optional<TableDef> table = context_.schema(drop.table);
        if (table) {
            plan_.droppedTables.push_back(table->name);
        } else {
            context_.Fail(MakeDaoError(dao_error::TableDoesNotExist, drop.table));
        }
    }

    SqlContext context_;
    SqlPlan plan_;
};

}  // namespace

DaoResult<SqlPlan> PlanStatement(const std::string& sql, const SchemaReader& schema) {
    const DaoResult<SqlStatement> statement = ParseSqlStatement(sql);
    if (statement.Failed()) return statement.Error();
    return Planner(sql, schema).Run(*statement);
}

DaoResult<std::string> TranslateCondition(const std::string& condition, const TableDef& table) {
    const DaoResult<SqlExpressionPtr> expression = ParseSqlCondition(condition);
    if (expression.Failed()) return expression.Error();
    // A condition knows its table only: it reaches no other through a subquery.
    const SchemaReader noTables = [](const std::string&) { return std::optional<TableDef>(); };
    SqlContext context{noTables, condition};
    SqlScope scope;
    scope.tables.push_back({table.name, "", table});
    std::string sql = TranslateTruth(context, **expression, scope);
    if (context.error.Failed()) return context.error;
    return sql;
}

std::string QuoteName(const std::string& name) {
    return Quoted(name, '"');
}

std::string QuoteText(const std::string& text) {
    return Quoted(text, '\'');
}

}  // namespace mailvane
