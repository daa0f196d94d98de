#pragma once

#include <cstdint>

#include "platform/dao/structure/TableDef.h"
#include "platform/tables/TableSource.h"

namespace mailvane {

/// Finds the type of a column from all of its values. A text becomes a number only when the number
/// is shown as the same text again: 00123, +1, 1.50 and what has more than 15 digits stay texts. A
/// date is "yyyy-mm-dd", with or without a time; or "m/d/yyyy" once a day behind the 12th has shown
/// that the month comes first.
class ColumnGuess {
public:
    void See(const Cell& cell) {
        if (cell.text.size() > longest_) longest_ = cell.text.size();
        kinds_ |= KindBit(cell.kind);
        // Most columns of text are known as such after the first value.
        if (forms_ != 0 || cell.kind == ValueKind::Number) Look(cell);
    }

    /// Name, type and size of a column of ours that takes all of the values.
    Field FieldFor(const SourceColumn& source) const;

private:
    enum Form : unsigned {
        Whole = 1,      ///< fits 32 bits
        WideWhole = 2,  ///< up to 15 digits
        Fraction = 4,   ///< up to 15 digits, no needless one
        IsoDate = 8,
        MonthFirst = 16,  ///< m/d/yyyy
        Truth = 32
    };
    static constexpr unsigned AllForms = 63;

    static constexpr unsigned KindBit(ValueKind kind) { return 1u << static_cast<unsigned>(kind); }
    bool OnlyKinds(unsigned kinds) const { return (kinds_ & ~kinds) == 0; }
    void Look(const Cell& cell);
    static unsigned FormsOf(std::string_view text);
    static unsigned NumberForms(std::string_view text);
    bool DeclaredFits(SourceType declared) const;
    void SetGuessedType(Field& field) const;

    unsigned forms_ = AllForms;
    unsigned kinds_ = 0;
    std::size_t longest_ = 0;
    bool keepsDigits_ = true;   ///< no number has more digits than a fraction holds
    bool wholeNumbers_ = true;  ///< all numbers are whole and fit 64 bits
    bool monthProven_ = false;
};

}  // namespace mailvane
