#pragma once

#include <string>
#include <string_view>

namespace mailvane {

/// The domain as the name service and mail servers take it, in ASCII (RFC 5891; UTS 46, not
/// transitional). What is ASCII already, or no domain name, stays as it is.
std::string AsciiDomain(std::string_view domain);

}  // namespace mailvane
