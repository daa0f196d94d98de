#include "platform/dao/TableDef.h"

#include <algorithm>

namespace mailvane {

namespace {

char LowerAscii(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + ('a' - 'A')) : letter;
}

}  // namespace

bool SameName(std::string_view one, std::string_view other) {
    return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                      [](char a, char b) { return LowerAscii(a) == LowerAscii(b); });
}

const Field* TableDef::FindField(const std::string& fieldName) const {
    const auto found = std::find_if(fields.begin(), fields.end(), [&](const Field& field) {
        return SameName(field.name, fieldName);
    });
    return found == fields.end() ? nullptr : &*found;
}

}  // namespace mailvane
