#include "platform/dao/sql/SqlRows.h"

#include <limits>
#include <optional>

#include "platform/dao/sql/SqlExpressions.h"
#include "platform/dao/structure/Schema.h"

namespace mailvane {
namespace {

using Kind = SqlExpression::Kind;
using Join = SqlTableSource::Join;

constexpr std::size_t AllTables = std::numeric_limits<std::size_t>::max();

bool IsBinary(const SqlExpression& expression, SqlOperator op) {
    return expression.kind == Kind::Binary && expression.op == op;
}

/// The parts of a condition that must all hold.
void SplitAnd(const SqlExpression* condition, std::vector<const SqlExpression*>& parts) {
    if (condition == nullptr) return;
    if (!IsBinary(*condition, SqlOperator::And)) {
        parts.push_back(condition);
        return;
    }
    SplitAnd(condition->operands[0].get(), parts);
    SplitAnd(condition->operands[1].get(), parts);
}

/// The two sides of an equality that connects two tables: the first belongs to the target.
struct Link {
    const SqlExpression* target;
    const SqlExpression* other;
};

class RowCondition {
public:
    RowCondition(SqlContext& context, const SqlRowSource& rows, std::size_t target)
        : context_(context), rows_(rows), target_(target), other_(1 - target) {}

    /// The rows with a partner, when one equality connects the tables and every other part of the
    /// condition is about one of them.
    std::optional<std::string> ByPartner() {
        if (rows_.from[1].join == Join::Left) return std::nullopt;
        std::vector<const SqlExpression*> parts;
        SplitAnd(rows_.from[1].on.get(), parts);
        SplitAnd(rows_.where, parts);
        std::optional<Link> link;
        std::string own, partner;
        for (const SqlExpression* part : parts) {
            const std::size_t tables = TablesNamed(context_, *part, rows_.scope);
            if ((tables & Bit(other_)) == 0) {
                own += " AND " + TranslateTruth(context_, *part, rows_.scope);
            } else if (tables == Bit(other_)) {
                partner += " AND " + TranslateTruth(context_, *part, rows_.scope);
            } else if (std::optional<Link> found = LinkOf(*part); found && !link) {
                link = found;
            } else {
                return std::nullopt;
            }
        }
        if (!link) return std::nullopt;
        return Sides(*link).target + " IN (" + OtherValues(*link) + partner + ")" + own;
    }

    /// The rows without a partner: a left join on one equality, of which the condition keeps what
    /// has nothing on the right.
    std::optional<std::string> ByMissingPartner() {
        if (rows_.from[1].join != Join::Left || target_ != 0 || rows_.where == nullptr) {
            return std::nullopt;
        }
        const SqlExpression& where = *rows_.where;
        const std::optional<Link> link = LinkOf(*rows_.from[1].on);
        if (!link || link->other->kind != Kind::Column) return std::nullopt;
        if (where.kind != Kind::IsNull || where.negated) return std::nullopt;
        const SqlExpression& tested = *where.operands[0];
        if (tested.kind != Kind::Column || !SameColumn(tested, *link->other)) return std::nullopt;
        const std::string target = Sides(*link).target;
        return target + " IS NULL OR " + target + " NOT IN (" + OtherValues(*link) + ")";
    }

private:
    struct AlignedSides {
        std::string target;
        std::string other;
    };

    static std::size_t Bit(std::size_t table) { return std::size_t{1} << table; }

    std::optional<Link> LinkOf(const SqlExpression& part) {
        if (!IsBinary(part, SqlOperator::Equal)) return std::nullopt;
        const SqlExpression& left = *part.operands[0];
        const SqlExpression& right = *part.operands[1];
        const std::size_t leftTables = TablesNamed(context_, left, rows_.scope);
        const std::size_t rightTables = TablesNamed(context_, right, rows_.scope);
        if (leftTables == Bit(target_) && rightTables == Bit(other_)) return Link{&left, &right};
        if (leftTables == Bit(other_) && rightTables == Bit(target_)) return Link{&right, &left};
        return std::nullopt;
    }

    bool SameColumn(const SqlExpression& left, const SqlExpression& right) {
        const auto first = ResolveColumn(context_, left, rows_.scope);
        const auto second = ResolveColumn(context_, right, rows_.scope);
        return first && second && first->field == second->field;
    }

    AlignedSides Sides(const Link& link) {
        const std::vector<std::string> sides =
            AlignValues(context_, {TranslateValue(context_, *link.target, rows_.scope),
                                   TranslateValue(context_, *link.other, rows_.scope)});
        return {sides[0], sides[1]};
    }

    /// The values of the other table; open for further conditions. Null is no value: it has no
    /// partner, and must not make NOT IN uncertain.
    std::string OtherValues(const Link& link) {
        const std::string value = Sides(link).other;
        return "SELECT " + value + " FROM " + TableSql(rows_.scope.tables[other_]) + " WHERE " +
               value + " IS NOT NULL";
    }

    SqlContext& context_;
    const SqlRowSource& rows_;
    std::size_t target_;
    std::size_t other_;
};

std::string ByRowKey(SqlContext& context, const SqlRowSource& rows, std::size_t target) {
    const SqlScope::Table& table = rows.scope.tables[target];
    const std::string name = RowKeyName(table.def.fields);
    if (name.empty()) context.Fail(MakeDaoError(dao_error::ReadOnly));
    const std::string key = table.qualifier + name;
    std::string sql = key + " IN (SELECT " + key + FromSql(context, rows);
    if (rows.where != nullptr) sql += " WHERE " + TranslateTruth(context, *rows.where, rows.scope);
    return sql + ")";
}

}  // namespace

std::string TableSql(const SqlScope::Table& table) {
    std::string sql = QuoteName(table.def.name);
    if (table.name != table.def.name) sql += " AS " + QuoteName(table.name);
    return sql;
}

std::string FromSql(SqlContext& context, const SqlRowSource& rows) {
    std::string sql = " FROM ";
    for (std::size_t i = 0; i < rows.scope.tables.size(); ++i) {
        const SqlTableSource& source = rows.from[i];
        if (source.join == Join::Cross) sql += ", ";
        if (source.join == Join::Inner) sql += " JOIN ";
        if (source.join == Join::Left) sql += " LEFT JOIN ";
        sql += TableSql(rows.scope.tables[i]);
        if (source.on) sql += " ON " + TranslateTruth(context, *source.on, rows.scope);
    }
    return sql;
}

std::string RowsTakingPart(SqlContext& context, const SqlRowSource& rows, std::size_t target) {
    if (context.error.Failed()) return {};
    if (rows.from.size() == 1) {
        return rows.where == nullptr ? "" : TranslateTruth(context, *rows.where, rows.scope);
    }
    if (rows.from.size() == 2) {
        RowCondition condition(context, rows, target);
        if (auto found = condition.ByPartner()) return *found;
        if (auto found = condition.ByMissingPartner()) return *found;
    }
    return ByRowKey(context, rows, target);
}

std::size_t TablesNamed(SqlContext& context, const SqlExpression& expression,
                        const SqlScope& scope) {
    if (expression.kind == Kind::InQuery) return AllTables;
    if (expression.kind == Kind::Column) {
        const auto found = ResolveColumn(context, expression, scope);
        if (!found) return 0;
        return found->scope == &scope ? std::size_t{1} << found->table : AllTables;
    }
    std::size_t tables = 0;
    for (const SqlExpressionPtr& operand : expression.operands) {
        tables |= TablesNamed(context, *operand, scope);
    }
    return tables;
}

}  // namespace mailvane
