#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "core/Workbench.h"

namespace mailvane {

// The user settings as a tree of keys with typed values, in one profile file: a section is a key.
// Sections of the program's own settings carry their short name, all others the whole path. Parts
// of a path are separated by backslashes.

enum class RegistryRoot { ClassesRoot, CurrentUser, LocalMachine, Users };

enum class RegistryType {
    String = 1,
    ExpandString = 2,
    Binary = 3,
    DoubleWord = 4,
    DoubleWordBigEndian = 5
};

using RegistryData = std::variant<std::string, std::uint32_t, std::vector<unsigned char>>;

struct RegistryValue {
    RegistryType type = RegistryType::String;
    RegistryData data;
};

/// Where a key stands.
struct RegistryKey {
    RegistryRoot root = RegistryRoot::CurrentUser;
    std::string path;

    std::string WholePath() const;  ///< "HKEY_CURRENT_USER\SOFTWARE\..."
};
const char* NameOf(RegistryRoot root);
/// The number in a text as a double word; 0 for what is none or does not fit.
std::uint32_t DoubleWordOf(const std::string& text);

// The name "" is the key's own value. Writing is false when the file cannot be written.
std::optional<RegistryValue> ReadRegistryValue(const std::string& file, const RegistryKey& key,
                                               const std::string& name);
bool WriteRegistryValue(const std::string& file, const RegistryKey& key, const std::string& name,
                        const RegistryValue& value);
std::vector<std::string> RegistryValueNames(const std::string& file, const RegistryKey& key);

// Keys. A key is there when it or one below it is.
bool RegistryKeyExists(const std::string& file, const RegistryKey& key);
bool CreateRegistryKey(const std::string& file, const RegistryKey& key);
bool DeleteRegistryKey(const std::string& file, const RegistryKey& key);  ///< with those below it
bool DeleteRegistryValue(const std::string& file, const RegistryKey& key, const std::string& name);
std::vector<std::string> RegistrySubkeys(const std::string& file, const RegistryKey& key);

/// A value as text: a double word as three digits or more, binary data as two hexadecimal digits a
/// byte, where a byte below 16 has its zero behind the digit. "Not Found" when it is absent or
/// longer than 2048 bytes.
std::string RegGetValue(const Workbench& wb, RegistryRoot root, const std::string& path,
                        const std::string& name);
/// Writes a string or a double word.
bool RegSetValue(const Workbench& wb, RegistryRoot root, const std::string& path,
                 const std::string& name, RegistryType type, const std::string& value);

}  // namespace mailvane
