#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace mailvane {

struct SqlExpression;
struct SqlSelect;
using SqlExpressionPtr = std::unique_ptr<SqlExpression>;

enum class SqlOperator {
    Or,
    And,
    Equal,
    NotEqual,
    Less,
    LessEqual,
    Greater,
    GreaterEqual,
    Like,
    Concat,
    Add,
    Subtract,
    Multiply,
    Divide
};

struct SqlExpression {
    enum class Kind {
        Null,
        Text,      ///< `text`
        Number,    ///< `text`, digits as written
        Date,      ///< `text`, in the stored form
        Column,    ///< `text` is the name, `table` what stood before the point, if anything
        Not,       ///< operands[0]
        Negate,    ///< operands[0]
        Binary,    ///< operands[0] `op` operands[1]
        Between,   ///< operands[0] between operands[1] and operands[2]
        InList,    ///< operands[0] in the others
        InQuery,   ///< operands[0] in the only column of `query`
        IsNull,    ///< operands[0]
        Aggregate  ///< function `text` of operands[0], or of all rows when there is none
    };
    Kind kind = Kind::Null;
    std::string text;
    std::string table;
    SqlOperator op = SqlOperator::And;
    bool negated = false;  ///< Not in front of Like, Between, In or Null
    std::vector<SqlExpressionPtr> operands;
    std::unique_ptr<SqlSelect> query;
    int height = 1;  ///< of the tree below, itself included
};

struct SqlSelectItem {
    bool star = false;  ///< all columns of `table`, or of all tables when that is empty
    std::string table;
    SqlExpressionPtr expression;
    std::string alias;
};

struct SqlTableSource {
    enum class Join { None, Cross, Inner, Left };  ///< how it joins what stands before it
    std::string table;
    std::string alias;
    Join join = Join::None;
    SqlExpressionPtr on;

    const std::string& Name() const { return alias.empty() ? table : alias; }
};

struct SqlSortTerm {
    SqlExpressionPtr expression;
    bool descending = false;
};

struct SqlSelect {
    enum class Distinct { None, Values, Rows };
    Distinct distinct = Distinct::None;
    std::optional<std::int64_t> top;
    std::vector<SqlSelectItem> items;
    std::string into;  ///< the table to make, "" for none
    std::vector<SqlTableSource> from;
    SqlExpressionPtr where;
    std::vector<SqlExpressionPtr> groupBy;
    SqlExpressionPtr having;
    std::vector<SqlSortTerm> orderBy;
};

struct SqlDelete {
    std::vector<std::string> targets;  ///< tables named before FROM; empty when none is
    std::vector<SqlTableSource> from;
    SqlExpressionPtr where;
};

struct SqlInsert {
    std::string table;
    std::vector<std::string> columns;      ///< empty: matched by name, or in the table's order
    std::vector<SqlExpressionPtr> values;  ///< empty when `query` gives the rows
    std::unique_ptr<SqlSelect> query;
};

struct SqlUpdate {
    std::string table;
    std::vector<std::pair<std::string, SqlExpressionPtr>> assignments;
    SqlExpressionPtr where;
};

struct SqlDrop {
    std::string table;
};

using SqlStatement = std::variant<SqlSelect, SqlDelete, SqlInsert, SqlUpdate, SqlDrop>;

}  // namespace mailvane
