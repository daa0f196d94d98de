#include "send/message/AttachmentName.h"

#include <algorithm>
#include <string_view>

namespace mailvane {

namespace {

bool IsControl(char c) {
    const auto code = static_cast<unsigned char>(c);
    return code < 32 || code == 127;
}

bool IsAscii(char c) {
    return static_cast<unsigned char>(c) < 128;
}

bool IsLetterOrDigit(char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

/// A character that a parameter's value may hold without quotes.
bool IsPlain(char c) {
    constexpr std::string_view Specials = "()<>@,;:\\\"/[]?= ";
    return IsAscii(c) && !IsControl(c) && Specials.find(c) == std::string_view::npos;
}

std::string Quoted(const std::string& name) {
    std::string quoted = "\"";
    for (const char c : name) {
        if (c == '"' || c == '\\') quoted += '\\';
        quoted += c;
    }
    return quoted + "\"";
}

std::string PercentEncoded(const std::string& name) {
    constexpr std::string_view Digits = "0123456789ABCDEF";
    constexpr std::string_view Marks = "-._";
    std::string encoded;
    for (const char c : name) {
        if (IsLetterOrDigit(c) || Marks.find(c) != std::string_view::npos) {
            encoded += c;
            continue;
        }
        const auto code = static_cast<unsigned char>(c);
        encoded += '%';
        encoded += Digits[code >> 4];
        encoded += Digits[code & 15];
    }
    return encoded;
}

}  // namespace

std::string AttachmentName(std::string path) {
    if (path.size() > 1 && path[1] == ':') path.erase(0, 2);
    const std::size_t separator = path.find_last_of("/\\");
    return separator == std::string::npos ? path : path.substr(separator + 1);
}

std::string NameParameter(const std::string& fileName) {
    std::string name = fileName;
    std::erase_if(name, IsControl);
    if (!std::all_of(name.begin(), name.end(), IsAscii))
        return "name*=utf-8''" + PercentEncoded(name);
    const bool plain = !name.empty() && std::all_of(name.begin(), name.end(), IsPlain);
    return "name=" + (plain ? name : Quoted(name));
}

}  // namespace mailvane
