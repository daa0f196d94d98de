#pragma once

#include <string>

#include "core/Workbench.h"
#include "platform/os/Files.h"

namespace mailvane {

inline constexpr const char* NotFound = "Not Found";
inline constexpr std::size_t LongestProfileValue = 255;  ///< that IniRead gives

/// A value of the user's settings; "Not Found" when it is absent.
std::string GetUserSetting(const Workbench& wb, const std::string& section, const std::string& key,
                           const std::string& appName = {});
void SaveUserSetting(const Workbench& wb, const std::string& section, const std::string& key,
                     const std::string& value, const std::string& appName = {});
/// Private profile files; paths are absolute. IniRead gives "" when there is no value and at most
/// 255 characters.
void IniWrite(const std::string& section, const std::string& key, const std::string& value,
              const std::string& path, FileAccess access = FileAccess::Usual);
std::string IniRead(const std::string& section, const std::string& key, const std::string& path);

/// Column widths and positions of a grid in a profile file. Loading from a missing file does
/// nothing.
void SaveGridLayout(const Grid& grid, const std::string& iniPath);  ///< section: the form's name
void LoadGridLayout(Grid& grid, const std::string& iniPath);
void SaveGridLayoutIn(const Grid& grid, const std::string& iniPath, const std::string& section);
void LoadGridLayoutIn(Grid& grid, const std::string& iniPath, const std::string& section);

/// Window place under the keys PREFIXLeft, PREFIXTop, PREFIXWidth, PREFIXHeight, and `stateKey`, in
/// section Settings. A stored minimised state is restored as normal; the rectangle is written only
/// while the window is normal.
void RestoreWindowPlace(const Workbench& wb, Form& form, const std::string& prefix,
                        const std::string& stateKey);
void StoreWindowPlace(const Workbench& wb, const Form& form, const std::string& prefix,
                      const std::string& stateKey);

}  // namespace mailvane
