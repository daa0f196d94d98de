#include "core/settings/RegistryStore.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <functional>

#include "core/Paths.h"
#include "core/settings/ProfileText.h"
#include "core/settings/Settings.h"
#include "core/text/Text.h"
#include "platform/os/Files.h"

namespace mailvane {

namespace {

constexpr const char* OwnValueKey = "@";  ///< stands for the empty value name
constexpr const char* ProgramPath = "HKEY_CURRENT_USER\\SOFTWARE\\Mailvane\\";
constexpr std::string_view RootStart = "HKEY_";
constexpr std::size_t BufferSize = 2048;

constexpr std::string_view ExpandMark = "\\expand:";
constexpr std::string_view BinaryMark = "\\binary:";
constexpr std::string_view DoubleWordMark = "\\dword:";
constexpr std::string_view BigEndianMark = "\\dword-be:";

using Bytes = std::vector<unsigned char>;

bool StartsWithText(std::string_view text, std::string_view start) {
    return EqualText(text.substr(0, start.size()), start);
}

std::string SectionOf(const RegistryKey& key) {
    const std::string whole = key.WholePath();
    const std::string_view program = ProgramPath;
    return EscapeProfileName(StartsWithText(whole, program) && whole.size() > program.size()
                                 ? whole.substr(program.size())
                                 : whole);
}

std::string WholePathOf(const std::string& section) {
    const std::string name = UnescapeProfileText(section);
    return StartsWithText(name, RootStart) ? name : ProgramPath + name;
}

std::string NameInFile(const std::string& name) {
    return name.empty() ? OwnValueKey : EscapeProfileName(name);
}

std::string HexOf(const Bytes& bytes) {
    std::string hex;
    for (const unsigned char byte : bytes) {
        std::array<char, 3> digits{};
        std::snprintf(digits.data(), digits.size(), "%02X", unsigned{byte});
        hex.append(digits.data());
    }
    return hex;
}

std::uint32_t HexNumber(std::string_view digits) {
    std::uint32_t number = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), number, 16);
    return number;
}

Bytes BytesOf(std::string_view hex) {
    Bytes bytes;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2)
        bytes.push_back(static_cast<unsigned char>(HexNumber(hex.substr(i, 2))));
    return bytes;
}

std::string DoubleWordText(std::string_view mark, std::uint32_t number) {
    std::array<char, 9> digits{};
    std::snprintf(digits.data(), digits.size(), "%08x", number);
    return std::string(mark) + digits.data();
}

std::string TextInFile(const RegistryValue& value) {
    if (const auto* number = std::get_if<std::uint32_t>(&value.data))
        return DoubleWordText(
            value.type == RegistryType::DoubleWordBigEndian ? BigEndianMark : DoubleWordMark,
            *number);
    if (const auto* bytes = std::get_if<Bytes>(&value.data))
        return std::string(BinaryMark) + HexOf(*bytes);
    const auto& text = std::get<std::string>(value.data);
    return value.type == RegistryType::ExpandString ? std::string(ExpandMark) + EscapeBytes(text)
                                                    : EscapeProfileValue(text);
}

RegistryValue ValueInFile(std::string_view text) {
    const auto behind = [text](std::string_view mark) { return text.substr(mark.size()); };
    if (text.starts_with(ExpandMark))
        return {RegistryType::ExpandString, UnescapeBytes(behind(ExpandMark))};
    if (text.starts_with(BinaryMark)) return {RegistryType::Binary, BytesOf(behind(BinaryMark))};
    if (text.starts_with(DoubleWordMark))
        return {RegistryType::DoubleWord, HexNumber(behind(DoubleWordMark))};
    if (text.starts_with(BigEndianMark))
        return {RegistryType::DoubleWordBigEndian, HexNumber(behind(BigEndianMark))};
    return {RegistryType::String, UnescapeProfileText(text)};
}

/// The name in a section's head line; empty result for any other line.
std::optional<std::string> HeadOf(std::string_view line) {
    if (line.size() < 2 || line.front() != '[' || line.back() != ']') return std::nullopt;
    return std::string(line.substr(1, line.size() - 2));
}

std::vector<std::string> LinesOf(const std::string& file) {
    std::string text = ReadWholeFile(file).value_or(std::string());
    std::erase(text, '\r');
    std::vector<std::string> lines = Split(text, "\n");
    if (lines.back().empty()) lines.pop_back();
    return lines;
}

bool WriteLines(const std::string& file, const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines)
        text += line + "\r\n";
    return WriteWholeFile(file, text, nullptr, FileAccess::OwnerOnly);
}

/// Writes the file without the lines that `goes` chooses; false when it chooses none.
bool RemoveLines(
    const std::string& file,
    const std::function<bool(const std::string& section, const std::string& line)>& goes) {
    std::vector<std::string> kept;
    std::string section;
    const std::vector<std::string> lines = LinesOf(file);
    for (const std::string& line : lines) {
        section = HeadOf(line).value_or(section);
        if (!goes(section, line)) kept.push_back(line);
    }
    return kept.size() != lines.size() && WriteLines(file, kept);
}

bool IsAtOrBelow(const std::string& section, const std::string& wholePath) {
    const std::string path = WholePathOf(section);
    return EqualText(path, wholePath) || StartsWithText(path, wholePath + "\\");
}

