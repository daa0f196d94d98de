#include "core/settings/Settings.h"

#include <array>
#include <charconv>
#include <cmath>
#include <optional>

#include "core/Paths.h"
#include "core/settings/ProfileText.h"
#include "core/settings/RegistryStore.h"
#include "core/text/Text.h"
#include "platform/os/Files.h"

namespace mailvane {

namespace {

constexpr const char* WindowSection = "Settings";
constexpr const char* PositionSuffix = "_POS";
/// Farther than any screen: what lies beyond comes from a damaged file.
constexpr double FarthestTwips = 500000;

std::string SectionPath(const Workbench& wb, const std::string& section,
                        const std::string& appName) {
    const std::string& app = appName.empty() ? wb.state.RegistryAppName : appName;
    return "SOFTWARE\\" + app + "\\" + section;
}

std::string NumberText(double number) {
    std::array<char, 32> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    return std::string(digits.data(), end);
}

std::optional<double> TwipsIn(const std::string& text) {
    const double number = NumberOf(text);
    if (!IsNumeric(text) || std::fabs(number) > FarthestTwips) return std::nullopt;
    return number;
}

std::optional<double> StoredTwips(const Workbench& wb, const std::string& key) {
    return TwipsIn(GetUserSetting(wb, WindowSection, key));
}

std::string FirstCharacters(std::string text, std::size_t count) {
    if (text.size() <= count) return text;
    // A letter of several bytes is not cut in two.
    while (count > 0 && (static_cast<unsigned char>(text[count]) & 0xC0) == 0x80)
        --count;
    return text.substr(0, count);
}

}  // namespace

std::string GetUserSetting(const Workbench& wb, const std::string& section, const std::string& key,
                           const std::string& appName) {
    return RegGetValue(wb, RegistryRoot::CurrentUser, SectionPath(wb, section, appName), key);
}

void SaveUserSetting(const Workbench& wb, const std::string& section, const std::string& key,
                     const std::string& value, const std::string& appName) {
    RegSetValue(wb, RegistryRoot::CurrentUser, SectionPath(wb, section, appName), key,
                RegistryType::String, value);
}

void IniWrite(const std::string& section, const std::string& key, const std::string& value,
              const std::string& path, FileAccess access) {
    WriteProfileValue(path, EscapeProfileName(section), EscapeProfileName(key),
                      EscapeProfileValue(value), access);
}

std::string IniRead(const std::string& section, const std::string& key, const std::string& path) {
    const auto value = ReadProfileValue(path, EscapeProfileName(section), EscapeProfileName(key));
    if (!value) return {};
    return FirstCharacters(TrimAtNul(UnescapeProfileText(*value)), LongestProfileValue);
}

void SaveGridLayoutIn(const Grid& grid, const std::string& iniPath, const std::string& section) {
    for (const GridColumn& column : grid.Columns()) {
        IniWrite(section, column.name, NumberText(column.width), iniPath);
        IniWrite(section, column.name + PositionSuffix, std::to_string(column.position), iniPath);
    }
}

void LoadGridLayoutIn(Grid& grid, const std::string& iniPath, const std::string& section) {
    if (!FileExists(iniPath)) return;
    for (std::size_t i = 0; i < grid.Columns().size(); ++i) {
        const std::string name = grid.Columns()[i].name;
        const auto width = TwipsIn(IniRead(section, name, iniPath));
        if (width && *width >= 0) grid.SetColumnWidth(i, *width);
        const auto position = TwipsIn(IniRead(section, name + PositionSuffix, iniPath));
        if (position && *position >= 0)
            grid.SetColumnPosition(i, static_cast<int>(std::lrint(*position)));
    }
}

void SaveGridLayout(const Grid& grid, const std::string& iniPath) {
    SaveGridLayoutIn(grid, iniPath, grid.Owner().Name());
}

void LoadGridLayout(Grid& grid, const std::string& iniPath) {
    LoadGridLayoutIn(grid, iniPath, grid.Owner().Name());
}

void RestoreWindowPlace(const Workbench& wb, Form& form, const std::string& prefix,
                        const std::string& stateKey) {
    const bool maximized = GetUserSetting(wb, WindowSection, stateKey) == "2";
    FormRect rect = form.Rect();
    rect.left = StoredTwips(wb, prefix + "Left").value_or(rect.left);
    rect.top = StoredTwips(wb, prefix + "Top").value_or(rect.top);
    if (!maximized) rect.width = StoredTwips(wb, prefix + "Width").value_or(rect.width);
    rect.height = StoredTwips(wb, prefix + "Height").value_or(rect.height);
    form.SetRect(rect);
    form.SetState(maximized ? WindowState::Maximized : WindowState::Normal);
}

void StoreWindowPlace(const Workbench& wb, const Form& form, const std::string& prefix,
                      const std::string& stateKey) {
    const FormRect& rect = form.Rect();
    if (form.State() == WindowState::Normal && rect.width >= 0) {
        SaveUserSetting(wb, WindowSection, prefix + "Left", NumberText(rect.left));
        SaveUserSetting(wb, WindowSection, prefix + "Top", NumberText(rect.top));
        SaveUserSetting(wb, WindowSection, prefix + "Width", NumberText(rect.width));
        SaveUserSetting(wb, WindowSection, prefix + "Height", NumberText(rect.height));
    }
    SaveUserSetting(wb, WindowSection, stateKey, std::to_string(static_cast<int>(form.State())));
}

}  // namespace mailvane
