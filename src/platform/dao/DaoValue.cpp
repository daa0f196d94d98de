#include "platform/dao/DaoValue.h"

#include <charconv>
#include <cmath>

#include "platform/dao/sql/SqlConvert.h"

namespace mailvane {

namespace {

/// Fifteen significant digits, as few as needed; the decimal sign is a point in every locale.
std::string NumberText(double number) {
    if (number == 0) return "0";
    constexpr int SignificantDigits = 15;
    char buffer[40];
    const auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, number,
                                            std::chars_format::general, SignificantDigits);
    std::string text(buffer, end);
    if (const std::size_t exponent = text.find('e'); exponent != std::string::npos)
        text[exponent] = 'E';
    return text;
}

struct TextConversion {
    std::string operator()(std::monostate) const { return {}; }
    std::string operator()(bool value) const { return value ? "True" : "False"; }
    std::string operator()(std::int64_t value) const { return std::to_string(value); }
    std::string operator()(double value) const { return NumberText(value); }
    std::string operator()(const std::string& value) const { return value; }
    std::string operator()(DateTime value) const { return value.GeneralDate(); }
};

}  // namespace

DaoResult<std::string> DaoValue::ToText() const {
    if (IsNull()) return MakeDaoError(dao_error::InvalidNull);
    return TextOrEmpty();
}

std::string DaoValue::TextOrEmpty() const {
    return std::visit(TextConversion{}, value_);
}

std::int64_t DaoValue::NumberOr(std::int64_t fallback) const {
    if (const auto* whole = std::get_if<std::int64_t>(&value_)) return *whole;
    const DaoValue converted = ConvertValue(*this, FieldType::Double);
    const auto* number = std::get_if<double>(&converted.value_);
    if (number == nullptr) return fallback;
    // The middle between two whole numbers goes to the even one.
    const double rounded = std::nearbyint(*number);
    constexpr double Limit = 9223372036854775808.0;
    if (!(rounded >= -Limit && rounded < Limit)) return fallback;
    return static_cast<std::int64_t>(rounded);
}

DateTime DaoValue::DateOr(DateTime fallback) const {
    if (const auto* date = std::get_if<DateTime>(&value_)) return *date;
    if (const auto* text = std::get_if<std::string>(&value_))
        return DateTime::Parse(*text).value_or(fallback);
    return fallback;
}

}  // namespace mailvane
