#pragma once

#include <string>
#include <utility>
#include <vector>

#include "core/settings/RegistryStore.h"

namespace mailvane {

/// What went wrong in the user settings; an empty text is success.
struct [[nodiscard]] RegistryError {
    std::string source;  ///< ends in ".cRegistry"
    std::string text;

    bool Failed() const { return !text.empty(); }
};

/// A document type that a program opens.
struct ExeAssociation {
    std::string program;      ///< path of the executable
    std::string className;    ///< "Mailvane.Project"
    std::string description;  ///< of the class
    std::string extension;    ///< ".poc"
    std::string openText = "&Open";
    std::string printText = "&Print";
    std::string addText;  ///< "" leaves the verb out
    std::string newText;  ///< "" leaves the verb out
    int iconIndex = 0;    ///< within the executable
};

/// One place in the user settings.
class cRegistry {
public:
    explicit cRegistry(Workbench& wb) : wb_(wb) {}

    RegistryRoot ClassKey = RegistryRoot::CurrentUser;
    std::string SectionKey;
    std::string ValueKey;
    RegistryData Default;  ///< what Value gives when there is none
    RegistryType ValueType = RegistryType::String;

    bool KeyExists() const;
    RegistryError CreateKey();
    RegistryError DeleteKey();  ///< with the keys below it
    RegistryError DeleteValue();
    RegistryData Value();  ///< also puts the type that was read into ValueType
    /// Writes the data as ValueType says; a string with two percent signs is written as expandable.
    RegistryError SetValue(const RegistryData& data);
    RegistryError EnumerateValues(std::vector<std::string>& names) const;
    RegistryError EnumerateSections(std::vector<std::string>& names) const;
    RegistryError CreateEXEAssociation(const ExeAssociation& association);
    /// More extensions for a class that CreateEXEAssociation has made.
    RegistryError CreateAdditionalEXEAssociations(const std::string& className,
                                                  const std::vector<std::string>& extensions);

private:
    RegistryKey Key() const { return {ClassKey, SectionKey}; }
    std::string Place() const;
    RegistryError Failure(const std::string& text) const;
    RegistryError WriteClasses(const std::vector<std::pair<std::string, std::string>>& keys) const;
    Workbench& wb_;
};

}  // namespace mailvane
