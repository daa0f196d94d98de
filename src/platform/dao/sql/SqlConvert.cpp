#include "platform/dao/sql/SqlConvert.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <string_view>

namespace mailvane {
namespace {

/// The days that the engine's date type can hold: the years 100 to 9999.
constexpr double FirstSerial = -657434;
constexpr double LastSerial = 2958466;

std::optional<double> NumberInText(std::string_view text) {
    while (!text.empty() && text.front() == ' ')
        text.remove_prefix(1);
    while (!text.empty() && text.back() == ' ')
        text.remove_suffix(1);
    if (text == "True") return -1;
    if (text == "False") return 0;
    if (text.starts_with('+')) text.remove_prefix(1);
    double number = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stop != end || !std::isfinite(number)) return std::nullopt;
    return number;
}

std::optional<double> ToNumber(const DaoValue& value) {
    const auto& raw = value.Raw();
    if (const auto* truth = std::get_if<bool>(&raw)) return *truth ? -1 : 0;
    if (const auto* whole = std::get_if<std::int64_t>(&raw)) return static_cast<double>(*whole);
    if (const auto* fraction = std::get_if<double>(&raw)) return *fraction;
    if (const auto* text = std::get_if<std::string>(&raw)) return NumberInText(*text);
    if (const auto* date = std::get_if<DateTime>(&raw)) return date->Serial();
    return std::nullopt;
}

/// Whole numbers round to the nearest, and from the middle to the even one.
DaoValue ToWhole(std::optional<double> number, double lowest, double highest) {
    if (!number) return {};
    const double rounded = std::nearbyint(*number);
    if (!(rounded >= lowest && rounded <= highest)) return {};
    return static_cast<std::int64_t>(rounded);
}

DaoValue ToDate(const DaoValue& value) {
    if (const auto* date = std::get_if<DateTime>(&value.Raw())) return *date;
    if (const auto* text = std::get_if<std::string>(&value.Raw())) {
        const std::optional<DateTime> date = DateTime::Parse(*text);
        return date ? DaoValue(*date) : DaoValue();
    }
    const std::optional<double> serial = ToNumber(value);
    if (!serial || !(*serial >= FirstSerial && *serial < LastSerial)) return {};
    return DateTime::FromSerial(*serial);
}

}  // namespace

DaoValue ConvertValue(const DaoValue& value, FieldType to) {
    if (value.IsNull()) return {};
    switch (to) {
        case FieldType::Boolean: {
            const std::optional<double> number = ToNumber(value);
            return number ? DaoValue(*number != 0) : DaoValue();
        }
        case FieldType::Byte:
            return ToWhole(ToNumber(value), 0, 255);
        case FieldType::Integer:
            return ToWhole(ToNumber(value), std::numeric_limits<std::int16_t>::min(),
                           std::numeric_limits<std::int16_t>::max());
        case FieldType::Long:
            return ToWhole(ToNumber(value), std::numeric_limits<std::int32_t>::min(),
                           std::numeric_limits<std::int32_t>::max());
        case FieldType::Currency:
        case FieldType::Single:
        case FieldType::Double: {
            const std::optional<double> number = ToNumber(value);
            return number ? DaoValue(*number) : DaoValue();
        }
        case FieldType::Date:
            return ToDate(value);
        case FieldType::Text:
        case FieldType::Memo:
        case FieldType::LongBinary:
            return value.TextOrEmpty();
    }
    return {};
}

}  // namespace mailvane
