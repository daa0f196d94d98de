#include <arpa/inet.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>

#include <cstring>

#include "platform/os/Processes.h"

namespace mailvane {

namespace {

/// The dotted form when this is an IPv4 address in use, other than the loopback; else "".
std::string UsableAddress(const ifaddrs& entry) {
    if (!entry.ifa_addr || entry.ifa_addr->sa_family != AF_INET) return {};
    if ((entry.ifa_flags & IFF_UP) == 0 || (entry.ifa_flags & IFF_LOOPBACK) != 0) return {};
    sockaddr_in address{};
    std::memcpy(&address, entry.ifa_addr, sizeof address);
    char text[INET_ADDRSTRLEN];
    return inet_ntop(AF_INET, &address.sin_addr, text, sizeof text) ? text : "";
}

}  // namespace

std::string LocalIpAddress() {
    std::string found;
    ifaddrs* list = nullptr;
    if (::getifaddrs(&list) == 0) {
        for (const ifaddrs* entry = list; entry && found.empty(); entry = entry->ifa_next)
            found = UsableAddress(*entry);
        ::freeifaddrs(list);
    }
    return found.empty() ? "127.0.0.1" : found;
}

}  // namespace mailvane
