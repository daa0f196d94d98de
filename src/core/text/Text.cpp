#include "core/text/Text.h"

#include <array>
#include <charconv>
#include <cmath>
#include <system_error>
#include <utility>

#include "platform/os/TextCase.h"

namespace mailvane {

namespace {

constexpr std::string_view LineEnd = "\r\n";

/// The number that the text begins with, and how many characters it takes (0: no number).
std::pair<double, std::size_t> LeadingNumber(std::string_view text) {
    std::string_view digits = text;
    if (digits.starts_with('+')) digits.remove_prefix(1);
    const std::size_t first = digits.starts_with('-') ? 1 : 0;
    const bool numeric = digits.size() > first &&
                         (digits[first] == '.' || (digits[first] >= '0' && digits[first] <= '9'));
    if (!numeric || (first == 1 && digits.size() != text.size())) return {0, 0};
    double value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (error != std::errc()) return {0, 0};
    return {value, static_cast<std::size_t>(end - text.data())};
}

struct UrlCode {
    std::string_view plain;
    std::string_view coded;
};

/// In the order in which they are replaced, both ways.
constexpr std::array<UrlCode, 29> UrlCodes{{
    {"%", "%25"}, {"!", "%21"}, {"#", "%23"},  {"$", "%24"}, {"~", "%7E"},      {"^", "%5E"},
    {"&", "%26"}, {">", "%3E"}, {"(", "%28"},  {")", "%29"}, {"+", "%2B"},      {"|", "%7C"},
    {"`", "%60"}, {"=", "%3D"}, {"\\", "%5C"}, {"[", "%5B"}, {"]", "%5D"},      {"{", "%7B"},
    {"}", "%7D"}, {";", "%3B"}, {"'", "%27"},  {":", "%3A"}, {"\"", "%22"},     {",", "%2C"},
    {"?", "%3F"}, {"/", "%2F"}, {"<", "%3C"},  {" ", "+"},   {"\xC2\xA0", "+"},
}};

constexpr std::array<std::string_view, 33> SpecialChars{
    "~", "`", "!", "@", "#", "$", "%", "^", "&", "*", "(", ")", "+",  "=",  "|",  "\\",
    "{", "}", "[", "]", ":", ";", "'", "<", ">", ",", "?", "/", "\"", "\t", "\r", "\n",
};

}  // namespace

std::string Trim(std::string_view text) {
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) return {};
    return std::string(text.substr(first, text.find_last_not_of(' ') - first + 1));
}

std::string ToLower(std::string_view text) {
    return LowerCase(text);
}

bool EqualText(std::string_view a, std::string_view b) {
    return a.size() == b.size() && ToLower(a) == ToLower(b);
}

bool ContainsText(std::string_view text, std::string_view part) {
    return ToLower(text).find(ToLower(part)) != std::string::npos;
}

std::string ReplaceText(std::string_view text, std::string_view part,
                        std::string_view replacement) {
    if (part.empty()) return std::string(text);
    const std::string lowerText = ToLower(text);
    const std::string lowerPart = ToLower(part);
    std::string result;
    std::size_t from = 0;
    for (std::size_t at = lowerText.find(lowerPart); at != std::string::npos;
         at = lowerText.find(lowerPart, from)) {
        result.append(text, from, at - from).append(replacement);
        from = at + part.size();
    }
    return result.append(text, from);
}

std::vector<std::string> Split(std::string_view text, std::string_view delimiter) {
    std::vector<std::string> pieces;
    std::size_t from = 0;
    if (!delimiter.empty()) {
        for (std::size_t at = text.find(delimiter); at != std::string_view::npos;
             at = text.find(delimiter, from)) {
            pieces.emplace_back(text.substr(from, at - from));
            from = at + delimiter.size();
        }
    }
    pieces.emplace_back(text.substr(from));
    return pieces;
}

bool IsNumeric(std::string_view text) {
    const std::string trimmed = Trim(text);
    return !trimmed.empty() && LeadingNumber(trimmed).second == trimmed.size();
}

double NumberOf(std::string_view text) {
    return LeadingNumber(Trim(text)).first;
}

int CountOccurrences(std::string_view text, std::string_view part) {
    return static_cast<int>(Split(text, part).size()) - 1;
}

std::string TrimAtNul(std::string_view text) {
    return std::string(text.substr(0, text.find('\0')));
}

std::string UrlEncode(std::string_view text) {
    std::string result(text);
    for (const UrlCode& code : UrlCodes)
        result = ReplaceText(result, code.plain, code.coded);
    return result;
}

std::string UrlDecode(std::string_view text) {
    std::string result(text);
    for (const UrlCode& code : UrlCodes)
        result = ReplaceText(result, code.coded, code.plain);
    return result;
}

std::string CleanSpecialChars(std::string_view text, std::string_view replacement,
                              std::string_view charList) {
    std::string result(text);
    if (charList.empty()) {
        for (std::string_view item : SpecialChars)
            result = ReplaceText(result, item, replacement);
    } else {
        for (const std::string& item : Split(charList, "X"))
            result = ReplaceText(result, item, replacement);
    }
    return result;
}

std::string ExtractAddress(std::string& text) {
    const std::vector<std::string> pieces = Split(text, "<");
    if (pieces.size() == 1) return text;
    for (const std::string& piece : pieces) {
        const std::size_t close = piece.find('>');
        if (close == std::string::npos || piece.find('@') == std::string::npos) continue;
        std::string address = piece.substr(0, close);
        std::erase_if(address, [](char c) { return c == '\r' || c == '\n'; });
        text = Trim(address);
        break;
    }
    return text;
}

std::string WrapText(std::string text, int width) {
    // Positions count from 1; 0 stands before the text. With a width below 2 the breaks would grow
    // the text faster than the walk gets on.
    if (width < 2) return text;
    int column = 0;
    std::size_t back = 0;     // last blank up to the position
    std::size_t forward = 0;  // next blank from the position on, once it has been looked for
    for (std::size_t position = 0; position < text.size(); ++position) {
        if (position > 0 && text[position - 1] == ' ') back = position;
        if (column == width) {
            column = 0;
            if (forward < position) forward = text.find(' ', position - 1) + 1;
            if (forward == 0) break;
            const long wordLength = static_cast<long>(forward) - 1 - static_cast<long>(back + 1);
            const long distance = static_cast<long>(position) - static_cast<long>(back + 1);
            if (distance >= std::lrint(static_cast<double>(wordLength) / 2)) {
                text.insert(forward, LineEnd);
            } else {
                text.insert(back, LineEnd);
                forward += LineEnd.size();
            }
        }
        ++column;
        if (position > 0 && text.compare(position - 1, LineEnd.size(), LineEnd) == 0) column = 0;
    }
    return text;
}

std::vector<std::string> ParseKeyLines(std::string_view text, const std::vector<std::string>& keys,
                                       int caseMode) {
    if (text.empty() || keys.empty()) return {};
    const bool exact = caseMode == 1;
    std::vector<std::string> values(keys.size());
    for (const std::string& line : Split(text, "\n")) {
        for (std::size_t i = 0; i < keys.size(); ++i) {
            const std::string_view start = std::string_view(line).substr(0, keys[i].size());
            if (exact ? start != keys[i] : !EqualText(start, keys[i])) continue;
            std::string value = line.substr(keys[i].size());
            std::erase(value, '\r');
            values[i] = Trim(value);
        }
    }
    return values;
}

}  // namespace mailvane
