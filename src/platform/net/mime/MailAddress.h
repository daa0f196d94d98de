#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace mailvane {

/// The bare addresses of a list: separated by commas (or semicolons outside quotes), display names,
/// quoted or not, and comments left out, angle brackets taken off, CR, LF and NUL removed (RFC 5322
/// section 3.4, read generously), domains in ASCII (RFC 5891). Empty items are dropped; the order
/// stays.
std::vector<std::string> AddressesOf(std::string_view list);

/// False for what is no mailbox to any server (RFC 5321 section 4.1.2, read generously): blanks,
/// control characters and brackets outside quotes, a second at sign, a domain with an empty part,
/// more than 320 bytes. A local name without a domain is one.
bool IsMailbox(std::string_view address);

/// A header value fit for the wire: CR, LF and NUL removed, text outside ASCII as encoded words in
/// UTF-8 (RFC 2047), long values folded (RFC 5322 section 2.2.3). `nameLength` is the room that the
/// header's name and colon take on the first line.
std::string EncodeHeaderText(std::string_view value, std::size_t nameLength);
/// The same for address lists: only the display names are encoded, addresses stay as they are. What
/// is no mailbox is left out, and without `utf8` an address outside ASCII too: no header may hold
/// one then (RFC 6531).
std::string EncodeHeaderAddresses(std::string_view value, std::size_t nameLength, bool utf8);

}  // namespace mailvane
