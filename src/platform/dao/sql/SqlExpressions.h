#pragma once

#include <string>
#include <vector>

#include "platform/dao/sql/SqlContext.h"

namespace mailvane {

/// Whether aggregate functions may stand at a place.
enum class SqlAggregates { Allowed, Refused };

SqlValue TranslateValue(SqlContext& context, const SqlExpression& expression, const SqlScope& scope,
                        SqlAggregates aggregates = SqlAggregates::Refused);

/// As what follows WHERE, ON or HAVING; 3464 for a text or a date, which are no conditions.
std::string TranslateTruth(SqlContext& context, const SqlExpression& expression,
                           const SqlScope& scope,
                           SqlAggregates aggregates = SqlAggregates::Refused);

/// Brings values to one type in which they compare. Text columns compare with others by their text
/// forms; a literal of another kind than the rest is 3464. The first value carries the collation.
std::vector<std::string> AlignValues(SqlContext& context, const std::vector<SqlValue>& values);

/// A text value so that it compares, sorts and groups without regard to case.
std::string Collated(const SqlValue& value);

/// The value as that column holds it: Null when a row's value cannot be converted, 3464 when a
/// literal cannot. A text that is too long fails when the statement runs.
std::string ConvertTo(SqlContext& context, const SqlValue& value, const Field& target);

/// The engine's type for a column that holds such values.
FieldType FieldTypeOf(const SqlValue& value);

bool HasAggregate(const SqlExpression& expression);

}  // namespace mailvane
