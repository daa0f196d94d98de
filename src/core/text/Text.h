#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace mailvane {

// Texts are UTF-8; lengths and positions count bytes. "Text mode" compares without regard to case.

std::string Trim(std::string_view text);  ///< blanks at both ends only
std::string ToLower(std::string_view text);
bool EqualText(std::string_view a, std::string_view b);           ///< text mode
bool ContainsText(std::string_view text, std::string_view part);  ///< text mode
/// Every occurrence of `part` in text mode replaced; an empty `part` changes nothing.
std::string ReplaceText(std::string_view text, std::string_view part, std::string_view replacement);
/// Exact split; an empty text gives one empty piece.
std::vector<std::string> Split(std::string_view text, std::string_view delimiter);
bool IsNumeric(std::string_view text);   ///< a number, blanks around it allowed
double NumberOf(std::string_view text);  ///< the number that the text begins with, else 0

int CountOccurrences(std::string_view text, std::string_view part);
std::string TrimAtNul(std::string_view text);
std::string UrlEncode(std::string_view text);
std::string UrlDecode(std::string_view text);
/// `charList` holds the characters separated by the letter X; "" means the built-in list.
std::string CleanSpecialChars(std::string_view text, std::string_view replacement,
                              std::string_view charList = {});
/// The address between angle brackets; the text unchanged when it has none. The trimmed form is
/// written back to the argument.
std::string ExtractAddress(std::string& text);
/// Breaks lines near `width` columns at blanks with CR LF.
std::string WrapText(std::string text, int width);
/// The remainder of the line that begins with each key, by key; "" for a key without a line.
std::vector<std::string> ParseKeyLines(std::string_view text, const std::vector<std::string>& keys,
                                       int caseMode);

}  // namespace mailvane
