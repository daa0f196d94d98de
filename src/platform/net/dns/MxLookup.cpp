#include "platform/net/dns/MxLookup.h"

#include <arpa/nameser.h>

#include <algorithm>
#include <utility>

#include "platform/net/dns/DnsChannel.h"

namespace mailvane {

namespace {

struct Lookup {
    bool done = false;
    int status = ARES_SUCCESS;
    std::vector<MailExchanger> exchangers;
};

std::string WithoutEndPoint(std::string host) {
    if (host.ends_with('.')) host.pop_back();
    return host;
}

void OnExchangers(void* argument, int status, int /*timeouts*/, unsigned char* answer, int size) {
    Lookup& lookup = *static_cast<Lookup*>(argument);
    lookup.done = true;
    lookup.status = status;
    if (status != ARES_SUCCESS) return;
    ares_mx_reply* records = nullptr;
    lookup.status = ares_parse_mx_reply(answer, size, &records);
    for (const ares_mx_reply* record = records; record != nullptr; record = record->next)
        lookup.exchangers.push_back({record->priority, WithoutEndPoint(record->host)});
    ares_free_data(records);
}

}  // namespace

std::vector<std::string> InOrderOfPreference(std::vector<MailExchanger> exchangers,
                                             std::mt19937& random) {
    std::shuffle(exchangers.begin(), exchangers.end(), random);
    std::stable_sort(
        exchangers.begin(), exchangers.end(),
        [](const MailExchanger& a, const MailExchanger& b) { return a.preference < b.preference; });
    std::vector<std::string> hosts;
    for (MailExchanger& exchanger : exchangers)
        if (!exchanger.host.empty()) hosts.push_back(std::move(exchanger.host));
    return hosts;
}

FoundExchangers LookUpExchangers(const std::string& domain, const std::string& dnsServers,
                                 NetClock::time_point deadline, const KeepWaiting& keepWaiting,
                                 std::mt19937& random) {
    FoundExchangers found;
    Lookup lookup;
    DnsChannel channel;
    found.error = channel.Open(dnsServers);
    if (found.error.Failed()) return found;

    ares_query(channel.Handle(), domain.c_str(), ns_c_in, ns_t_mx, OnExchangers, &lookup);
    found.error = channel.Run(lookup.done, deadline, keepWaiting);
    if (found.error.Failed()) return found;

    // A name that DNS does not know at all can stand in the hosts file; when it does not, looking
    // up its address reports it.
    const bool none = lookup.status == ARES_ENODATA || lookup.status == ARES_ENOTFOUND ||
                      (lookup.status == ARES_SUCCESS && lookup.exchangers.empty());
    if (none) {
        found.hosts.push_back(domain);
    } else if (lookup.status != ARES_SUCCESS) {
        found.error = {net_error::NameNotFound,
                       std::string("The mail exchangers could not be looked up: ") +
                           ares_strerror(lookup.status) + "."};
    } else {
        found.hosts = InOrderOfPreference(std::move(lookup.exchangers), random);
        if (found.hosts.empty())
            found.error = {net_error::NoMailTaken, "The domain takes no mail."};
    }
    return found;
}

}  // namespace mailvane
