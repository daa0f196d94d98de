#include "platform/dao/sql/SqlParser.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "platform/dao/sql/SqlTokenReader.h"
#include "platform/dao/structure/TableDef.h"

namespace mailvane {
namespace {

using Kind = SqlExpression::Kind;
using TokenKind = SqlToken::Kind;

/// A subquery opens as many symbols as this many parentheses.
constexpr int SubqueryDepth = 4;
/// Levels of an expression tree; a chain of ANDs has one for each.
constexpr int MaxHeight = 120;

int HeightOf(const SqlExpressionPtr& expression) {
    return expression ? expression->height : 0;
}

int HeightOf(const SqlSelect& select) {
    int height = std::max(HeightOf(select.where), HeightOf(select.having));
    for (const SqlSelectItem& item : select.items) {
        height = std::max(height, HeightOf(item.expression));
    }
    for (const SqlTableSource& source : select.from)
        height = std::max(height, HeightOf(source.on));
    for (const SqlExpressionPtr& key : select.groupBy)
        height = std::max(height, HeightOf(key));
    for (const SqlSortTerm& term : select.orderBy)
        height = std::max(height, HeightOf(term.expression));
    return height;
}

/// Recursive descent. After a fault the trees may have holes, and are never looked at.
class Parser : private SqlTokenReader {
public:
    using SqlTokenReader::Finish;
    using SqlTokenReader::SqlTokenReader;

    SqlStatement Statement();
    SqlExpressionPtr Condition() { return Disjunction(); }

private:
    // Statements
    SqlSelect Select();
    SqlDelete Delete();
    SqlInsert Insert();
    SqlUpdate Update();
    std::optional<std::int64_t> Top();
    std::vector<SqlSelectItem> SelectItems();
    SqlSelectItem SelectItem();
    std::vector<SqlTableSource> TableSources();
    SqlTableSource TableSource(SqlTableSource::Join join);
    std::vector<SqlSortTerm> SortTerms();
    std::vector<SqlExpressionPtr> ExpressionList();

    // Expressions, from the loosest binding to the tightest
    SqlExpressionPtr Disjunction();
    SqlExpressionPtr Conjunction();
    SqlExpressionPtr Negation();
    SqlExpressionPtr Comparison();
    SqlExpressionPtr Between(SqlExpressionPtr value);
    SqlExpressionPtr In(SqlExpressionPtr value);
    SqlExpressionPtr Concatenation();
    SqlExpressionPtr Sum();
    SqlExpressionPtr Product();
    SqlExpressionPtr Sign();
    SqlExpressionPtr Primary();
    SqlExpressionPtr Aggregate();
    SqlExpressionPtr Column();

