#include "platform/dao/TableDef.h"

#include <algorithm>

namespace mailvane {

const Field* TableDef::FindField(const std::string& fieldName) const {
    const auto found = std::find_if(fields.begin(), fields.end(), [&](const Field& field) {
        return SameName(field.name, fieldName);
    });
    return found == fields.end() ? nullptr : &*found;
}

}  // namespace mailvane
