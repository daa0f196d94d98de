#include "platform/dao/records/KeysetRecordset.h"

#include <algorithm>
#include <utility>

#include "platform/dao/file/Connection.h"
#include "platform/dao/sql/SqlPlan.h"
#include "platform/dao/structure/FieldTypes.h"

namespace mailvane {

namespace {

std::string ColumnList(const std::vector<std::string>& columns) {
    std::string list;
    for (const std::string& column : columns)
        list += (list.empty() ? "" : ", ") + QuoteName(column);
    return list;
}

DaoResult<std::vector<std::int64_t>> ReadKeys(Statement& query) {
    std::vector<std::int64_t> keys;
    for (;;) {
        const DaoResult<bool> row = query.Step();
        if (row.Failed()) return row.Error();
        if (!*row) return keys;
        keys.push_back(query.Whole(0));
    }
}

}  // namespace

KeysetRecordset::KeysetRecordset(std::shared_ptr<Connection> connection, const std::string& name,
                                 KeysetSource source)
    : RecordsetBase(std::move(connection), name),
      source_(std::move(source)),
      tableSql_(QuoteName(source_.table->definition.name)) {
    for (const std::string& column : source_.columns)
        if (const Field* field = source_.table->definition.FindField(column))
            fields_.push_back(*field);
    rowSql_ = "SELECT " + ColumnList(source_.columns) + " FROM " + tableSql_ + " WHERE " +
              source_.table->keySql + " = ?1";
}

DaoResult<std::shared_ptr<Recordset>> KeysetRecordset::Open(std::shared_ptr<Connection> connection,
                                                            const std::string& name,
                                                            KeysetSource source) {
    std::shared_ptr<KeysetRecordset> recordset(
        new KeysetRecordset(std::move(connection), name, std::move(source)));
    if (DaoError failed = recordset->Requery(); failed.Failed()) return failed;
    return std::shared_ptr<Recordset>(std::move(recordset));
}

DaoResult<std::shared_ptr<Recordset>> KeysetRecordset::OpenFiltered() {
    if (DaoError closed = CheckOpen(); closed.Failed()) return closed;
    KeysetSource filtered = source_;
    filtered.filters = WithFilter(source_.filters);
    return Open(connection_, name_, std::move(filtered));
}

// --- Reading --------------------------------------------------------------------------------

DaoError KeysetRecordset::LoadKeys(Keyset& keys) {
    return connection_->InOneRead([&] { return LoadKeysOfOneState(keys); });
}

DaoError KeysetRecordset::LoadKeysOfOneState(Keyset& keys) {
    std::optional<std::vector<std::int64_t>> wanted;
    if (!source_.filters.empty()) {
        const DaoResult<std::string> expression = TranslateAll(source_.filters);
        if (expression.Failed()) return expression.Error();
        DaoResult<std::vector<std::int64_t>> matching = MatchingKeys(*expression);
        if (matching.Failed()) return matching.Error();
        wanted = std::move(*matching);
        std::sort(wanted->begin(), wanted->end());
    }
    DaoResult<Statement> query = connection_->Prepare(source_.keyQuery);
    if (query.Failed()) return query.Error();
    const std::int64_t most = connection_->MostRows();
    for (std::int64_t count = 1;; ++count) {
        const DaoResult<bool> row = query->Step();
        if (row.Failed()) return row.Error();
        if (!*row) return {};
        // Damaged pages that lead back to one another would give keys for ever.
        if (count > most) return MakeDaoError(dao_error::DamagedFile, connection_->Path());
        const std::int64_t key = query->Whole(0);
        if (!wanted || std::binary_search(wanted->begin(), wanted->end(), key)) keys.Append(key);
    }
}

DaoResult<std::optional<Row>> KeysetRecordset::ReadRow(std::int64_t key) const {
    DaoResult<Statement> query = connection_->Prepare(rowSql_);
    if (query.Failed()) return query.Error();
    query->Bind(1, key);
    const DaoResult<bool> found = query->Step();
    if (found.Failed()) return found.Error();
    if (!*found) return std::optional<Row>();
    Row row;
    row.reserve(fields_.size());
    for (std::size_t i = 0; i < fields_.size(); ++i)
        row.push_back(query->Value(static_cast<int>(i), fields_[i].type));
    return std::optional<Row>(std::move(row));
}

DaoResult<std::string> KeysetRecordset::Translate(const std::string& condition) const {
    return TranslateCondition(condition, source_.table->definition);
}

DaoResult<std::vector<std::int64_t>> KeysetRecordset::MatchingKeys(const std::string& expression) {
    DaoResult<Statement> query = connection_->Prepare("SELECT " + source_.table->keySql + " FROM " +
                                                      tableSql_ + " WHERE (" + expression + ")");
    if (query.Failed()) return query.Error();
    return ReadKeys(*query);
}

DaoResult<std::vector<std::size_t>> KeysetRecordset::MatchingSlots(const std::string& expression) {
    const DaoResult<std::vector<std::int64_t>> keys = MatchingKeys(expression);
    if (keys.Failed()) return keys.Error();
    std::vector<std::size_t> slots;
    for (const std::int64_t key : *keys)
        if (const std::optional<std::size_t> slot = keys_.SlotOfKey(key)) slots.push_back(*slot);
    std::sort(slots.begin(), slots.end());
    return slots;
}

DaoResult<bool> KeysetRecordset::Matches(const std::string& expression, std::int64_t key) {
    DaoResult<Statement> query =
        connection_->Prepare("SELECT 1 FROM " + tableSql_ + " WHERE " + source_.table->keySql +
                             " = ?1 AND (" + expression + ")");
    if (query.Failed()) return query.Error();
    query->Bind(1, key);
    return query->Step();
}

std::int64_t KeysetRecordset::ChangeStamp() const {
    return connection_->TotalChanges();
}

// --- Changing -------------------------------------------------------------------------------

DaoError KeysetRecordset::AddNew() {
    if (DaoError closed = CheckOpen(); closed.Failed()) return closed;
    change_ = Change::Adding;
    pending_.assign(fields_.size(), std::nullopt);
    return {};
}

DaoError KeysetRecordset::Edit() {
    const DaoResult<const Row*> row = CurrentRow();
    if (row.Failed()) return row.Error();
    change_ = Change::Editing;
    pending_.assign(fields_.size(), std::nullopt);
    return {};
}

void KeysetRecordset::CancelUpdate() {
    change_ = Change::None;
    pending_.clear();
}

DaoError KeysetRecordset::Set(std::size_t index, const DaoValue& value) {
    if (DaoError closed = CheckOpen(); closed.Failed()) return closed;
    if (index >= fields_.size()) return MakeDaoError(dao_error::ItemNotFound);
    if (change_ == Change::None) return MakeDaoError(dao_error::UpdateWithoutEdit);
    const Field& field = fields_[index];
    if ((field.attributes & UpdatableFieldAttribute) == 0)
        return MakeDaoError(dao_error::FieldNotUpdatable, field.name);
    DaoResult<DaoValue> converted = ConvertForField(value, field);
    if (converted.Failed()) return converted.Error();
    if (field.IsAutoNumber()) {
        // A new row may bring its number along; a row that has one keeps it.
        if (change_ == Change::Adding) {
            pending_[index] = converted->IsNull() ? std::nullopt : std::optional(*converted);
            return {};
        }
        const DaoResult<const Row*> row = CurrentRow();
        if (row.Failed()) return row.Error();
        return (**row)[index] == *converted
                   ? DaoError()
                   : MakeDaoError(dao_error::FieldNotUpdatable, field.name);
    }
    pending_[index] = std::move(*converted);
    return {};
}

std::optional<DaoResult<DaoValue>> KeysetRecordset::PendingValue(std::size_t index) const {
    if (change_ == Change::None) return std::nullopt;
    if (pending_[index]) return DaoResult<DaoValue>(*pending_[index]);
    if (change_ == Change::Editing) return std::nullopt;
    return DefaultOf(fields_[index]);
}

DaoResult<DaoValue> KeysetRecordset::DefaultOf(const Field& field) const {
    const DaoResult<std::string> sql = DefaultSql(field);
    if (sql.Failed()) return sql.Error();
    if (sql->empty()) return DaoValue();
    DaoResult<Statement> query = connection_->Prepare("SELECT " + *sql);
    if (query.Failed()) return query.Error();
    const DaoResult<bool> row = query->Step();
    if (row.Failed()) return row.Error();
    return query->Value(0, field.type);
}

DaoError KeysetRecordset::Update() {
    if (DaoError closed = CheckOpen(); closed.Failed()) return closed;
    if (change_ == Change::None) return MakeDaoError(dao_error::UpdateWithoutEdit);
    DaoError outcome = change_ == Change::Adding ? Insert() : Write();
    if (outcome.Ok()) {
        CancelUpdate();
        ForgetRow();
    }
    return outcome;
}

void KeysetRecordset::BindPending(Statement& statement) const {
    int parameter = 0;
    for (std::size_t i = 0; i < fields_.size(); ++i)
        if (pending_[i]) statement.Bind(++parameter, *pending_[i], fields_[i].type);
}

DaoError KeysetRecordset::Insert() {
    std::string columns;
    std::string places;
    for (std::size_t i = 0; i < fields_.size(); ++i) {
        if (!pending_[i]) continue;
        columns += (columns.empty() ? "" : ", ") + QuoteName(fields_[i].name);
        places += places.empty() ? "?" : ", ?";
    }
    const std::string values =
        columns.empty() ? " DEFAULT VALUES" : " (" + columns + ") VALUES (" + places + ")";
    DaoResult<Statement> statement = connection_->Prepare("INSERT INTO " + tableSql_ + values);
    if (statement.Failed()) return statement.Error();
    BindPending(*statement);
    if (DaoError failed = statement->Finish(); failed.Failed()) return failed;
    lastModified_ = connection_->LastInsertedKey();
    keys_.Append(*lastModified_);
    return {};
}

DaoError KeysetRecordset::Write() {
    const DaoResult<std::size_t> slot = CurrentSlot();
    if (slot.Failed()) return slot.Error();
    std::string settings;
    int count = 0;
    for (std::size_t i = 0; i < fields_.size(); ++i) {
        if (!pending_[i]) continue;
        settings += (settings.empty() ? "" : ", ") + QuoteName(fields_[i].name) + " = ?";
        ++count;
    }
    lastModified_ = keys_.KeyAt(*slot);
    if (count == 0) return {};
    DaoResult<Statement> statement = connection_->Prepare(
        "UPDATE " + tableSql_ + " SET " + settings + " WHERE " + source_.table->keySql + " = ?");
    if (statement.Failed()) return statement.Error();
    BindPending(*statement);
    statement->Bind(count + 1, keys_.KeyAt(*slot));
    if (DaoError failed = statement->Finish(); failed.Failed()) return failed;
    return connection_->Changes() > 0 ? DaoError() : MakeDaoError(dao_error::RecordDeleted);
}

DaoError KeysetRecordset::Delete() {
    CancelUpdate();
    const DaoResult<std::size_t> slot = CurrentSlot();
    if (slot.Failed()) return slot.Error();
    DaoResult<Statement> statement = connection_->Prepare("DELETE FROM " + tableSql_ + " WHERE " +
                                                          source_.table->keySql + " = ?1");
    if (statement.Failed()) return statement.Error();
    statement->Bind(1, keys_.KeyAt(*slot));
    if (DaoError failed = statement->Finish(); failed.Failed()) return failed;
    keys_.Remove(*slot);
    ForgetRow();
    return connection_->Changes() > 0 ? DaoError() : MakeDaoError(dao_error::RecordDeleted);
}

DaoResult<Bookmark> KeysetRecordset::LastModified() const {
    if (DaoError closed = CheckOpen(); closed.Failed()) return closed;
    if (!lastModified_) return MakeDaoError(dao_error::NoCurrentRecord);
    return *lastModified_;
}

}  // namespace mailvane
