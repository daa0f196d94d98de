#include "platform/dao/structure/FieldTypes.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <initializer_list>
#include <limits>
#include <optional>
#include <string_view>

#include "platform/dao/sql/SqlConvert.h"
#include "platform/dao/sql/SqlPlan.h"

namespace mailvane {

namespace {

constexpr std::string_view ZeroLengthMark = "ZEROLENGTH ";
/// Field::size of a whole number of 64 bits.
constexpr int WideSize = 8;

std::string Upper(std::string_view text) {
    std::string upper(text);
    std::transform(upper.begin(), upper.end(), upper.begin(), [](char letter) {
        return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
    });
    return upper;
}

std::string_view Trim(std::string_view text) {
    while (!text.empty() && text.front() == ' ')
        text.remove_prefix(1);
    while (!text.empty() && text.back() == ' ')
        text.remove_suffix(1);
    return text;
}

struct TypeWords {
    FieldType type;
    std::initializer_list<std::string_view> words;
};

/// The first row with a word that the declared type holds decides.
const TypeWords WordsOfTypes[] = {
    {FieldType::Memo, {"MEMO", "CLOB", "LONGTEXT", "MEDIUMTEXT"}},
    {FieldType::Date, {"DATE", "TIME"}},
    {FieldType::Text, {"CHAR", "TEXT", "STRING"}},
    {FieldType::Boolean, {"BOOL", "YESNO", "LOGICAL"}},
    {FieldType::LongBinary, {"BLOB", "BINARY", "IMAGE", "OLE"}},
    {FieldType::Currency, {"CURRENCY", "MONEY"}},
    {FieldType::Single, {"SINGLE"}},
    {FieldType::Double, {"REAL", "FLOA", "DOUB", "NUMERIC", "DECIMAL", "NUMBER"}},
    {FieldType::Byte, {"BYTE"}},
    {FieldType::Integer, {"SMALLINT", "TINYINT", "INT2"}},
    {FieldType::Long, {"INT", "LONG", "COUNTER"}},
};

FieldType TypeOfDeclared(const std::string& upper) {
    for (const TypeWords& row : WordsOfTypes)
        for (const std::string_view word : row.words)
            if (upper.find(word) != std::string::npos) return row.type;
    return FieldType::Text;
}

/// The number in the parentheses of a declared type; 0 when there is none.
int SizeInDeclared(const std::string& declaredType) {
    const std::size_t open = declaredType.find('(');
    if (open == std::string::npos) return 0;
    int size = 0;
    const std::string_view digits = Trim(std::string_view(declaredType).substr(open + 1));
    std::from_chars(digits.data(), digits.data() + digits.size(), size);
    return std::max(size, 0);
}

bool IsQuoted(std::string_view text) {
    return text.size() >= 2 && text.front() == text.back() &&
           (text.front() == '"' || text.front() == '\'');
}

/// The text inside quotes, with doubled ones made single.
std::string Unquoted(std::string_view text) {
    const char quote = text.front();
    std::string inside;
    for (std::size_t i = 1; i + 1 < text.size(); ++i) {
        inside += text[i];
        if (text[i] == quote && text[i + 1] == quote) ++i;
    }
    return inside;
}

std::optional<bool> TruthWord(std::string_view text) {
    for (const std::string_view word : {"true", "yes", "on"})
        if (SameName(text, word)) return true;
    for (const std::string_view word : {"false", "no", "off"})
        if (SameName(text, word)) return false;
    return std::nullopt;
}

/// The SQL of a default that is an expression; "" for any other text.
std::string ExpressionSql(std::string_view text) {
    const bool marked = text.starts_with('=');
    if (marked) text = Trim(text.substr(1));
    if (SameName(text, "Now()")) return "(datetime('now', 'localtime'))";
    if (SameName(text, "Date()")) return "(date('now', 'localtime') || ' 00:00:00')";
    return marked ? "(" + std::string(text) + ")" : std::string();
}

/// A value as a literal of SQL.
std::string LiteralSql(const DaoValue& value) {
    if (const auto* truth = std::get_if<bool>(&value.Raw())) return *truth ? "1" : "0";
    if (const auto* date = std::get_if<DateTime>(&value.Raw())) return QuoteText(date->Iso());
    if (const auto* text = std::get_if<std::string>(&value.Raw())) return QuoteText(*text);
    return value.TextOrEmpty();
}

bool IsNumber(const std::string& text) {
    double number = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stop == end;
}

DaoValue ConvertToBoolean(const DaoValue& value) {
    if (value.IsNull()) return false;  // a truth value is never Null
    if (const auto* text = std::get_if<std::string>(&value.Raw()))
        if (const std::optional<bool> truth = TruthWord(Trim(*text))) return *truth;
    return ConvertValue(value, FieldType::Boolean);
}

DaoValue ConvertToWide(const DaoValue& value) {
    if (const auto* whole = std::get_if<std::int64_t>(&value.Raw())) return *whole;
    if (const auto* text = std::get_if<std::string>(&value.Raw())) {
        const std::string_view digits = Trim(*text);
        std::int64_t whole = 0;
        const char* end = digits.data() + digits.size();
        const auto [stop, error] = std::from_chars(digits.data(), end, whole);
        if (error == std::errc() && stop == end) return whole;
    }
    // What is no whole number is rounded to one, if it fits.
    constexpr std::int64_t Impossible = std::numeric_limits<std::int64_t>::min();
    const std::int64_t rounded = value.NumberOr(Impossible);
    return rounded == Impossible ? DaoValue() : DaoValue(rounded);
}

/// Fractions are kept with the digits that the type has: seven in all, or four behind the point.
DaoValue ConvertToFraction(const DaoValue& value, FieldType type) {
    const DaoValue converted = ConvertValue(value, type);
    const auto* number = std::get_if<double>(&converted.Raw());
    if (number == nullptr) return {};
    if (type == FieldType::Currency) {
        constexpr double Limit = 922337203685477.0;
        if (!(std::fabs(*number) <= Limit)) return {};
        return std::nearbyint(*number * 10000) / 10000;
    }
    if (type == FieldType::Double) return converted;
    if (!(std::fabs(*number) <= static_cast<double>(std::numeric_limits<float>::max()))) return {};
    char digits[40];
    const char* end =
        std::to_chars(digits, digits + sizeof digits, *number, std::chars_format::general, 7).ptr;
    double rounded = 0;
    std::from_chars(digits, end, rounded);
    return rounded;
}

DaoValue Convert(const DaoValue& value, const Field& field) {
    switch (field.type) {
        case FieldType::Boolean:
            return ConvertToBoolean(value);
        case FieldType::Currency:
        case FieldType::Single:
        case FieldType::Double:
            return ConvertToFraction(value, field.type);
        case FieldType::Long:
            return field.size == WideSize ? ConvertToWide(value) : ConvertValue(value, field.type);
        default:
            return ConvertValue(value, field.type);
    }
}

}  // namespace

std::size_t TextLimit(const Field& field) {
    if (field.type != FieldType::Text) return 0;
    return static_cast<std::size_t>(field.size > 0 ? field.size : DefaultTextSize);
}

std::string DeclaredType(const Field& field) {
    const std::string mark(field.allowZeroLength ? ZeroLengthMark : "");
    switch (field.type) {
        case FieldType::Boolean:
            return "BOOLEAN";
        case FieldType::Byte:
            return "BYTE";
        case FieldType::Integer:
            return "SMALLINT";
        case FieldType::Long:
            if (field.attributes & AutoIncrementAttribute) return "INTEGER";
            return field.size == WideSize ? "BIGINT" : "LONG INTEGER";
        case FieldType::Currency:
            return "CURRENCY";
        case FieldType::Single:
            return "SINGLE REAL";
        case FieldType::Double:
            return "DOUBLE";
        case FieldType::Date:
            return "DATETIME TEXT";
        case FieldType::LongBinary:
            return "BLOB";
        case FieldType::Memo:
            return mark + "MEMO TEXT";
        case FieldType::Text:
            break;
    }
    return mark + "TEXT(" + std::to_string(TextLimit(field)) + ")";
}

void ReadDeclaredType(const std::string& declaredType, Field& field) {
    const std::string upper = Upper(declaredType);
    field.type = upper == "BIT" ? FieldType::Boolean : TypeOfDeclared(upper);
    field.allowZeroLength = upper.starts_with(ZeroLengthMark);
    field.size = 0;
    if (field.type == FieldType::Text) {
        const int size = SizeInDeclared(declaredType);
        field.size = size > 0 ? size : DefaultTextSize;
    } else if (field.type == FieldType::Long && upper.find("LONG") == std::string::npos) {
        field.size = WideSize;
    }
}

DaoResult<std::string> DefaultSql(const Field& field) {
    const std::string_view text = Trim(field.defaultValue);
    if (text.empty()) return std::string(field.type == FieldType::Boolean ? "0" : "");
    if (std::string expression = ExpressionSql(text); !expression.empty()) return expression;
    std::string plain(text);
    if (IsQuoted(text)) plain = Unquoted(text);
    if (field.type == FieldType::Date && plain.size() > 2 && plain.front() == '#')
        plain = plain.substr(1, plain.size() - 2);
    const DaoResult<DaoValue> value = ConvertForField(plain, field);
    if (value.Failed()) return value.Error();
    return LiteralSql(*value);
}

std::string DefaultText(const std::string& sql) {
    if (sql.empty() || SameName(sql, "NULL")) return {};
    if (IsNumber(sql)) return sql;
    if (!IsQuoted(sql)) return "=" + sql;
    std::string text = "\"";
    for (const char letter : Unquoted(sql))
        text.append(letter == '"' ? 2 : 1, letter);
    return text + "\"";
}

DaoResult<std::string> ColumnDefinition(const Field& field, bool refusesNull) {
    const DaoResult<std::string> defaultSql = DefaultSql(field);
    if (defaultSql.Failed()) return defaultSql.Error();
    std::string definition = QuoteName(field.name) + " " + DeclaredType(field);
    if (field.IsText()) definition += " COLLATE NOCASE";
    if (field.required || refusesNull) definition += " NOT NULL";
    if (!defaultSql->empty()) definition += " DEFAULT " + *defaultSql;
    return definition;
}

DaoResult<DaoValue> ConvertForField(const DaoValue& value, const Field& field) {
    if (value.IsNull() && field.type != FieldType::Boolean) return value;
    DaoValue converted = Convert(value, field);
    if (converted.IsNull()) return MakeDaoError(dao_error::DataConversion);
    const auto* text = std::get_if<std::string>(&converted.Raw());
    const std::size_t limit = TextLimit(field);
    if (text != nullptr && limit > 0 && text->size() > limit)
        return MakeDaoError(dao_error::FieldTooSmall);
    return converted;
}

}  // namespace mailvane
