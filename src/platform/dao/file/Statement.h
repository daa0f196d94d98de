#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/dao/DaoError.h"
#include "platform/dao/DaoValue.h"

struct sqlite3_stmt;

namespace mailvane {

class Connection;

/// What a value is in the file, whatever its column says.
enum class StoredKind { Null, Text, Number, Bytes };

/// A prepared statement, on loan from its connection, which keeps it for the next use of the same
/// text unless `sql` is empty. Not to be kept longer than one operation: an unfinished one holds a
/// read lock.
class Statement {
public:
    Statement(Connection& connection, std::string sql, sqlite3_stmt* handle);
    ~Statement();
    Statement(Statement&& other) noexcept;
    Statement& operator=(Statement&&) = delete;

    void Bind(int parameter, std::int64_t value);  ///< parameters count from 1
    void Bind(int parameter, const std::string& text);
    /// Without a copy: the text must live until the statement has run.
    void BindView(int parameter, std::string_view text);
    void Unbind();  ///< all parameters become Null
    /// A value as a column of that type stores it.
    void Bind(int parameter, const DaoValue& value, FieldType type);

    /// True: a row is there. False: the end.
    DaoResult<bool> Step();
    /// To the end, whatever rows come.
    DaoError Finish();
    /// Ready to be run again, with its parameters kept.
    void Rewind();

    int ColumnCount() const;
    std::string ColumnName(int column) const;
    std::string ColumnDeclaredType(int column) const;  ///< "" for an expression
    bool IsNull(int column) const;
    std::int64_t Whole(int column) const;
    std::string Text(int column) const;
    /// What is stored, without a copy: it lives until the next step.
    std::string_view View(int column) const;
    StoredKind KindOf(int column) const;
    /// The value as a column of that type shows it.
    DaoValue Value(int column, FieldType type) const;
    /// The type that fits the value best, for a column that is an expression.
    FieldType TypeOfValue(int column) const;
    /// The value with the storage class that it has, for copying.
    void BindColumnOf(int parameter, const Statement& source, int column);

private:
    Connection* connection_;
    std::string sql_;
    sqlite3_stmt* handle_;
};

}  // namespace mailvane
