#pragma once

#include <random>
#include <string>
#include <vector>

#include "platform/net/NetError.h"
#include "platform/net/NetWait.h"

namespace mailvane {

/// One MX record.
struct MailExchanger {
    int preference = 0;
    std::string host;  ///< without a point at its end; "" for the root
};

struct FoundExchangers {
    NetError error;                  ///< NameNotFound, NoMailTaken, TimedOut or Canceled
    std::vector<std::string> hosts;  ///< in the order in which they are to be tried
};

/// Host names by preference, the lowest number first; equal ones in random order, so that the load
/// is shared (RFC 5321 section 5.1). Records that name the root are left out.
std::vector<std::string> InOrderOfPreference(std::vector<MailExchanger> exchangers,
                                             std::mt19937& random);

/// Looks up who takes the mail of a domain, without blocking: `keepWaiting` is called meanwhile. A
/// domain without MX records takes its mail itself; one whose only record names the root takes none
/// (RFC 7505). A name service that fails is a failure and never "no MX records", or mail would go
/// to the wrong host. `dnsServers` as ResolveName takes them.
FoundExchangers LookUpExchangers(const std::string& domain, const std::string& dnsServers,
                                 NetClock::time_point deadline, const KeepWaiting& keepWaiting,
                                 std::mt19937& random);

}  // namespace mailvane
