#pragma once

#include "platform/dao/DaoValue.h"

namespace mailvane {

/// A value as a column of type `to` holds it; Null when it cannot be converted or does not fit.
/// Dates become general dates in texts, and days since day zero in numbers; True is -1.
DaoValue ConvertValue(const DaoValue& value, FieldType to);

}  // namespace mailvane
