#include "platform/tables/sheets/SheetCells.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "platform/os/DateTime.h"

namespace mailvane {

namespace {

/// Days between the two beginnings of time that workbooks have.
constexpr double Days1904 = 1462;
/// Their year 1900 has a 29 February; before 1 March their days are one behind.
constexpr double FirstOfMarch1900 = 61;
/// Whole numbers up to here are written without an exponent.
constexpr double GreatestWhole = 1e18;

}  // namespace

std::string SheetNumber(double number) {
    char digits[64];
    char* const end = digits + sizeof digits;
    const char* fifteen = std::to_chars(digits, end, number, std::chars_format::general, 15).ptr;
    double back = 0;
    std::from_chars(digits, fifteen, back);
    const char* const first = digits;
    if (back == number && std::find(first, fifteen, 'e') == fifteen)
        return std::string(first, fifteen);
    if (number == std::trunc(number) && std::fabs(number) < GreatestWhole)
        return std::to_string(static_cast<std::int64_t>(number));
    return std::string(first, static_cast<const char*>(std::to_chars(digits, end, number).ptr));
}

std::string SheetDate(double days, bool from1904) {
    const bool isMoment = days >= 1;  // less is a time of day without a date
    if (isMoment && from1904) days += Days1904;
    if (isMoment && !from1904 && days < FirstOfMarch1900) days += 1;
    return DateTime::FromSerial(days).Iso();
}

bool IsDateFormat(std::string_view code) {
    for (std::size_t i = 0; i < code.size() && code[i] != ';'; ++i) {
        if (code[i] == '"') {
            i = code.find('"', i + 1);
            if (i == std::string_view::npos) return false;
        } else if (code[i] == '\\' || code[i] == '_' || code[i] == '*') {
            ++i;
        } else if (code[i] == '[') {
            // A colour, a condition, a locale; or hours that count on: [h], [mm], [ss].
            const std::size_t close = code.find(']', i);
            if (close == std::string_view::npos) return false;
            const std::string_view inside = code.substr(i + 1, close - i - 1);
            if (inside.find_first_not_of("hHmMsS") == std::string_view::npos) return true;
            i = close;
        } else if (code.substr(i).starts_with("General")) {
            return false;
        } else if (std::string_view("dDmMyYhHsS").find(code[i]) != std::string_view::npos) {
            return true;
        }
    }
    return false;
}

void SheetRow::Put(int column, ValueKind kind, std::string_view text) {
    if (column < 0 || column >= MostSheetColumns || kind == ValueKind::Null) return;
    const auto index = static_cast<std::size_t>(column);
    if (values_.size() <= index) values_.resize(index + 1);
    for (; used_ <= index; ++used_)
        values_[used_].kind = ValueKind::Null;
    values_[index].kind = kind;
    values_[index].text.assign(text);
}

void SheetRow::Say(FrameWriter& frames, std::int64_t number) const {
    if (!HasValues()) return;
    frames.Begin(frame::Row);
    frames.Put(number);
    for (std::size_t i = 0; i < used_; ++i) {
        const bool isNull = values_[i].kind == ValueKind::Null;
        frames.Put(isNull ? Cell{} : Cell{values_[i].kind, values_[i].text});
    }
    frames.Close();
}

}  // namespace mailvane
