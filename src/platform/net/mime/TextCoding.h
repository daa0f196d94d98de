#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace mailvane {

/// The longest line that a mail message may carry, without its CR LF (RFC 5322 section 2.1.1).
inline constexpr std::size_t MaxMailLine = 998;

/// What the wire has to know about a text. Any of CR LF, CR and LF ends a line.
struct TextScan {
    bool outsideAscii = false;
    bool holdsNul = false;
    std::size_t longestLine = 0;
    std::size_t wireSize = 0;  ///< bytes with every line end as CR LF
};

TextScan ScanText(std::string_view text);
bool IsAscii(std::string_view text);

/// The text in UTF-8: what is valid UTF-8 stays, any other byte is taken as Windows-1252.
std::string ToUtf8(std::string_view text);
/// Length of the UTF-8 character at `at`, 0 when the bytes there are none.
std::size_t Utf8CharacterLength(std::string_view text, std::size_t at);

/// Appends the quoted-printable form (RFC 2045 section 6.7) in lines of at most 76 characters ended
/// by CR LF.
void AppendQuotedPrintable(std::string& out, std::string_view text);

/// ASCII letters compared without regard to case, whatever the locale.
bool EqualsIgnoringCase(std::string_view a, std::string_view b);
bool StartsWithIgnoringCase(std::string_view text, std::string_view prefix);

/// Without blanks, tabs and line ends at both ends.
std::string_view Trimmed(std::string_view text);

/// Without CR, LF and NUL.
std::string WithoutLineBreaks(std::string_view text);

}  // namespace mailvane
