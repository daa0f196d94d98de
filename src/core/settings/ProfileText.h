#pragma once

#include <string>
#include <string_view>

namespace mailvane {

// Names and values of profile files can hold any bytes. What stands in a profile line as it is
// stays readable; anything else is written behind "\:" with "\HH" for each awkward byte.

std::string EscapeProfileName(std::string_view name);  ///< of a section or key
std::string EscapeProfileValue(std::string_view value);
std::string UnescapeProfileText(std::string_view text);  ///< the inverse of both

/// The bytes with "\HH" for control characters, the backslash and those in `others`; and back.
std::string EscapeBytes(std::string_view bytes, std::string_view others = {});
std::string UnescapeBytes(std::string_view text);

}  // namespace mailvane
