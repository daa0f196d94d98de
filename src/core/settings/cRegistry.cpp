#include "core/settings/cRegistry.h"

#include "core/text/Text.h"

namespace mailvane {

namespace {

using Bytes = std::vector<unsigned char>;

std::string TextOf(const RegistryData& data) {
    if (const auto* number = std::get_if<std::uint32_t>(&data)) return std::to_string(*number);
    if (const auto* bytes = std::get_if<Bytes>(&data))
        return std::string(bytes->begin(), bytes->end());
    return std::get<std::string>(data);
}

/// The data in the form that a value of that type has.
RegistryValue ValueOfType(RegistryType type, const RegistryData& data) {
    const std::string text = TextOf(data);
    switch (type) {
        case RegistryType::DoubleWord:
        case RegistryType::DoubleWordBigEndian:
            return {type, DoubleWordOf(text)};
        case RegistryType::Binary:
            return {type, Bytes(text.begin(), text.end())};
        case RegistryType::String:
        case RegistryType::ExpandString:
            break;
    }
    const bool expandable = type == RegistryType::ExpandString || CountOccurrences(text, "%") >= 2;
    return {expandable ? RegistryType::ExpandString : RegistryType::String, text};
}

}  // namespace

std::string cRegistry::Place() const {
    return std::string(NameOf(ClassKey)) + "',Section: '" + SectionKey;
}

RegistryError cRegistry::Failure(const std::string& text) const {
    return {std::string(ProgramTitle) + ".cRegistry", text};
}

bool cRegistry::KeyExists() const {
    return RegistryKeyExists(wb_.platform.registryFile, Key());
}

RegistryError cRegistry::CreateKey() {
    if (CreateRegistryKey(wb_.platform.registryFile, Key())) return {};
    return Failure("Failed to create registry Key: '" + Place() + "'");
}

RegistryError cRegistry::DeleteKey() {
    if (DeleteRegistryKey(wb_.platform.registryFile, Key())) return {};
    return Failure("Failed to delete registry Key: '" + Place() + "'");
}

RegistryError cRegistry::DeleteValue() {
    if (!KeyExists())
        return Failure("Failed to open key '" + Place() + "',Key: '" + ValueKey + "'");
    if (DeleteRegistryValue(wb_.platform.registryFile, Key(), ValueKey)) return {};
    return Failure("Failed to delete registry Key: '" + Place() + "',Key: '" + ValueKey + "'");
}

RegistryData cRegistry::Value() {
    const auto value = ReadRegistryValue(wb_.platform.registryFile, Key(), ValueKey);
    if (!value) return Default;
    ValueType = value->type;
    return value->data;
}

RegistryError cRegistry::SetValue(const RegistryData& data) {
    const RegistryValue value = ValueOfType(ValueType, data);
    if (WriteRegistryValue(wb_.platform.registryFile, Key(), ValueKey, value)) return {};
    return Failure("Failed to set registry value Key: '" + Place() + "',Key: '" + ValueKey +
                   "' to value: '" + TextOf(data) + "'");
}

RegistryError cRegistry::EnumerateValues(std::vector<std::string>& names) const {
    names = RegistryValueNames(wb_.platform.registryFile, Key());
    return KeyExists() ? RegistryError() : Failure("Failed to open key '" + Place() + "'");
}

RegistryError cRegistry::EnumerateSections(std::vector<std::string>& names) const {
    names = RegistrySubkeys(wb_.platform.registryFile, Key());
    return KeyExists() ? RegistryError() : Failure("Failed to open key '" + Place() + "'");
}

RegistryError cRegistry::WriteClasses(
    const std::vector<std::pair<std::string, std::string>>& keys) const {
    for (const auto& [path, text] : keys) {
        cRegistry registry(wb_);
        registry.ClassKey = RegistryRoot::ClassesRoot;
        registry.SectionKey = path;
        if (auto error = registry.SetValue(text); error.Failed()) return error;
    }
    return {};
}

RegistryError cRegistry::CreateEXEAssociation(const ExeAssociation& association) {
    const std::string& program = association.program;
    const std::string shell = association.className + "\\shell\\";
    std::vector<std::pair<std::string, std::string>> keys = {
        {association.extension, association.className},
        {association.className, association.description},
        {shell + "open", association.openText},
        {shell + "open\\command", program + " \"%1\""},
        {shell + "print", association.printText},
        {shell + "print\\command", program + " /p \"%1\""},
    };
    if (!association.addText.empty()) {
        keys.push_back({shell + "add", association.addText});
        keys.push_back({shell + "add\\command", program + " /a \"%1\""});
    }
    if (!association.newText.empty()) {
        keys.push_back({shell + "new", association.newText});
        keys.push_back({shell + "new\\command", program + " /n \"%1\""});
    }
    keys.push_back({association.className + "\\DefaultIcon",
                    program + "," + std::to_string(association.iconIndex)});
    return WriteClasses(keys);
}

RegistryError cRegistry::CreateAdditionalEXEAssociations(
    const std::string& className, const std::vector<std::string>& extensions) {
    std::vector<std::pair<std::string, std::string>> keys;
    for (const std::string& extension : extensions)
        keys.push_back({extension, className});
    return WriteClasses(keys);
}

}  // namespace mailvane
