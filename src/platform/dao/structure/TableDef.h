#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/dao/DaoError.h"
#include "platform/dao/DaoValue.h"
#include "platform/os/TextCase.h"

namespace mailvane {

/// Attribute bits of a table that make it a system or hidden one; user tables have neither.
inline constexpr std::uint32_t SystemObjectMask = 0x80000002u;
/// Attributes of a column as the engine reports them: fixed (1), variable (2), auto-increment (16),
/// updatable (32).
inline constexpr int FixedFieldAttribute = 1;
inline constexpr int VariableFieldAttribute = 2;
inline constexpr int AutoIncrementAttribute = 16;
inline constexpr int UpdatableFieldAttribute = 32;
/// What an auto-number column reports: fixed, auto-increment, updatable.
inline constexpr int AutoNumberAttributes = 49;
/// Size in characters of a Text column for which none is given.
inline constexpr int DefaultTextSize = 65535;

struct Field {
    std::string name;
    FieldType type = FieldType::Text;
    /// Bytes that a Text column holds; 0 takes the default. 8 marks a Long column of 64 bits, as
    /// files of other programs have them.
    int size = 0;
    int attributes = 0;  ///< AutoIncrementAttribute may be set before appending
    bool allowZeroLength = false;
    bool required = false;
    std::string defaultValue;  ///< expression text, "" for none

    bool IsText() const { return type == FieldType::Text || type == FieldType::Memo; }
    bool IsAutoNumber() const {
        return type == FieldType::Long && attributes == AutoNumberAttributes;
    }
};

struct Index {
    std::string name;
    std::vector<std::string> fields;
    bool primary = false;
    bool unique = false;  ///< a primary index is unique whatever this says, and refuses Null
};

/// Description of one table. A copy: changing it changes no file; `Database` does that.
struct TableDef {
    std::string name;
    std::uint32_t attributes = 0;
    std::vector<Field> fields;
    std::vector<Index> indexes;

    bool IsUserTable() const { return (attributes & SystemObjectMask) == 0; }
    const Field* FindField(const std::string& fieldName) const;  ///< case ignored; null when absent
    /// Adds a column to a definition that is no table yet; 3125 for a name that the engine refuses,
    /// 3191 for one that is there.
    DaoError AppendField(const Field& field);
};

}  // namespace mailvane
