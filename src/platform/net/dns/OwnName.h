#pragma once

#include <string>

#include "platform/net/NetWait.h"

namespace mailvane {

/// The host name of this machine with its domain, from its settings, the hosts file or the name
/// service; "" when it has none. Takes two seconds at most.
std::string OwnFullName(const KeepWaiting& keepWaiting);

/// The address that this machine has on the way to another one, as mail servers are told it:
/// "[192.0.2.1]", "[IPv6:2001:db8::1]".
std::string OwnAddressLiteral(const std::string& otherAddress);

/// What may stand in a greeting of the characters of a name.
std::string HelloName(std::string name);

}  // namespace mailvane
