#pragma once

#include <algorithm>
#include <string>
#include <string_view>

namespace mailvane {

constexpr char LowerAscii(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// Lower case in all scripts, except of letters whose lower case takes another number of bytes: a
/// position in the result is one in the text. Bytes that are no UTF-8 stay as they are.
std::string LowerCase(std::string_view text);

/// Compares names of tables, columns, forms: the case of ASCII letters is ignored.
inline bool SameName(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return LowerAscii(x) == LowerAscii(y); });
}

/// Without the blanks and tabs at both ends.
inline std::string_view TrimBlanks(std::string_view text) {
    const std::size_t first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

}  // namespace mailvane
