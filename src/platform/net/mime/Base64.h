#pragma once

#include <string>
#include <string_view>

namespace mailvane {

/// Appends the base64 form of `bytes` with padding and without line ends (RFC 4648 section 4).
void AppendBase64(std::string& out, std::string_view bytes);

}  // namespace mailvane
