#include "database/exchange/ColumnGuess.h"

#include <charconv>

#include "platform/os/DateTime.h"

namespace mailvane {

namespace {

constexpr std::size_t ExactDigits = 15;
constexpr int WideSize = 8;
constexpr unsigned NullBit = 1u << static_cast<unsigned>(ValueKind::Null);
constexpr unsigned NumberBit = 1u << static_cast<unsigned>(ValueKind::Number);
constexpr unsigned DateBit = 1u << static_cast<unsigned>(ValueKind::Date);
constexpr unsigned TruthBit = 1u << static_cast<unsigned>(ValueKind::Truth);
constexpr unsigned BytesBit = 1u << static_cast<unsigned>(ValueKind::Bytes);

bool IsDigit(char sign) {
    return sign >= '0' && sign <= '9';
}

/// Digits from the first that counts to the last.
std::size_t SignificantDigits(std::string_view number) {
    std::size_t digits = 0;
    for (const char sign : number) {
        if (sign == 'e' || sign == 'E') break;
        if (IsDigit(sign) && (digits > 0 || sign != '0')) ++digits;
    }
    return digits;
}

bool IsWhole64(std::string_view text) {
    std::int64_t number = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
    return read.ec == std::errc() && read.ptr == text.data() + text.size();
}

}  // namespace

/// Of a text of the form "-12.5": nothing that would be shown in another way.
unsigned ColumnGuess::NumberForms(std::string_view text) {
    const bool negative = text.front() == '-';
    if (negative) text.remove_prefix(1);
    std::size_t whole = 0;
    while (whole < text.size() && IsDigit(text[whole]))
        ++whole;
    if (whole == 0 || whole > ExactDigits || (whole > 1 && text.front() == '0')) return 0;
    if (whole == text.size()) {
        if (negative && text == "0") return 0;
        std::int64_t number = 0;
        std::from_chars(text.data(), text.data() + whole, number);
        const bool narrow = number <= 2147483647;
        return (narrow ? unsigned{Whole} : 0u) | WideWhole | Fraction;
    }
    const std::string_view decimals = text.substr(whole + 1);
    const bool plain = text[whole] == '.' && !decimals.empty() && decimals.back() != '0' &&
                       decimals.find_first_not_of("0123456789") == std::string_view::npos;
    // Smaller ones are shown with an exponent.
    const bool tooSmall = text.front() == '0' && decimals.starts_with("0000");
    return plain && !tooSmall && whole + decimals.size() <= ExactDigits ? unsigned{Fraction} : 0u;
}

unsigned ColumnGuess::FormsOf(std::string_view text) {
    constexpr std::size_t LongestForm = 32;
    if (text.empty() || text.size() > LongestForm) return 0;
    if (text == "True" || text == "False") return Truth;
    if (!IsDigit(text.front()) && text.front() != '-') return 0;
    if (const unsigned number = NumberForms(text); number != 0) return number;
    const bool iso = text.size() >= 10 && text[4] == '-';
    const std::size_t year = text.find('/', text.find('/') + 1);
    const bool monthFirst = !iso && year != std::string_view::npos && year + 5 <= text.size() &&
                            IsDigit(text[year + 3]);
    if (!iso && !monthFirst) return 0;
    if (!DateTime::Parse(text)) return 0;
    return iso ? IsoDate : MonthFirst;
}

void ColumnGuess::Look(const Cell& cell) {
    switch (cell.kind) {
        case ValueKind::Null:
            return;
        case ValueKind::Date:
            forms_ &= IsoDate;
            return;
        case ValueKind::Truth:
            forms_ &= Truth;
            return;
        case ValueKind::Bytes:
            forms_ = 0;
            return;
        case ValueKind::Number: {
            const bool kept = SignificantDigits(cell.text) <= ExactDigits;
            keepsDigits_ = keepsDigits_ && kept;
            wholeNumbers_ = wholeNumbers_ && IsWhole64(cell.text);
            forms_ &= FormsOf(cell.text) | (kept ? unsigned{Fraction} : 0u);
            return;
        }
        case ValueKind::Text:
            break;
    }
    forms_ &= FormsOf(cell.text);
    if ((forms_ & MonthFirst) == 0 || monthProven_) return;
    const auto date = DateTime::Parse(cell.text);
    monthProven_ = date && date->Day() > 12;
}

/// Whether all values are of the kind that the source's declaration promises.
bool ColumnGuess::DeclaredFits(SourceType declared) const {
    switch (declared) {
        case SourceType::Boolean:
            return OnlyKinds(NullBit | TruthBit);
        case SourceType::Byte:
        case SourceType::Integer:
        case SourceType::Long:
        case SourceType::Wide:
            return OnlyKinds(NullBit | NumberBit) && wholeNumbers_;
        case SourceType::Currency:
            return OnlyKinds(NullBit | NumberBit) && keepsDigits_;
        case SourceType::Single:
        case SourceType::Double:
            return OnlyKinds(NullBit | NumberBit);
        case SourceType::Date:
            return OnlyKinds(NullBit | DateBit);
        case SourceType::Bytes:
            return OnlyKinds(NullBit | BytesBit);
        case SourceType::Text:
        case SourceType::Memo:
            return true;
        case SourceType::Unknown:
            break;
    }
    return false;
}

void ColumnGuess::SetGuessedType(Field& field) const {
    field.type = FieldType::Text;
    if ((kinds_ & ~NullBit) == 0) return;
    if ((kinds_ & ~NullBit) == BytesBit)
        field.type = FieldType::LongBinary;
    else if (forms_ & (Whole | WideWhole))
        field.type = FieldType::Long;
    else if (forms_ & Fraction)
        field.type = FieldType::Double;
    else if ((forms_ & IsoDate) != 0 || ((forms_ & MonthFirst) != 0 && monthProven_))
        field.type = FieldType::Date;
    else if ((forms_ & Truth) != 0 && (kinds_ & NullBit) == 0)
        field.type = FieldType::Boolean;  // such a column has no Null
    if (field.type == FieldType::Long && (forms_ & Whole) == 0) field.size = WideSize;
}

Field ColumnGuess::FieldFor(const SourceColumn& source) const {
    static constexpr FieldType Types[] = {
        FieldType::Text,      FieldType::Boolean, FieldType::Byte,     FieldType::Integer,
        FieldType::Long,      FieldType::Long,    FieldType::Currency, FieldType::Single,
        FieldType::Double,    FieldType::Date,    FieldType::Text,     FieldType::Memo,
        FieldType::LongBinary};
    Field field;
    field.name = source.name;
    if (DeclaredFits(source.type)) {
        field.type = Types[static_cast<std::size_t>(source.type)];
        if (source.type == SourceType::Wide) field.size = WideSize;
        if (source.autoNumber && field.type == FieldType::Long)
            field.attributes = AutoIncrementAttribute;
    } else {
        SetGuessedType(field);
    }
    if (field.type == FieldType::Text && longest_ > std::size_t{DefaultTextSize})
        field.type = FieldType::Memo;
    field.allowZeroLength = field.IsText();
    return field;
}

}  // namespace mailvane
