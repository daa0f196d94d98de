#include "platform/dao/sql/SqlExpressions.h"

#include <algorithm>
#include <charconv>

#include "platform/dao/sql/SqlQuery.h"
#include "platform/dao/structure/FieldTypes.h"

namespace mailvane {
namespace {

using Kind = SqlExpression::Kind;

DaoValue NumberConstant(const std::string& digits) {
    const char* end = digits.data() + digits.size();
    std::int64_t whole = 0;
    if (const auto read = std::from_chars(digits.data(), end, whole);
        read.ec == std::errc() && read.ptr == end) {
        return whole;
    }
    double fraction = 0;
    std::from_chars(digits.data(), end, fraction);
    return fraction;
}

DaoValue Negated(const DaoValue& number) {
    if (const auto* whole = std::get_if<std::int64_t>(&number.Raw())) return -*whole;
    if (const auto* fraction = std::get_if<double>(&number.Raw())) return -*fraction;
    return {};
}

std::string Converted(const std::string& sql, FieldType from, FieldType to, int size = 0) {
    return "mv_convert(" + sql + ", " + std::to_string(static_cast<int>(from)) + ", " +
           std::to_string(static_cast<int>(to)) + ", " + std::to_string(size) + ")";
}

/// Whether each text of one column, or of an expression, has room in the other.
bool FitsIn(const Field* source, const Field& target) {
    const std::size_t room = TextLimit(target);
    if (room == 0) return true;
    return source != nullptr && TextLimit(*source) > 0 && TextLimit(*source) <= room;
}

/// A truth column of another program may hold -1 as well as 1.
std::string TruthSql(const SqlValue& value) {
    return value.column != nullptr ? "(" + value.sql + " <> 0)" : value.sql;
}

std::string NumberSql(const SqlValue& value) {
    if (value.type == SqlType::Truth) return "(-" + TruthSql(value) + ")";
    if (value.type == SqlType::Date) {
        return Converted(value.sql, FieldType::Date, FieldType::Double);
    }
    return value.sql;
}

std::string TextSql(const SqlValue& value) {
    if (value.type == SqlType::Text || value.type == SqlType::Null) return value.sql;
    return Converted(value.sql, FieldTypeOf(value), FieldType::Memo);
}

std::string In(SqlType type, const SqlValue& value) {
    switch (type) {
        case SqlType::Truth:
            return value.type == SqlType::Truth ? TruthSql(value) : value.sql;
        case SqlType::Number:
            return NumberSql(value);
        case SqlType::Text:
            return TextSql(value);
        case SqlType::Date:
        case SqlType::Null:
            break;
    }
    return value.sql;
}

class Translator {
public:
    Translator(SqlContext& context, const SqlScope& scope, SqlAggregates aggregates)
        : context_(context), scope_(scope), aggregates_(aggregates) {}

    SqlValue Value(const SqlExpression& expression) {
        switch (expression.kind) {
            case Kind::Null:
                return {"NULL", SqlType::Null, nullptr, std::nullopt};
            case Kind::Text:
                return {QuoteText(expression.text), SqlType::Text, nullptr, expression.text};
            case Kind::Number:
                return {expression.text, SqlType::Number, nullptr, NumberConstant(expression.text)};
            case Kind::Date:
                return {QuoteText(expression.text), SqlType::Date, nullptr,
                        DateTime::Parse(expression.text).value_or(DateTime())};
            case Kind::Column:
                return Column(expression);
            case Kind::Not:
                return Truth("(NOT " + Condition(*expression.operands[0]) + ")");
            case Kind::Negate:
                return Negate(expression);
            case Kind::Binary:
                return Binary(expression);
            case Kind::Between:
                return Between(expression);
            case Kind::InList:
                return InList(expression);
            case Kind::InQuery:
                return InQuery(expression);
            case Kind::IsNull:
                return NullTest(Operand(expression, 0), expression.negated);
            case Kind::Aggregate:
                return Aggregate(expression);
        }
        return {};
    }

