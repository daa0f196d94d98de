#pragma once

#include <string>
#include <vector>

#include "platform/net/NetError.h"
#include "platform/net/NetWait.h"

namespace mailvane {

struct ResolvedName {
    NetError error;                      ///< NameNotFound, TimedOut or Canceled
    std::string fullName;                ///< the host's own, where its name is an alias
    std::vector<std::string> addresses;  ///< IPv4 and IPv6, the preferred first
};

/// True for an IPv4 or IPv6 address, which needs no look-up.
bool IsIpAddress(const std::string& host);

/// Looks a host name up in the hosts file, then in DNS, without blocking: `keepWaiting` is called
/// meanwhile. `dnsServers` is a list "address[:port],..." in place of the system's servers, "" for
/// those.
ResolvedName ResolveName(const std::string& host, const std::string& dnsServers,
                         NetClock::time_point deadline, const KeepWaiting& keepWaiting);

}  // namespace mailvane
