#include "platform/dao/structure/TableDef.h"

#include <algorithm>

#include "platform/dao/structure/TableBuild.h"

namespace mailvane {

const Field* TableDef::FindField(const std::string& fieldName) const {
    const auto found = std::find_if(fields.begin(), fields.end(), [&](const Field& field) {
        return SameName(field.name, fieldName);
    });
    return found == fields.end() ? nullptr : &*found;
}

DaoError TableDef::AppendField(const Field& field) {
    if (DaoError bad = CheckName(field.name); bad.Failed()) return bad;
    if (FindField(field.name) != nullptr)
        return MakeDaoError(dao_error::FieldDefinedTwice, field.name);
    fields.push_back(field);
    return {};
}

}  // namespace mailvane
