#include "platform/net/mime/TextCoding.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace mailvane {

namespace {

// Windows-1252 from 0x80 to 0x9F; the five bytes it leaves open are no characters.
constexpr std::array<char16_t, 32> Windows1252 = {
    0x20AC, 0xFFFD, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0xFFFD, 0x017D, 0xFFFD, 0xFFFD, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0xFFFD, 0x017E, 0x0178};

constexpr std::size_t QuotedLine = 76;  // RFC 2045 section 6.7, rule 5

unsigned char Byte(std::string_view text, std::size_t at) {
    return static_cast<unsigned char>(text[at]);
}

char Lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

void AppendCodePoint(std::string& out, std::uint32_t code) {
    if (code < 0x800) {
        out += static_cast<char>(0xC0U | code >> 6);
    } else {
        out += static_cast<char>(0xE0U | code >> 12);
        out += static_cast<char>(0x80U | (code >> 6 & 0x3FU));
    }
    out += static_cast<char>(0x80U | (code & 0x3FU));
}

// Overlong forms, surrogates and code points past 0x10FFFF are no characters (RFC 3629).
bool IsRealCharacter(unsigned char first, unsigned char second) {
    switch (first) {
        case 0xE0:
            return second >= 0xA0;
        case 0xED:
            return second <= 0x9F;
        case 0xF0:
            return second >= 0x90;
        case 0xF4:
            return second <= 0x8F;
        default:
            return true;
    }
}

std::size_t ExpectedLength(unsigned char first) {
    if (first < 0x80) return 1;
    if (first >= 0xC2 && first <= 0xDF) return 2;
    if (first >= 0xE0 && first <= 0xEF) return 3;
    if (first >= 0xF0 && first <= 0xF4) return 4;
    return 0;
}

bool IsLineEnd(char c) {
    return c == '\r' || c == '\n';
}

void AppendQuotedLine(std::string& out, std::string_view line) {
    constexpr std::string_view Hex = "0123456789ABCDEF";
    std::size_t column = 0;
    for (std::size_t i = 0; i < line.size(); ++i) {
        const unsigned char c = Byte(line, i);
        const bool last = i + 1 == line.size();
        const bool blank = c == ' ' || c == '\t';
        const bool plain = (c > ' ' && c < 0x7F && c != '=') || (blank && !last);
        const std::size_t width = plain ? 1 : 3;
        if (column + width > QuotedLine - (last ? 0 : 1)) {
            out += "=\r\n";
            column = 0;
        }
        if (plain) {
            out += line[i];
        } else {
            out += {'=', Hex[c >> 4], Hex[c & 15U]};
        }
        column += width;
    }
}

}  // namespace

TextScan ScanText(std::string_view text) {
    TextScan scan;
    std::size_t line = 0;
    unsigned char seen = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const unsigned char c = Byte(text, i);
        seen |= c;
        if (IsLineEnd(text[i])) {
            if (c == '\r' && i + 1 < text.size() && text[i + 1] == '\n') ++i;
            scan.longestLine = std::max(scan.longestLine, line);
            scan.wireSize += line + 2;
            line = 0;
        } else {
            scan.holdsNul |= c == 0;
            ++line;
        }
    }
    scan.longestLine = std::max(scan.longestLine, line);
    scan.wireSize += line;
    scan.outsideAscii = seen > 0x7F;
    return scan;
}

bool IsAscii(std::string_view text) {
    unsigned char seen = 0;
    for (const char c : text)
        seen |= static_cast<unsigned char>(c);
    return seen <= 0x7F;
}

std::size_t Utf8CharacterLength(std::string_view text, std::size_t at) {
    const std::size_t length = ExpectedLength(Byte(text, at));
    if (length == 0 || at + length > text.size()) return 0;
    for (std::size_t i = 1; i < length; ++i) {
        if ((Byte(text, at + i) & 0xC0U) != 0x80) return 0;
    }
    if (length > 1 && !IsRealCharacter(Byte(text, at), Byte(text, at + 1))) return 0;
    return length;
}

std::string ToUtf8(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t length = Utf8CharacterLength(text, i);
        if (length > 0) {
            out.append(text, i, length);
            i += length;
        } else {
            const unsigned char c = Byte(text, i++);
            AppendCodePoint(out, c < 0xA0 ? Windows1252.at(c - 0x80U) : c);
        }
    }
    return out;
}

void AppendQuotedPrintable(std::string& out, std::string_view text) {
    for (std::size_t i = 0; i < text.size();) {
        const auto end = std::find_if(text.begin() + static_cast<std::ptrdiff_t>(i), text.end(),
                                      [](char c) { return IsLineEnd(c); });
        const std::size_t stop = static_cast<std::size_t>(end - text.begin());
        AppendQuotedLine(out, text.substr(i, stop - i));
        i = stop;
        if (i == text.size()) return;
        i += text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n' ? 2 : 1;
        out += "\r\n";
    }
}

bool EqualsIgnoringCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return Lower(x) == Lower(y); });
}

bool StartsWithIgnoringCase(std::string_view text, std::string_view prefix) {
    return EqualsIgnoringCase(text.substr(0, prefix.size()), prefix);
}

std::string_view Trimmed(std::string_view text) {
    constexpr std::string_view Blanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(Blanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(Blanks) - first + 1);
}

std::string WithoutLineBreaks(std::string_view text) {
    std::string out(text);
    std::erase_if(out, [](char c) { return IsLineEnd(c) || c == '\0'; });
    return out;
}

}  // namespace mailvane