    std::string Condition(const SqlExpression& expression) {
        const SqlValue value = Value(expression);
        if (value.type == SqlType::Text || value.type == SqlType::Date) context_.FailMismatch();
        return value.type == SqlType::Truth ? TruthSql(value) : value.sql;
    }

private:
    SqlValue Operand(const SqlExpression& expression, std::size_t index) {
        return Value(*expression.operands[index]);
    }

    static SqlValue Truth(std::string sql) {
        return {std::move(sql), SqlType::Truth, nullptr, std::nullopt};
    }
    static SqlValue Number(std::string sql) {
        return {std::move(sql), SqlType::Number, nullptr, std::nullopt};
    }
    static SqlValue Text(std::string sql) {
        return {std::move(sql), SqlType::Text, nullptr, std::nullopt};
    }

    static SqlValue NullTest(const SqlValue& value, bool negated) {
        return Truth("(" + value.sql + (negated ? " IS NOT NULL)" : " IS NULL)"));
    }

    /// A bare word that is no column and no truth value would be a parameter without a value.
    SqlValue Column(const SqlExpression& column) {
        if (const auto found = ResolveColumn(context_, column, scope_)) {
            return ColumnValue(found->scope->tables[found->table], *found->field);
        }
        if (column.table.empty()) {
            const auto is = [&column](const char* word) { return SameName(column.text, word); };
            if (is("True") || is("Yes")) return {"1", SqlType::Truth, nullptr, true};
            if (is("False") || is("No")) return {"0", SqlType::Truth, nullptr, false};
        }
        context_.Fail(MakeDaoError(dao_error::TooFewParameters));
        return {};
    }

    SqlValue Negate(const SqlExpression& expression) {
        const SqlValue operand = Operand(expression, 0);
        SqlValue result = Number("(-" + ArithmeticOperand(operand) + ")");
        if (operand.constant) result.constant = Negated(*operand.constant);
        return result;
    }

    std::string ArithmeticOperand(const SqlValue& value) {
        if (value.type == SqlType::Text || value.type == SqlType::Date) context_.FailMismatch();
        return NumberSql(value);
    }

    SqlValue Binary(const SqlExpression& expression) {
        switch (expression.op) {
            case SqlOperator::Or:
                return Truth("(" + Chain(expression, " OR ") + ")");
            case SqlOperator::And:
                return Truth("(" + Chain(expression, " AND ") + ")");
            case SqlOperator::Equal:
                return Comparison(expression, " = ");
            case SqlOperator::NotEqual:
                return Comparison(expression, " <> ");
            case SqlOperator::Less:
                return Comparison(expression, " < ");
            case SqlOperator::LessEqual:
                return Comparison(expression, " <= ");
            case SqlOperator::Greater:
                return Comparison(expression, " > ");
            case SqlOperator::GreaterEqual:
                return Comparison(expression, " >= ");
            case SqlOperator::Like:
                return Like(expression);
            case SqlOperator::Concat:
                return Text("mv_concat(" + ConcatArguments(expression) + ")");
            case SqlOperator::Add:
                return Sum(expression);
            case SqlOperator::Subtract:
                return Arithmetic(expression, " - ");
            case SqlOperator::Multiply:
                return Arithmetic(expression, " * ");
            case SqlOperator::Divide:
                return Arithmetic(expression, " / ");
        }
        return {};
    }

    /// A chain of the same operator stands without parentheses inside, which SQLite's parser would
    /// have to keep open all at once.
    std::string Chain(const SqlExpression& expression, const char* joint) {
        const SqlExpression& left = *expression.operands[0];
        const bool same = left.kind == Kind::Binary && left.op == expression.op;
        const std::string front = same ? Chain(left, joint) : Condition(left);
        return front + joint + Condition(*expression.operands[1]);
    }

