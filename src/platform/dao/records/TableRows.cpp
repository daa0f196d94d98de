#include "platform/dao/records/TableRows.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <utility>

#include "platform/dao/file/Connection.h"
#include "platform/dao/sql/SqlPlan.h"
#include "platform/dao/structure/FieldTypes.h"
#include "platform/os/DateTime.h"

namespace mailvane {

namespace {

constexpr int WideSize = 8;

DaoResult<std::shared_ptr<const TableInfo>> FindTable(Connection& connection,
                                                      const std::string& name) {
    if (!connection.IsOpen()) return MakeDaoError(dao_error::ObjectInvalid);
    auto table = connection.Tables().Find(name);
    if (table.Ok() && *table == nullptr) return MakeDaoError(dao_error::TableNotFound, name);
    return table;
}

/// The bounds of a column of whole numbers; nothing for any other.
std::optional<std::pair<std::int64_t, std::int64_t>> WholeBounds(const Field& field) {
    using Bounds = std::pair<std::int64_t, std::int64_t>;
    using std::numeric_limits;
    switch (field.type) {
        case FieldType::Byte:
            return Bounds{0, 255};
        case FieldType::Integer:
            return Bounds{numeric_limits<std::int16_t>::min(), numeric_limits<std::int16_t>::max()};
        case FieldType::Long:
            if (field.size == WideSize)
                return Bounds{numeric_limits<std::int64_t>::min(),
                              numeric_limits<std::int64_t>::max()};
            return Bounds{numeric_limits<std::int32_t>::min(), numeric_limits<std::int32_t>::max()};
        default:
            return std::nullopt;
    }
}

/// The number that the whole text is.
template <class Number>
std::optional<Number> NumberIn(std::string_view text) {
    Number number{};
    const char* const end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, number);
    if (read.ec != std::errc() || read.ptr != end) return std::nullopt;
    return number;
}

/// A date in the form in which it is stored.
bool IsStoredDate(std::string_view text) {
    constexpr std::string_view Form = "0000-00-00 00:00:00";
    if (text.size() != Form.size()) return false;
    int parts[6] = {};
    int part = 0;
    for (std::size_t i = 0; i < Form.size(); ++i) {
        const bool digit = text[i] >= '0' && text[i] <= '9';
        if (Form[i] != '0' ? text[i] != Form[i] : !digit) return false;
        if (digit)
            parts[part] = parts[part] * 10 + (text[i] - '0');
        else
            ++part;
    }
    return DateTime::FromParts(parts[0], parts[1], parts[2], parts[3], parts[4], parts[5])
        .has_value();
}

}  // namespace

// --- Adding ---------------------------------------------------------------------------------

TableAppender::TableAppender(std::shared_ptr<Connection> connection, std::vector<Field> fields,
                             Statement statement)
    : connection_(std::move(connection)),
      fields_(std::move(fields)),
      statement_(std::move(statement)) {
    for (std::size_t i = 0; i < fields_.size(); ++i)
        if (fields_[i].type == FieldType::Boolean) truths_.push_back(i);
    Clear();
}

DaoResult<std::unique_ptr<TableAppender>> TableAppender::Open(
    std::shared_ptr<Connection> connection, const std::string& table,
    const std::vector<std::string>& columns) {
    const auto info = FindTable(*connection, table);
    if (info.Failed()) return info.Error();
    std::vector<Field> fields;
    std::string names;
    std::string places;
    for (const std::string& column : columns) {
        const Field* field = (*info)->definition.FindField(column);
        if (field == nullptr) return MakeDaoError(dao_error::ItemNotFound);
        if ((field->attributes & UpdatableFieldAttribute) == 0)
            return MakeDaoError(dao_error::FieldNotUpdatable, field->name);
        names += (names.empty() ? "" : ", ") + QuoteName(field->name);
        places += places.empty() ? "?" : ", ?";
        fields.push_back(*field);
    }
    if (fields.empty()) return MakeDaoError(dao_error::NoFieldDefined);
    DaoResult<Statement> statement =
        connection->Prepare("INSERT INTO " + QuoteName((*info)->definition.name) + " (" + names +
                            ") VALUES (" + places + ")");
    if (statement.Failed()) return statement.Error();
    return std::unique_ptr<TableAppender>(
        new TableAppender(std::move(connection), std::move(fields), std::move(*statement)));
}

