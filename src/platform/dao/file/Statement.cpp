#include "platform/dao/file/Statement.h"

#include <sqlite3.h>

#include <utility>

#include "platform/dao/file/Connection.h"

namespace mailvane {

namespace {

/// A text that reads as a date is one; other programs' files may hold anything in such a column.
DaoValue DateInText(std::string text) {
    const std::optional<DateTime> date = DateTime::Parse(text);
    return date ? DaoValue(*date) : DaoValue(std::move(text));
}

DaoValue WholeAs(std::int64_t number, FieldType type) {
    switch (type) {
        case FieldType::Boolean:
            return number != 0;
        case FieldType::Currency:
        case FieldType::Single:
        case FieldType::Double:
            return static_cast<double>(number);
        case FieldType::Text:
        case FieldType::Memo:
            return std::to_string(number);
        default:
            return number;
    }
}

DaoValue FractionAs(double number, FieldType type) {
    if (type == FieldType::Text || type == FieldType::Memo) return DaoValue(number).TextOrEmpty();
    return number;
}

}  // namespace

Statement::Statement(Connection& connection, std::string sql, sqlite3_stmt* handle)
    : connection_(&connection), sql_(std::move(sql)), handle_(handle) {}

Statement::Statement(Statement&& other) noexcept
    : connection_(other.connection_),
      sql_(std::move(other.sql_)),
      handle_(std::exchange(other.handle_, nullptr)) {}

Statement::~Statement() {
    if (handle_ != nullptr) connection_->GiveBack(std::move(sql_), handle_);
}

void Statement::Bind(int parameter, std::int64_t value) {
    sqlite3_bind_int64(handle_, parameter, value);
}

void Statement::Bind(int parameter, const std::string& text) {
    sqlite3_bind_text64(handle_, parameter, text.data(), text.size(), SQLITE_TRANSIENT,
                        SQLITE_UTF8);
}

void Statement::BindView(int parameter, std::string_view text) {
    // A null pointer would bind Null.
    sqlite3_bind_text64(handle_, parameter, text.data() == nullptr ? "" : text.data(), text.size(),
                        SQLITE_STATIC, SQLITE_UTF8);
}

void Statement::Unbind() {
    sqlite3_clear_bindings(handle_);
}

void Statement::Bind(int parameter, const DaoValue& value, FieldType type) {
    const auto& raw = value.Raw();
    if (const auto* truth = std::get_if<bool>(&raw)) {
        sqlite3_bind_int(handle_, parameter, *truth ? 1 : 0);
    } else if (const auto* whole = std::get_if<std::int64_t>(&raw)) {
        sqlite3_bind_int64(handle_, parameter, *whole);
    } else if (const auto* fraction = std::get_if<double>(&raw)) {
        sqlite3_bind_double(handle_, parameter, *fraction);
    } else if (const auto* date = std::get_if<DateTime>(&raw)) {
        Bind(parameter, date->Iso());
    } else if (const auto* text = std::get_if<std::string>(&raw)) {
        if (type == FieldType::LongBinary)
            sqlite3_bind_blob64(handle_, parameter, text->data(), text->size(), SQLITE_TRANSIENT);
        else
            Bind(parameter, *text);
    } else {
        sqlite3_bind_null(handle_, parameter);
    }
}

DaoResult<bool> Statement::Step() {
    const int code = sqlite3_step(handle_);
    if (code == SQLITE_ROW) return true;
    if (code == SQLITE_DONE) return false;
    return connection_->ErrorOf(code);
}

DaoError Statement::Finish() {
    for (;;) {
        const DaoResult<bool> row = Step();
        if (row.Failed()) return row.Error();
        if (!*row) return {};
    }
}

void Statement::Rewind() {
    sqlite3_reset(handle_);
}

int Statement::ColumnCount() const {
    return sqlite3_column_count(handle_);
}

std::string Statement::ColumnName(int column) const {
    const char* name = sqlite3_column_name(handle_, column);
    return name == nullptr ? std::string() : name;
}

std::string Statement::ColumnDeclaredType(int column) const {
    const char* type = sqlite3_column_decltype(handle_, column);
    return type == nullptr ? std::string() : type;
}

bool Statement::IsNull(int column) const {
    return sqlite3_column_type(handle_, column) == SQLITE_NULL;
}

std::int64_t Statement::Whole(int column) const {
    return sqlite3_column_int64(handle_, column);
}

std::string_view Statement::View(int column) const {
    const void* bytes = sqlite3_column_blob(handle_, column);
    const int length = sqlite3_column_bytes(handle_, column);
    if (bytes == nullptr || length <= 0) return {};
    return {static_cast<const char*>(bytes), static_cast<std::size_t>(length)};
}

std::string Statement::Text(int column) const {
    return std::string(View(column));
}

StoredKind Statement::KindOf(int column) const {
    switch (sqlite3_column_type(handle_, column)) {
        case SQLITE_NULL:
            return StoredKind::Null;
        case SQLITE_INTEGER:
        case SQLITE_FLOAT:
            return StoredKind::Number;
        case SQLITE_BLOB:
            return StoredKind::Bytes;
        default:
            return StoredKind::Text;
    }
}

DaoValue Statement::Value(int column, FieldType type) const {
    switch (sqlite3_column_type(handle_, column)) {
        case SQLITE_NULL:
            return {};
        case SQLITE_INTEGER:
            return WholeAs(Whole(column), type);
        case SQLITE_FLOAT:
            return FractionAs(sqlite3_column_double(handle_, column), type);
        default:
            return type == FieldType::Date ? DateInText(Text(column)) : DaoValue(Text(column));
    }
}

FieldType Statement::TypeOfValue(int column) const {
    switch (sqlite3_column_type(handle_, column)) {
        case SQLITE_INTEGER:
            return FieldType::Long;
        case SQLITE_FLOAT:
            return FieldType::Double;
        case SQLITE_BLOB:
            return FieldType::LongBinary;
        default:
            return FieldType::Text;
    }
}

void Statement::BindColumnOf(int parameter, const Statement& source, int column) {
    sqlite3_bind_value(handle_, parameter, sqlite3_column_value(source.handle_, column));
}

}  // namespace mailvane
