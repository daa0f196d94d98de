#pragma once

#include <string>

namespace mailvane {

/// An address that the server refused while it took the message for others.
struct RefusedRecipient {
    std::string address;
    std::string answer;  ///< code and text as the server gave them
};

}  // namespace mailvane