    std::string ConcatArguments(const SqlExpression& expression) {
        const SqlExpression& left = *expression.operands[0];
        const bool same = left.kind == Kind::Binary && left.op == SqlOperator::Concat;
        const std::string front = same ? ConcatArguments(left) : TextSql(Value(left));
        return front + ", " + TextSql(Operand(expression, 1));
    }

    /// Equals and differs take the literal Null as the question whether a value is there.
    SqlValue Comparison(const SqlExpression& expression, const char* symbol) {
        const SqlValue left = Operand(expression, 0);
        const SqlValue right = Operand(expression, 1);
        if (left.type == SqlType::Null || right.type == SqlType::Null) {
            const SqlValue& other = left.type == SqlType::Null ? right : left;
            if (expression.op == SqlOperator::Equal) return NullTest(other, false);
            if (expression.op == SqlOperator::NotEqual) return NullTest(other, true);
        }
        const std::vector<std::string> sides = AlignValues(context_, {left, right});
        return Truth("(" + sides[0] + symbol + sides[1] + ")");
    }

    SqlValue Like(const SqlExpression& expression) {
        const std::string value = TextSql(Operand(expression, 0));
        const std::string pattern = TextSql(Operand(expression, 1));
        return Truth(Not(expression) + "mv_like(" + pattern + ", " + value + "))");
    }

    static std::string Not(const SqlExpression& expression) {
        return expression.negated ? "(NOT " : "(";
    }

    SqlValue Sum(const SqlExpression& expression) {
        const SqlValue left = Operand(expression, 0);
        const SqlValue right = Operand(expression, 1);
        if (left.type == SqlType::Text && right.type == SqlType::Text) {
            return Text("(" + left.sql + " || " + right.sql + ")");
        }
        return Number("(" + ArithmeticOperand(left) + " + " + ArithmeticOperand(right) + ")");
    }

    /// A quotient is a fraction even of whole numbers.
    SqlValue Arithmetic(const SqlExpression& expression, const char* symbol) {
        const std::string left = ArithmeticOperand(Operand(expression, 0));
        const std::string right = ArithmeticOperand(Operand(expression, 1));
        const char* front = expression.op == SqlOperator::Divide ? "(1.0 * " : "(";
        return Number(front + left + symbol + right + ")");
    }

    SqlValue Between(const SqlExpression& expression) {
        const std::vector<std::string> values = AlignValues(
            context_, {Operand(expression, 0), Operand(expression, 1), Operand(expression, 2)});
        return Truth(Not(expression) + values[0] + " BETWEEN " + values[1] + " AND " + values[2] +
                     ")");
    }

    SqlValue InList(const SqlExpression& expression) {
        std::vector<SqlValue> values;
        for (const SqlExpressionPtr& operand : expression.operands) {
            values.push_back(Value(*operand));
        }
        const std::vector<std::string> aligned = AlignValues(context_, values);
        std::string list;
        for (std::size_t i = 1; i < aligned.size(); ++i)
            list += (i > 1 ? ", " : "") + aligned[i];
        return Truth(Not(expression) + aligned[0] + " IN (" + list + "))");
    }

    SqlValue InQuery(const SqlExpression& expression) {
        SqlQuery query = TranslateSelect(context_, *expression.query, &scope_);
        if (query.outputs.size() != 1) {
            context_.FailSyntax();
            return {};
        }
        const std::vector<std::string> sides =
            AlignValues(context_, {Operand(expression, 0), query.outputs[0].value});
        return Truth(Not(expression) + sides[0] + " IN (" + query.Sql({sides[1]}) + "))");
    }

