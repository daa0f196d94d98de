#pragma once

#include <string>

#include "platform/dao/DaoError.h"
#include "platform/dao/structure/TableDef.h"

namespace mailvane {

/// The declared type under which SQLite keeps a field's type and size, so chosen that its affinity
/// leaves texts as they are.
std::string DeclaredType(const Field& field);
/// The type, size and zero-length mark that a declared type stands for, ours or another program's.
void ReadDeclaredType(const std::string& declaredType, Field& field);
/// Bytes that a value of the field may have; 0 for no limit.
std::size_t TextLimit(const Field& field);

/// A default value's SQL, "" for none. The field's text is a number, a date, a word, a text with
/// or without quotes, Now() or Date(), or "=" and an expression. 3421 when it does not fit the
/// type.
DaoResult<std::string> DefaultSql(const Field& field);
/// The field's text for SQL that came from a table; the other way round of DefaultSql.
std::string DefaultText(const std::string& sql);

/// A column as CREATE TABLE and ADD COLUMN take it; `refusesNull` for a column of the primary key.
DaoResult<std::string> ColumnDefinition(const Field& field, bool refusesNull);

/// The value as a column holds it: 3421 when it cannot be converted, 3163 when it is too long.
DaoResult<DaoValue> ConvertForField(const DaoValue& value, const Field& field);

}  // namespace mailvane
