#include "platform/dao/salvage/RowWriter.h"

#include "platform/dao/file/Connection.h"
#include "platform/dao/sql/SqlPlan.h"

namespace mailvane {

void BindStored(Statement& statement, int parameter, const StoredValue& stored) {
    statement.Bind(parameter, stored.value, stored.bytes ? FieldType::LongBinary : FieldType::Memo);
}

bool RowWriter::IsWritten(std::size_t place) const {
    return static_cast<int>(place) != shape_.keyColumn && !shape_.columns[place].computed;
}

std::string RowWriter::InsertSql(std::size_t count) const {
    std::string columns = shape_.keySql;
    std::string values = columns.empty() ? "" : "?";
    for (std::size_t i = 0; i < count; ++i) {
        if (!IsWritten(i)) continue;
        columns += (columns.empty() ? "" : ", ") + QuoteName(shape_.columns[i].name);
        values += values.empty() ? "?" : ", ?";
    }
    const std::string insert = "INSERT INTO " + QuoteName(shape_.name);
    return columns.empty() ? insert + " DEFAULT VALUES"
                           : insert + " (" + columns + ") VALUES (" + values + ")";
}

std::string RowWriter::FindSql(std::size_t count) const {
    std::string condition = shape_.keySql.empty() ? "1" : shape_.keySql + " IS ?";
    for (std::size_t i = 0; i < count; ++i)
        if (IsWritten(i))
            condition += " AND " + QuoteName(shape_.columns[i].name) + " COLLATE BINARY IS ?";
    return "SELECT count(*) FROM " + QuoteName(shape_.name) + " WHERE " + condition;
}

void RowWriter::BindAll(Statement& statement, std::optional<std::int64_t> key,
                        const std::vector<StoredValue>& values) {
    int parameter = 0;
    if (!shape_.keySql.empty() && ++parameter > 0 && key) statement.Bind(parameter, *key);
    for (std::size_t i = 0; i < values.size(); ++i)
        if (IsWritten(i)) BindStored(statement, ++parameter, values[i]);
}

DaoResult<RowOutcome> RowWriter::Write(std::optional<std::int64_t> key,
                                       const std::vector<StoredValue>& values) {
    if (values.size() > shape_.columns.size()) return RowOutcome::Refused;
    DaoResult<Statement> insert = connection_.Prepare(InsertSql(values.size()));
    DaoError outcome = insert.Error();
    if (insert.Ok()) {
        BindAll(*insert, key, values);
        outcome = insert->Finish();
    }
    if (outcome.Ok()) return RowOutcome::Saved;
    if (IsStorageFailure(outcome)) return outcome;
    if (outcome.number != dao_error::DuplicateKey || (shape_.keyed && !key))
        return RowOutcome::Refused;
    const DaoResult<bool> known = IsThere(key, values);
    if (known.Failed()) return known.Error();
    if (*known) return RowOutcome::Known;
    return shape_.keyed ? RowOutcome::KeyTaken : RowOutcome::Refused;
}

DaoResult<bool> RowWriter::IsThere(std::optional<std::int64_t> key,
                                   const std::vector<StoredValue>& values) {
    DaoResult<Statement> find = connection_.Prepare(FindSql(values.size()));
    if (find.Failed()) return find.Error();
    BindAll(*find, key, values);
    const DaoResult<bool> row = find->Step();
    if (row.Failed()) return row.Error();
    return *row && find->Whole(0) > 0;
}

DaoResult<bool> RowWriter::HasKey(std::int64_t key) {
    DaoResult<Statement> find = connection_.Prepare("SELECT 1 FROM " + QuoteName(shape_.name) +
                                                    " WHERE " + shape_.keySql + " = ?");
    if (find.Failed()) return find.Error();
    find->Bind(1, key);
    return find->Step();
}

}  // namespace mailvane