    SqlValue Aggregate(const SqlExpression& call) {
        if (aggregates_ == SqlAggregates::Refused) context_.FailSyntax();
        if (call.operands.empty()) return Number("count(*)");
        const SqlValue operand =
            TranslateValue(context_, *call.operands[0], scope_, SqlAggregates::Refused);
        if (SameName(call.text, "COUNT")) return Number("count(" + operand.sql + ")");
        if (SameName(call.text, "SUM")) return Number("sum(" + ArithmeticOperand(operand) + ")");
        if (SameName(call.text, "AVG")) return Number("avg(" + ArithmeticOperand(operand) + ")");
        const std::string function = SameName(call.text, "MIN") ? "min(" : "max(";
        if (operand.type == SqlType::Truth) return Number(function + NumberSql(operand) + ")");
        return {function + Collated(operand) + ")", operand.type, nullptr, std::nullopt};
    }

    SqlContext& context_;
    const SqlScope& scope_;
    SqlAggregates aggregates_;
};

}  // namespace

SqlValue TranslateValue(SqlContext& context, const SqlExpression& expression, const SqlScope& scope,
                        SqlAggregates aggregates) {
    return Translator(context, scope, aggregates).Value(expression);
}

std::string TranslateTruth(SqlContext& context, const SqlExpression& expression,
                           const SqlScope& scope, SqlAggregates aggregates) {
    return Translator(context, scope, aggregates).Condition(expression);
}

std::vector<std::string> AlignValues(SqlContext& context, const std::vector<SqlValue>& values) {
    const auto any = [&values](auto test) {
        return std::any_of(values.begin(), values.end(), test);
    };
    const auto anyOf = [&any](SqlType type) {
        return any([type](const SqlValue& value) { return value.type == type; });
    };
    const bool text = anyOf(SqlType::Text), number = anyOf(SqlType::Number);
    const bool date = anyOf(SqlType::Date), truth = anyOf(SqlType::Truth);
    const bool literals = any([](const SqlValue& value) { return value.constant.has_value(); });
    if (text && (number || date || truth) && literals) context.FailMismatch();
    const bool asNumber = number || (date && truth);
    const SqlType type = text       ? SqlType::Text
                         : asNumber ? SqlType::Number
                         : date     ? SqlType::Date
                         : truth    ? SqlType::Truth
                                    : SqlType::Null;
    std::vector<std::string> aligned;
    for (const SqlValue& value : values) {
        // Files of other programs may keep days without a time, or with a T before it.
        const bool ownForm = type != SqlType::Date || !literals || value.column == nullptr;
        aligned.push_back(ownForm ? In(type, value) : "datetime(" + value.sql + ")");
    }
    if (type == SqlType::Text) aligned[0] += " COLLATE NOCASE";
    return aligned;
}

std::string Collated(const SqlValue& value) {
    return value.type == SqlType::Text ? value.sql + " COLLATE NOCASE" : value.sql;
}

std::string ConvertTo(SqlContext& context, const SqlValue& value, const Field& target) {
    if (value.type == SqlType::Null) return value.sql;
    if (value.constant && ConvertForField(*value.constant, target).Failed()) context.FailMismatch();
    const FieldType from = FieldTypeOf(value);
    const bool texts = target.IsText() && value.type == SqlType::Text;
    const bool same = texts ? FitsIn(value.column, target) : from == target.type;
    if (same) return value.sql;
    return Converted(value.sql, from, target.type, target.size);
}

FieldType FieldTypeOf(const SqlValue& value) {
    if (value.column != nullptr) return value.column->type;
    switch (value.type) {
        case SqlType::Number:
            return FieldType::Double;
        case SqlType::Date:
            return FieldType::Date;
        case SqlType::Truth:
            return FieldType::Boolean;
        case SqlType::Text:
        case SqlType::Null:
            break;
    }
    return FieldType::Text;
}

bool HasAggregate(const SqlExpression& expression) {
    return expression.kind == Kind::Aggregate ||
           std::any_of(expression.operands.begin(), expression.operands.end(),
                       [](const SqlExpressionPtr& operand) { return HasAggregate(*operand); });
}

}  // namespace mailvane
