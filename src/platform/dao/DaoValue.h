#pragma once

#include <cstdint>
#include <string>
#include <variant>

#include "platform/dao/DaoError.h"
#include "platform/os/DateTime.h"

namespace mailvane {

/// Engine field types, by the engine's own numbers.
enum class FieldType : int {
    Boolean = 1,
    Byte = 2,
    Integer = 3,  ///< 16 bits
    Long = 4,     ///< 32 bits
    Currency = 5,
    Single = 6,
    Double = 7,
    Date = 8,
    Text = 10,
    LongBinary = 11,
    Memo = 12
};

/// One column value: Null, a truth value, a whole number, a fraction, a text (or bytes), a date.
class DaoValue {
public:
    DaoValue() = default;  ///< Null
    DaoValue(bool value) : value_(value) {}
    DaoValue(int value) : value_(std::int64_t{value}) {}
    DaoValue(std::int64_t value) : value_(value) {}
    DaoValue(double value) : value_(value) {}
    DaoValue(const char* value) : value_(std::string(value)) {}
    DaoValue(std::string value) : value_(std::move(value)) {}
    DaoValue(DateTime value) : value_(value) {}

    bool IsNull() const { return std::holds_alternative<std::monostate>(value_); }
    const std::variant<std::monostate, bool, std::int64_t, double, std::string, DateTime>& Raw()
        const {
        return value_;
    }

    /// The default conversion: "True" and "False", numbers in their shortest form, general dates.
    /// Null fails with 94.
    DaoResult<std::string> ToText() const;
    std::string TextOrEmpty() const;  ///< Null gives ""
    std::int64_t NumberOr(
        std::int64_t fallback) const;          ///< whole number of a number or numeric text
    DateTime DateOr(DateTime fallback) const;  ///< a date, or a text that reads as one

    friend bool operator==(const DaoValue&, const DaoValue&) = default;

private:
    std::variant<std::monostate, bool, std::int64_t, double, std::string, DateTime> value_;
};

}  // namespace mailvane