DaoError TableAppender::Set(std::size_t index, const DaoValue& value) {
    if (index >= fields_.size()) return MakeDaoError(dao_error::ItemNotFound);
    const DaoResult<DaoValue> converted = ConvertForField(value, fields_[index]);
    if (converted.Failed()) return converted.Error();
    statement_.Bind(static_cast<int>(index) + 1, *converted, fields_[index].type);
    return {};
}

DaoError TableAppender::SetText(std::size_t index, std::string_view text) {
    if (index >= fields_.size()) return MakeDaoError(dao_error::ItemNotFound);
    if (SetQuickly(index, text)) return {};
    return Set(index, DaoValue(std::string(text)));
}

/// The ways that most values take; false for one that needs a closer look.
bool TableAppender::SetQuickly(std::size_t index, std::string_view text) {
    const Field& field = fields_[index];
    const int parameter = static_cast<int>(index) + 1;
    if (field.IsText()) {
        const std::size_t limit = TextLimit(field);
        if (limit > 0 && text.size() > limit) return false;
        statement_.BindView(parameter, text);
        return true;
    }
    if (const auto bounds = WholeBounds(field)) {
        const auto whole = NumberIn<std::int64_t>(text);
        if (!whole || *whole < bounds->first || *whole > bounds->second) return false;
        statement_.Bind(parameter, *whole);
        return true;
    }
    if (field.type == FieldType::Double) {
        const auto number = NumberIn<double>(text);
        if (!number || !std::isfinite(*number)) return false;
        statement_.Bind(parameter, DaoValue(*number), field.type);
        return true;
    }
    if (field.type != FieldType::Date || !IsStoredDate(text)) return false;
    statement_.BindView(parameter, text);
    return true;
}

void TableAppender::Clear() {
    statement_.Unbind();
    for (const std::size_t index : truths_)
        statement_.Bind(static_cast<int>(index) + 1, std::int64_t{0});
}

DaoError TableAppender::Append() {
    if (!connection_->IsOpen()) return MakeDaoError(dao_error::ObjectInvalid);
    DaoError outcome = statement_.Finish();
    statement_.Rewind();
    Clear();
    return outcome;
}

// --- Walking --------------------------------------------------------------------------------

TableScan::TableScan(std::shared_ptr<Connection> connection, std::vector<Field> fields,
                     std::string find, Statement statement)
    : connection_(std::move(connection)),
      fields_(std::move(fields)),
      find_(std::move(find)),
      walk_(std::move(statement)),
      row_(&walk_),
      numbers_(fields_.size()) {}

DaoResult<std::unique_ptr<TableScan>> TableScan::Open(std::shared_ptr<Connection> connection,
                                                      const std::string& table) {
    const auto info = FindTable(*connection, table);
    if (info.Failed()) return info.Error();
    std::vector<Field> fields = (*info)->definition.fields;
    std::string names;
    for (const Field& field : fields)
        names += (names.empty() ? "" : ", ") + QuoteName(field.name);
    const std::string rows = "SELECT " + names + " FROM " + QuoteName((*info)->definition.name);
    const std::string& key = (*info)->keySql;
    DaoResult<Statement> statement =
        connection->Prepare(key.empty() ? rows : rows + " ORDER BY " + key);
    if (statement.Failed()) return statement.Error();
    return std::unique_ptr<TableScan>(new TableScan(
        std::move(connection), std::move(fields),
        key.empty() ? std::string() : rows + " WHERE " + key + " = ?1", std::move(*statement)));
}

DaoResult<bool> TableScan::Next() {
    if (!connection_->IsOpen()) return MakeDaoError(dao_error::ObjectInvalid);
    row_ = &walk_;
    return walk_.Step();
}

DaoResult<bool> TableScan::Find(Bookmark bookmark) {
    if (!connection_->IsOpen()) return MakeDaoError(dao_error::ObjectInvalid);
    if (find_.empty()) return MakeDaoError(dao_error::NoCurrentRecord);
    if (!found_) {
        DaoResult<Statement> prepared = connection_->Prepare(find_);
        if (prepared.Failed()) return prepared.Error();
        found_.emplace(std::move(*prepared));
    }
    found_->Rewind();
    found_->Bind(1, bookmark);
    row_ = &*found_;
    return found_->Step();
}

StoredKind TableScan::KindOf(std::size_t index) const {
    return row_->KindOf(static_cast<int>(index));
}

std::string_view TableScan::TextOf(std::size_t index) const {
    const int column = static_cast<int>(index);
    if (row_->KindOf(column) != StoredKind::Number) return row_->View(column);
    numbers_[index] = row_->Value(column, fields_[index].type).TextOrEmpty();
    return numbers_[index];
}

}  // namespace mailvane
