#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/dao/file/Statement.h"
#include "platform/dao/salvage/TableShape.h"

namespace mailvane {

/// Binds a value with the kind that it has in the file.
void BindStored(Statement& statement, int parameter, const StoredValue& stored);

enum class RowOutcome {
    Saved,
    Known,     ///< the same row is there already
    KeyTaken,  ///< by another row
    Refused    ///< by a rule of the table, or the record has more values than the table columns
};

/// Writes records as rows into the table of their shape. Fails only when the file takes no more.
class RowWriter {
public:
    RowWriter(Connection& connection, const TableShape& shape)
        : connection_(connection), shape_(shape) {}

    /// Without a key the row gets a new one.
    DaoResult<RowOutcome> Write(std::optional<std::int64_t> key,
                                const std::vector<StoredValue>& values);
    DaoResult<bool> HasKey(std::int64_t key);

private:
    bool IsWritten(std::size_t place) const;
    DaoResult<bool> IsThere(std::optional<std::int64_t> key,
                            const std::vector<StoredValue>& values);
    void BindAll(Statement& statement, std::optional<std::int64_t> key,
                 const std::vector<StoredValue>& values);
    std::string InsertSql(std::size_t count) const;
    std::string FindSql(std::size_t count) const;

    Connection& connection_;
    const TableShape& shape_;
};

}  // namespace mailvane
