#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/tables/Frames.h"
#include "platform/tables/sheets/SheetLimits.h"

namespace mailvane {

/// The number with its digits as a sheet shows them in full: fifteen, or as many as it takes.
std::string SheetNumber(double number);
/// The moment that a sheet's number of days stands for. Days count from 1900 or from 1904.
std::string SheetDate(double days, bool from1904);
/// Whether a number format shows a number as a date or a time.
bool IsDateFormat(std::string_view code);

/// One row of a sheet while it is read; cells come from left to right.
class SheetRow {
public:
    void Clear() { used_ = 0; }
    void Put(int column, ValueKind kind, std::string_view text);
    bool HasValues() const { return used_ > 0; }
    /// The row as a frame, up to its last value; nothing without one.
    void Say(FrameWriter& frames, std::int64_t number) const;

private:
    struct Value {
        ValueKind kind = ValueKind::Null;
        std::string text;
    };
    std::vector<Value> values_;
    std::size_t used_ = 0;  ///< of values_, up to the last one that is there
};

}  // namespace mailvane