    SqlExpressionPtr Leaf(Kind kind, std::string text);
    SqlExpressionPtr Node(Kind kind, std::vector<SqlExpressionPtr> operands);
    SqlExpressionPtr Binary(SqlOperator op, SqlExpressionPtr left, SqlExpressionPtr right);
    template <class... Operands>
    SqlExpressionPtr NodeOf(Kind kind, Operands... operands) {
        std::vector<SqlExpressionPtr> list;
        (list.push_back(std::move(operands)), ...);
        return Node(kind, std::move(list));
    }
};

SqlStatement Parser::Statement() {
    if (AcceptWord("SELECT")) return Select();
    if (AcceptWord("DELETE")) return Delete();
    if (AcceptWord("INSERT")) return Insert();
    if (AcceptWord("UPDATE")) return Update();
    ExpectWord("DROP");
    ExpectWord("TABLE");
    return SqlDrop{ExpectName()};
}

SqlSelect Parser::Select() {
    SqlSelect select;
    if (AcceptWord("DISTINCT")) {
        select.distinct = SqlSelect::Distinct::Values;
    } else if (AcceptWord("DISTINCTROW")) {
        select.distinct = SqlSelect::Distinct::Rows;
    }
    select.top = Top();
    select.items = SelectItems();
    if (AcceptWord("INTO")) select.into = ExpectName();
    ExpectWord("FROM");
    select.from = TableSources();
    if (AcceptWord("WHERE")) select.where = Disjunction();
    if (AcceptWord("GROUP")) {
        ExpectWord("BY");
        select.groupBy = ExpressionList();
    }
    if (AcceptWord("HAVING")) select.having = Disjunction();
    if (AcceptWord("ORDER")) {
        ExpectWord("BY");
        select.orderBy = SortTerms();
    }
    return select;
}

/// A column may be called Top: only a number makes it the keyword.
std::optional<std::int64_t> Parser::Top() {
    if (!AtWord("TOP") || Ahead(1).kind != TokenKind::Number) return std::nullopt;
    Skip();
    const std::string digits = Expect(TokenKind::Number);
    std::int64_t count = 0;
    const auto [stop, error] = std::from_chars(digits.data(), digits.data() + digits.size(), count);
    if (error != std::errc() || stop != digits.data() + digits.size()) Fail();
    return count;
}

std::vector<SqlSelectItem> Parser::SelectItems() {
    std::vector<SqlSelectItem> items;
    do {
        items.push_back(SelectItem());
    } while (AcceptSymbol(","));
    return items;
}

SqlSelectItem Parser::SelectItem() {
    SqlSelectItem item;
    if (AcceptSymbol("*")) {
        item.star = true;
    } else if (AtName() && SymbolAhead(1, ".") && SymbolAhead(2, "*")) {
        item.star = true;
        item.table = ExpectName();
        Skip(2);
    } else {
        item.expression = Disjunction();
        if (AcceptWord("AS")) item.alias = ExpectName();
    }
    return item;
}

std::vector<SqlTableSource> Parser::TableSources() {
    using Join = SqlTableSource::Join;
    std::vector<SqlTableSource> sources;
    sources.push_back(TableSource(Join::None));
    while (!Failed()) {
        if (AcceptSymbol(",")) {
            sources.push_back(TableSource(Join::Cross));
        } else if (AtWord("INNER") || AtWord("JOIN")) {
            AcceptWord("INNER");
            sources.push_back(TableSource(Join::Inner));
        } else if (AcceptWord("LEFT")) {
            AcceptWord("OUTER");
            sources.push_back(TableSource(Join::Left));
        } else {
            break;
        }
    }
    return sources;
}

SqlTableSource Parser::TableSource(SqlTableSource::Join join) {
    using Join = SqlTableSource::Join;
    SqlTableSource source;
    source.join = join;
    if (join == Join::Inner || join == Join::Left) ExpectWord("JOIN");
    source.table = ExpectName();
    if (AcceptWord("AS") || AtName()) source.alias = ExpectName();
    if (join == Join::Inner || join == Join::Left) {
        ExpectWord("ON");
        source.on = Disjunction();
    }
    return source;
}

std::vector<SqlSortTerm> Parser::SortTerms() {
    std::vector<SqlSortTerm> terms;
    do {
        SqlSortTerm term;
        term.expression = Disjunction();
        if (AcceptWord("DESC")) {
            term.descending = true;
        } else {
            AcceptWord("ASC");
        }
        terms.push_back(std::move(term));
    } while (AcceptSymbol(","));
    return terms;
}

std::vector<SqlExpressionPtr> Parser::ExpressionList() {
    std::vector<SqlExpressionPtr> list;
    do {
        list.push_back(Disjunction());
    } while (AcceptSymbol(","));
    return list;
}

SqlDelete Parser::Delete() {
    SqlDelete statement;
    if (!AcceptSymbol("*") && !AtWord("FROM")) {
        do {
            statement.targets.push_back(ExpectName());
            ExpectSymbol(".");
            ExpectSymbol("*");
        } while (AcceptSymbol(","));
    }
    ExpectWord("FROM");
    statement.from = TableSources();
    if (AcceptWord("WHERE")) statement.where = Disjunction();
    return statement;
}

SqlInsert Parser::Insert() {
    SqlInsert statement;
    ExpectWord("INTO");
    statement.table = ExpectName();
    if (AcceptSymbol("(")) {
        do {
            statement.columns.push_back(ExpectName());
        } while (AcceptSymbol(","));
        ExpectSymbol(")");
    }
    if (AcceptWord("VALUES")) {
        ExpectSymbol("(");
        statement.values = ExpressionList();
        ExpectSymbol(")");
    } else {
        ExpectWord("SELECT");
        statement.query = std::make_unique<SqlSelect>(Select());
        if (!statement.query->into.empty()) Fail();
    }
    return statement;
}

SqlUpdate Parser::Update() {
    SqlUpdate statement;
    statement.table = ExpectName();
    ExpectWord("SET");
    do {
        std::string column = ExpectName();
        if (AcceptSymbol(".")) {
            if (!SameName(column, statement.table)) Fail();
            column = ExpectName();
        }
        ExpectSymbol("=");
        statement.assignments.emplace_back(std::move(column), Concatenation());
    } while (AcceptSymbol(","));
    if (AcceptWord("WHERE")) statement.where = Disjunction();
    return statement;
}

SqlExpressionPtr Parser::Disjunction() {
    SqlExpressionPtr left = Conjunction();
    while (AcceptWord("OR"))
        left = Binary(SqlOperator::Or, std::move(left), Conjunction());
    return left;
}

SqlExpressionPtr Parser::Conjunction() {
    SqlExpressionPtr left = Negation();
    while (AcceptWord("AND"))
        left = Binary(SqlOperator::And, std::move(left), Negation());
    return left;
}

SqlExpressionPtr Parser::Negation() {
    if (!AcceptWord("NOT")) return Comparison();
    if (!Enter()) return nullptr;
    SqlExpressionPtr negation = NodeOf(Kind::Not, Negation());
    Leave();
    return negation;
}

SqlExpressionPtr Parser::Comparison() {
    static constexpr std::array<std::pair<const char*, SqlOperator>, 6> Operators = {
        {{"=", SqlOperator::Equal},
         {"<>", SqlOperator::NotEqual},
         {"<=", SqlOperator::LessEqual},
         {"<", SqlOperator::Less},
         {">=", SqlOperator::GreaterEqual},
         {">", SqlOperator::Greater}}};
    SqlExpressionPtr left = Concatenation();
    for (const auto& [symbol, op] : Operators) {
        if (AcceptSymbol(symbol)) return Binary(op, std::move(left), Concatenation());
    }
    if (AcceptWord("IS")) {
        const bool negated = AcceptWord("NOT");
        ExpectWord("NULL");
        SqlExpressionPtr test = NodeOf(Kind::IsNull, std::move(left));
        test->negated = negated;
        return test;
    }
    const bool negated = AcceptWord("NOT");
    SqlExpressionPtr test;
    if (AcceptWord("LIKE")) {
        test = Binary(SqlOperator::Like, std::move(left), Concatenation());
    } else if (AcceptWord("BETWEEN")) {
        test = Between(std::move(left));
    } else if (AcceptWord("IN")) {
        test = In(std::move(left));
    } else {
        if (negated) Fail();
        return left;
    }
    test->negated = negated;
    return test;
}

SqlExpressionPtr Parser::Between(SqlExpressionPtr value) {
    SqlExpressionPtr low = Concatenation();
    ExpectWord("AND");
    return NodeOf(Kind::Between, std::move(value), std::move(low), Concatenation());
}

SqlExpressionPtr Parser::In(SqlExpressionPtr value) {
    SqlExpressionPtr test = NodeOf(Kind::InList, std::move(value));
    ExpectSymbol("(");
    const int levels = AtWord("SELECT") ? SubqueryDepth : 1;
    if (!Enter(levels)) return test;
    if (AcceptWord("SELECT")) {
        test->kind = Kind::InQuery;
        test->query = std::make_unique<SqlSelect>(Select());
        if (!test->query->into.empty()) Fail();
        test->height = std::max(test->height, 1 + HeightOf(*test->query));
    } else {
        do {
            test->operands.push_back(Concatenation());
            test->height = std::max(test->height, 1 + HeightOf(test->operands.back()));
        } while (AcceptSymbol(","));
    }
    if (test->height > MaxHeight) Fail();
    ExpectSymbol(")");
    Leave(levels);
    return test;
}

SqlExpressionPtr Parser::Concatenation() {
    SqlExpressionPtr left = Sum();
    while (AcceptSymbol("&"))
        left = Binary(SqlOperator::Concat, std::move(left), Sum());
    return left;
}

SqlExpressionPtr Parser::Sum() {
    SqlExpressionPtr left = Product();
    while (AtSymbol("+") || AtSymbol("-")) {
        const SqlOperator op = AtSymbol("+") ? SqlOperator::Add : SqlOperator::Subtract;
        Skip();
        left = Binary(op, std::move(left), Product());
    }
    return left;
}

SqlExpressionPtr Parser::Product() {
    SqlExpressionPtr left = Sign();
    while (AtSymbol("*") || AtSymbol("/")) {
        const SqlOperator op = AtSymbol("*") ? SqlOperator::Multiply : SqlOperator::Divide;
        Skip();
        left = Binary(op, std::move(left), Sign());
    }
    return left;
}

SqlExpressionPtr Parser::Sign() {
    if (!AtSymbol("-") && !AtSymbol("+")) return Primary();
    const bool negative = AtSymbol("-");
    Skip();
    if (!Enter()) return nullptr;
    SqlExpressionPtr operand = Sign();
    Leave();
    return negative ? NodeOf(Kind::Negate, std::move(operand)) : std::move(operand);
}

SqlExpressionPtr Parser::Primary() {
    switch (Ahead(0).kind) {
        case TokenKind::Text:
            return Leaf(Kind::Text, Expect(TokenKind::Text));
        case TokenKind::Number:
            return Leaf(Kind::Number, Expect(TokenKind::Number));
        case TokenKind::Date:
            return Leaf(Kind::Date, Expect(TokenKind::Date));
        default:
            break;
    }
    if (AcceptWord("NULL")) return Leaf(Kind::Null, {});
    if (AcceptSymbol("(")) {
        if (!Enter()) return nullptr;
        SqlExpressionPtr inner = Disjunction();
        ExpectSymbol(")");
        Leave();
        return inner;
    }
    if (Ahead(0).kind == TokenKind::Word && SymbolAhead(1, "(")) return Aggregate();
    return Column();
}

SqlExpressionPtr Parser::Aggregate() {
    const bool known =
        AtWord("COUNT") || AtWord("MIN") || AtWord("MAX") || AtWord("SUM") || AtWord("AVG");
    if (!known || !Enter()) {
        Fail();
        return nullptr;
    }
    SqlExpressionPtr call = Leaf(Kind::Aggregate, Expect(TokenKind::Word));
    ExpectSymbol("(");
    if (!SameName(call->text, "COUNT") || !AcceptSymbol("*")) {
        call->operands.push_back(Disjunction());
        call->height += HeightOf(call->operands.back());
    }
    if (call->height > MaxHeight) Fail();
    ExpectSymbol(")");
    Leave();
    return call;
}

SqlExpressionPtr Parser::Column() {
    SqlExpressionPtr column = Leaf(Kind::Column, ExpectName());
    if (AcceptSymbol(".")) {
        column->table = std::move(column->text);
        column->text = ExpectName();
    }
    return column;
}

SqlExpressionPtr Parser::Leaf(Kind kind, std::string text) {
    SqlExpressionPtr expression = Node(kind, {});
    expression->text = std::move(text);
    return expression;
}

SqlExpressionPtr Parser::Node(Kind kind, std::vector<SqlExpressionPtr> operands) {
    auto expression = std::make_unique<SqlExpression>();
    expression->kind = kind;
    for (const SqlExpressionPtr& operand : operands) {
        expression->height = std::max(expression->height, 1 + HeightOf(operand));
    }
    expression->operands = std::move(operands);
    if (expression->height > MaxHeight) Fail();
    return expression;
}

SqlExpressionPtr Parser::Binary(SqlOperator op, SqlExpressionPtr left, SqlExpressionPtr right) {
    SqlExpressionPtr expression = NodeOf(Kind::Binary, std::move(left), std::move(right));
    expression->op = op;
    return expression;
}

}  // namespace

DaoResult<SqlStatement> ParseSqlStatement(const std::string& sql) {
    const DaoResult<std::vector<SqlToken>> tokens = LexSql(sql);
    if (tokens.Failed()) return tokens.Error();
    Parser parser(*tokens);
    SqlStatement statement = parser.Statement();
    if (!parser.Finish()) return MakeDaoError(dao_error::QuerySyntax, sql);
    return statement;
}

DaoResult<SqlExpressionPtr> ParseSqlCondition(const std::string& condition) {
    const DaoResult<std::vector<SqlToken>> tokens = LexSql(condition);
    if (tokens.Failed()) return tokens.Error();
    Parser parser(*tokens);
    SqlExpressionPtr expression = parser.Condition();
    if (!parser.Finish()) return MakeDaoError(dao_error::QuerySyntax, condition);
    return expression;
}

}  // namespace mailvane
