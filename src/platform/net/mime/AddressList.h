#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace mailvane {

/// One item of an address list, taken apart.
struct AddressItem {
    /// The item as it was written, trimmed; "" when that is no fit form for a header: quotes or
    /// brackets that nothing closes, text behind the address, a name with a bare comma or at sign.
    std::string source;
    std::string name;     ///< display name without quotes, or the comment that stands for one
    std::string address;  ///< bare
};

/// Takes a list apart as AddressesOf does (MailAddress.h); items without an address are left out.
std::vector<AddressItem> ParseAddressList(std::string_view list);

}  // namespace mailvane
