#include "platform/net/dns/NameResolver.h"

#include <arpa/inet.h>
#include <netdb.h>

#include <array>

#include "platform/net/dns/DnsChannel.h"

namespace mailvane {

namespace {

struct Lookup {
    bool done = false;
    int status = ARES_SUCCESS;
    std::vector<std::string> addresses;
    std::string fullName;
};

void OnAddresses(void* argument, int status, int /*timeouts*/, ares_addrinfo* result) {
    Lookup& lookup = *static_cast<Lookup*>(argument);
    lookup.done = true;
    lookup.status = status;
    if (result == nullptr) return;
    for (const ares_addrinfo_node* node = result->nodes; node != nullptr; node = node->ai_next) {
        std::array<char, NI_MAXHOST> text{};
        if (getnameinfo(node->ai_addr, node->ai_addrlen, text.data(), text.size(), nullptr, 0,
                        NI_NUMERICHOST) == 0) {
            lookup.addresses.emplace_back(text.data());
        }
    }
    for (const ares_addrinfo_cname* name = result->cnames; name != nullptr; name = name->next)
        if (name->name != nullptr) lookup.fullName = name->name;
    if (lookup.fullName.empty() && result->name != nullptr) lookup.fullName = result->name;
    ares_freeaddrinfo(result);
}

}  // namespace

bool IsIpAddress(const std::string& host) {
    in6_addr space{};
    return inet_pton(AF_INET, host.c_str(), &space) == 1 ||
           inet_pton(AF_INET6, host.c_str(), &space) == 1;
}

ResolvedName ResolveName(const std::string& host, const std::string& dnsServers,
                         NetClock::time_point deadline, const KeepWaiting& keepWaiting) {
    ResolvedName resolved;
    if (IsIpAddress(host)) {
        resolved.addresses.push_back(host);
        return resolved;
    }
    Lookup lookup;
    DnsChannel channel;
    resolved.error = channel.Open(dnsServers);
    if (resolved.error.Failed()) return resolved;

    ares_addrinfo_hints hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = ARES_AI_CANONNAME;
    ares_getaddrinfo(channel.Handle(), host.c_str(), nullptr, &hints, OnAddresses, &lookup);
    resolved.error = channel.Run(lookup.done, deadline, keepWaiting);
    if (resolved.error.Failed()) return resolved;
    if (lookup.status != ARES_SUCCESS || lookup.addresses.empty()) {
        const char* reason =
            ares_strerror(lookup.status == ARES_SUCCESS ? ARES_ENODATA : lookup.status);
        resolved.error = {net_error::NameNotFound,
                          "The name of the server \"" + host + "\" was not found: " + reason + "."};
        return resolved;
    }
    resolved.addresses = std::move(lookup.addresses);
    resolved.fullName = std::move(lookup.fullName);
    return resolved;
}

}  // namespace mailvane
