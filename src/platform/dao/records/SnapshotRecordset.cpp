#include "platform/dao/records/SnapshotRecordset.h"

#include <utility>

#include "platform/dao/file/Connection.h"
#include "platform/dao/sql/SqlPlan.h"
#include "platform/dao/structure/FieldTypes.h"

namespace mailvane {

namespace {

/// The columns of a query; the type of an expression is that of its first value.
std::vector<Field> FieldsOf(const Statement& query, bool onRow) {
    std::vector<Field> fields;
    for (int column = 0; column < query.ColumnCount(); ++column) {
        Field field;
        field.name = query.ColumnName(column);
        const std::string declaredType = query.ColumnDeclaredType(column);
        if (!declaredType.empty())
            ReadDeclaredType(declaredType, field);
        else if (onRow)
            field.type = query.TypeOfValue(column);
        field.attributes = field.IsText() ? VariableFieldAttribute : FixedFieldAttribute;
        fields.push_back(std::move(field));
    }
    return fields;
}

Row RowOf(const Statement& query, const std::vector<Field>& fields) {
    Row row;
    row.reserve(fields.size());
    for (std::size_t i = 0; i < fields.size(); ++i)
        row.push_back(query.Value(static_cast<int>(i), fields[i].type));
    return row;
}

DaoError RefuseChange() {
    return MakeDaoError(dao_error::ReadOnly);
}

}  // namespace

SnapshotRecordset::SnapshotRecordset(std::shared_ptr<Connection> connection,
                                     const std::string& name, std::string query,
                                     std::vector<std::string> filters)
    : RecordsetBase(std::move(connection), name),
      query_(std::move(query)),
      kept_(std::move(filters)) {}

DaoResult<std::shared_ptr<Recordset>> SnapshotRecordset::Open(
    std::shared_ptr<Connection> connection, const std::string& name, const std::string& query,
    std::vector<std::string> filters) {
    std::shared_ptr<SnapshotRecordset> recordset(
        new SnapshotRecordset(std::move(connection), name, query, std::move(filters)));
    if (DaoError failed = recordset->Requery(); failed.Failed()) return failed;
    return std::shared_ptr<Recordset>(std::move(recordset));
}

DaoResult<std::shared_ptr<Recordset>> SnapshotRecordset::OpenFiltered() {
    if (DaoError closed = CheckOpen(); closed.Failed()) return closed;
    return Open(connection_, name_, query_, WithFilter(kept_));
}

DaoError SnapshotRecordset::LoadRows() {
    DaoResult<Statement> query = connection_->Prepare(query_);
    if (query.Failed()) return query.Error();
    DaoResult<bool> found = query->Step();
    if (found.Failed()) return found.Error();
    fields_ = FieldsOf(*query, *found);
    rows_.clear();
    while (*found) {
        rows_.push_back(RowOf(*query, fields_));
        found = query->Step();
        if (found.Failed()) return found.Error();
    }
    return {};
}

DaoError SnapshotRecordset::LoadKeys(Keyset& keys) {
    if (DaoError failed = LoadRows(); failed.Failed()) return failed;
    for (std::size_t i = 0; i < rows_.size(); ++i)
        keys.Append(static_cast<std::int64_t>(i));
    if (kept_.empty()) return {};
    const DaoResult<std::string> expression = TranslateAll(kept_);
    if (expression.Failed()) return expression.Error();
    const DaoResult<std::vector<std::size_t>> matching = MatchingRows(*expression);
    if (matching.Failed()) return matching.Error();
    keys.Clear();
    for (const std::size_t row : *matching)
        keys.Append(static_cast<std::int64_t>(row));
    return {};
}

DaoResult<std::optional<Row>> SnapshotRecordset::ReadRow(std::int64_t key) const {
    return std::optional<Row>(rows_[static_cast<std::size_t>(key)]);
}

DaoResult<std::string> SnapshotRecordset::Translate(const std::string& condition) const {
    TableDef described;
    described.fields = fields_;
    return TranslateCondition(condition, described);
}

DaoResult<Statement> SnapshotRecordset::PrepareTest(const std::string& expression) {
    std::string columns;
    for (const Field& field : fields_)
        columns += std::string(columns.empty() ? "" : ", ") + "?" +
                   (field.IsText() ? " COLLATE NOCASE" : "") + " AS " + QuoteName(field.name);
    // As a WHERE, so that what is true is what is true for the rows of a table.
    return connection_->Prepare("SELECT 1 FROM (SELECT " + columns + ") WHERE (" + expression +
                                ")");
}

DaoResult<bool> SnapshotRecordset::Test(Statement& test, const Row& row) {
    test.Rewind();
    for (std::size_t i = 0; i < row.size(); ++i)
        test.Bind(static_cast<int>(i) + 1, row[i], fields_[i].type);
    return test.Step();
}

DaoResult<std::vector<std::size_t>> SnapshotRecordset::MatchingRows(const std::string& expression) {
    DaoResult<Statement> test = PrepareTest(expression);
    if (test.Failed()) return test.Error();
    std::vector<std::size_t> matching;
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        const DaoResult<bool> matches = Test(*test, rows_[i]);
        if (matches.Failed()) return matches.Error();
        if (*matches) matching.push_back(i);
    }
    return matching;
}

DaoResult<std::vector<std::size_t>> SnapshotRecordset::MatchingSlots(
    const std::string& expression) {
    const DaoResult<std::vector<std::size_t>> rows = MatchingRows(expression);
    if (rows.Failed()) return rows.Error();
    std::vector<std::size_t> slots;
    for (const std::size_t row : *rows)
        if (const auto slot = keys_.SlotOfKey(static_cast<std::int64_t>(row)))
            slots.push_back(*slot);
    return slots;
}

DaoResult<bool> SnapshotRecordset::Matches(const std::string& expression, std::int64_t key) {
    DaoResult<Statement> test = PrepareTest(expression);
    if (test.Failed()) return test.Error();
    return Test(*test, rows_[static_cast<std::size_t>(key)]);
}

std::optional<DaoResult<DaoValue>> SnapshotRecordset::PendingValue(std::size_t) const {
    return std::nullopt;
}

DaoError SnapshotRecordset::AddNew() {
    return RefuseChange();
}
DaoError SnapshotRecordset::Edit() {
    return RefuseChange();
}
DaoError SnapshotRecordset::Set(std::size_t, const DaoValue&) {
    return RefuseChange();
}
DaoError SnapshotRecordset::Update() {
    return RefuseChange();
}
DaoError SnapshotRecordset::Delete() {
    return RefuseChange();
}

DaoResult<Bookmark> SnapshotRecordset::LastModified() const {
    return MakeDaoError(dao_error::NoCurrentRecord);
}

}  // namespace mailvane