std::string GetText(const RegistryValue& value) {
    if (const auto* number = std::get_if<std::uint32_t>(&value.data)) {
        const std::string digits = std::to_string(*number);
        return std::string(digits.size() < 3 ? 3 - digits.size() : 0, '0') + digits;
    }
    if (const auto* bytes = std::get_if<Bytes>(&value.data)) {
        std::string text = HexOf(*bytes);
        for (std::size_t i = 0; i < text.size(); i += 2)
            if (text[i] == '0') std::swap(text[i], text[i + 1]);
        return text;
    }
    return TrimAtNul(std::get<std::string>(value.data));
}

std::size_t SizeOf(const RegistryValue& value) {
    if (const auto* bytes = std::get_if<Bytes>(&value.data)) return bytes->size();
    const auto* text = std::get_if<std::string>(&value.data);
    return text == nullptr ? sizeof(std::uint32_t) : text->size() + 1;
}

}  // namespace

const char* NameOf(RegistryRoot root) {
    switch (root) {
        case RegistryRoot::ClassesRoot:
            return "HKEY_CLASSES_ROOT";
        case RegistryRoot::CurrentUser:
            return "HKEY_CURRENT_USER";
        case RegistryRoot::LocalMachine:
            return "HKEY_LOCAL_MACHINE";
        case RegistryRoot::Users:
            return "HKEY_USERS";
    }
    return "";
}

std::uint32_t DoubleWordOf(const std::string& text) {
    const double number = NumberOf(text);
    constexpr double Greatest = 4294967295.0;
    return number >= 0 && number <= Greatest ? static_cast<std::uint32_t>(number) : 0;
}

std::string RegistryKey::WholePath() const {
    return path.empty() ? NameOf(root) : std::string(NameOf(root)) + "\\" + path;
}

std::optional<RegistryValue> ReadRegistryValue(const std::string& file, const RegistryKey& key,
                                               const std::string& name) {
    const auto text = ReadProfileValue(file, SectionOf(key), NameInFile(name));
    return text ? std::optional<RegistryValue>(ValueInFile(*text)) : std::nullopt;
}

bool WriteRegistryValue(const std::string& file, const RegistryKey& key, const std::string& name,
                        const RegistryValue& value) {
    return MakeFolders(FolderFromPath(file, PathSeparator)) &&
           WriteProfileValue(file, SectionOf(key), NameInFile(name), TextInFile(value),
                             FileAccess::OwnerOnly);
}

std::vector<std::string> RegistryValueNames(const std::string& file, const RegistryKey& key) {
    std::vector<std::string> names;
    for (const std::string& name : ProfileKeys(file, SectionOf(key)))
        names.push_back(name == OwnValueKey ? std::string() : UnescapeProfileText(name));
    return names;
}

bool RegistryKeyExists(const std::string& file, const RegistryKey& key) {
    for (const std::string& line : LinesOf(file)) {
        const auto section = HeadOf(line);
        if (section && IsAtOrBelow(*section, key.WholePath())) return true;
    }
    return false;
}

bool CreateRegistryKey(const std::string& file, const RegistryKey& key) {
    if (RegistryKeyExists(file, key)) return true;
    std::vector<std::string> lines = LinesOf(file);
    lines.push_back("[" + SectionOf(key) + "]");
    return MakeFolders(FolderFromPath(file, PathSeparator)) && WriteLines(file, lines);
}

bool DeleteRegistryKey(const std::string& file, const RegistryKey& key) {
    return RemoveLines(file, [&](const std::string& section, const std::string&) {
        return IsAtOrBelow(section, key.WholePath());
    });
}

bool DeleteRegistryValue(const std::string& file, const RegistryKey& key, const std::string& name) {
    return RemoveLines(file, [&](const std::string& section, const std::string& line) {
        const std::size_t sign = line.find('=');
        return sign != std::string::npos && EqualText(section, SectionOf(key)) &&
               EqualText(line.substr(0, sign), NameInFile(name));
    });
}

std::vector<std::string> RegistrySubkeys(const std::string& file, const RegistryKey& key) {
    std::vector<std::string> names;
    const std::string start = key.WholePath() + "\\";
    for (const std::string& line : LinesOf(file)) {
        const auto section = HeadOf(line);
        if (!section) continue;
        const std::string path = WholePathOf(*section);
        if (!StartsWithText(path, start)) continue;
        const std::string name = Split(path.substr(start.size()), "\\").front();
        if (std::find(names.begin(), names.end(), name) == names.end()) names.push_back(name);
    }
    return names;
}

std::string RegGetValue(const Workbench& wb, RegistryRoot root, const std::string& path,
                        const std::string& name) {
    const auto value = ReadRegistryValue(wb.platform.registryFile, {root, path}, name);
    return value && SizeOf(*value) <= BufferSize ? GetText(*value) : NotFound;
}

bool RegSetValue(const Workbench& wb, RegistryRoot root, const std::string& path,
                 const std::string& name, RegistryType type, const std::string& value) {
    RegistryValue stored{type, value};
    if (type == RegistryType::DoubleWord) stored.data = DoubleWordOf(value);
    return WriteRegistryValue(wb.platform.registryFile, {root, path}, name, stored);
}

}  // namespace mailvane
