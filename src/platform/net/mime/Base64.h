#pragma once

#include <string>
#include <string_view>

namespace mailvane {

/// Appends the base64 form of `bytes` with padding and without line ends (RFC 4648 section 4).
void AppendBase64(std::string& out, std::string_view bytes);
/// The base64 form of a short text, made in memory: a password in a file of the shared temporary
/// folder would be everybody's.
std::string Base64Line(std::string_view text);

}  // namespace mailvane
