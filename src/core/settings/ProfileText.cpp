#include "core/settings/ProfileText.h"

#include <charconv>
#include <system_error>

namespace mailvane {

namespace {

constexpr std::string_view EscapedMark = "\\:";
constexpr std::string_view BadInNames = "=[];@ ";
constexpr std::string_view HexDigits = "0123456789ABCDEF";

bool IsControl(char c) {
    return (c >= 0 && c < ' ' && c != '\t') || c == 127;
}

bool HoldsControl(std::string_view text) {
    for (const char c : text)
        if (IsControl(c)) return true;
    return false;
}

bool IsPlainName(std::string_view name) {
    return !name.empty() && !HoldsControl(name) &&
           name.find_first_of("=[]\t") == std::string_view::npos &&
           std::string_view("\\;@ ").find(name.front()) == std::string_view::npos &&
           name.back() != ' ';
}

bool IsPlainValue(std::string_view value) {
    return !HoldsControl(value) && !value.starts_with('\\');
}

}  // namespace

std::string EscapeBytes(std::string_view bytes, std::string_view others) {
    std::string text;
    for (const char c : bytes) {
        if (!IsControl(c) && c != '\\' && c != '\t' && others.find(c) == std::string_view::npos) {
            text.push_back(c);
            continue;
        }
        const auto code = static_cast<unsigned char>(c);
        text.append({'\\', HexDigits[code / 16u], HexDigits[code % 16u]});
    }
    return text;
}

std::string UnescapeBytes(std::string_view text) {
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        unsigned code = 0;
        const std::string_view digits = text.substr(i).substr(1, 2);
        const char* end = digits.data() + digits.size();
        if (text[i] == '\\' && digits.size() == 2 &&
            std::from_chars(digits.data(), end, code, 16).ptr == end) {
            bytes.push_back(static_cast<char>(code));
            i += digits.size();
        } else {
            bytes.push_back(text[i]);
        }
    }
    return bytes;
}

std::string EscapeProfileName(std::string_view name) {
    if (IsPlainName(name)) return std::string(name);
    return std::string(EscapedMark) + EscapeBytes(name, BadInNames);
}

std::string EscapeProfileValue(std::string_view value) {
    if (IsPlainValue(value)) return std::string(value);
    return std::string(EscapedMark) + EscapeBytes(value);
}

std::string UnescapeProfileText(std::string_view text) {
    if (!text.starts_with(EscapedMark)) return std::string(text);
    return UnescapeBytes(text.substr(EscapedMark.size()));
}

}  // namespace mailvane
