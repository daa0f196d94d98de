#include "platform/net/dns/DnsChannel.h"

#include <poll.h>
#include <sys/time.h>

#include <algorithm>
#include <array>

namespace mailvane {

DnsChannel::~DnsChannel() {
    if (channel_ != nullptr) ares_destroy(channel_);
}

NetError DnsChannel::Open(const std::string& servers) {
    ares_options options{};
    std::string lookups = "fb";  // the hosts file before the servers
    options.lookups = lookups.data();
    int status = ares_init_options(&channel_, &options, ARES_OPT_LOOKUPS);
    if (status == ARES_SUCCESS && !servers.empty()) {
        status = ares_set_servers_ports_csv(channel_, servers.c_str());
    }
    if (status == ARES_SUCCESS) return {};
    return {net_error::NameNotFound,
            std::string("The name service cannot be used: ") + ares_strerror(status) + "."};
}

void DnsChannel::WaitForAnswers() {
    std::array<ares_socket_t, ARES_GETSOCK_MAXNUM> sockets{};
    const unsigned int mask = static_cast<unsigned int>(
        ares_getsock(channel_, sockets.data(), static_cast<int>(sockets.size())));
    std::array<pollfd, ARES_GETSOCK_MAXNUM> polled{};
    nfds_t count = 0;
    for (unsigned int i = 0; i < sockets.size(); ++i) {
        // The upper half of the mask tells the sockets to be written to.
        const bool reads = (mask >> i & 1U) != 0;
        const bool writes = (mask >> (i + ARES_GETSOCK_MAXNUM) & 1U) != 0;
        if (!reads && !writes) continue;
        polled.at(count++) = {sockets.at(i),
                              static_cast<short>((reads ? POLLIN : 0) | (writes ? POLLOUT : 0)), 0};
    }
    timeval step{0, WaitStep / std::chrono::microseconds(1)};
    timeval room{};
    const timeval* wait = ares_timeout(channel_, &step, &room);
    poll(polled.data(), count, static_cast<int>(wait->tv_sec * 1000 + wait->tv_usec / 1000 + 1));
    for (nfds_t i = 0; i < count; ++i) {
        const short events = polled.at(i).revents;
        const bool reads = (events & (POLLIN | POLLERR | POLLHUP)) != 0;
        const bool writes = (events & POLLOUT) != 0;
        if (!reads && !writes) continue;
        ares_process_fd(channel_, reads ? polled.at(i).fd : ARES_SOCKET_BAD,
                        writes ? polled.at(i).fd : ARES_SOCKET_BAD);
    }
    ares_process_fd(channel_, ARES_SOCKET_BAD, ARES_SOCKET_BAD);  // time-outs of the queries
}

NetError DnsChannel::Run(const bool& done, NetClock::time_point deadline,
                         const KeepWaiting& keepWaiting) {
    while (!done) {
        NetError error;
        if (!keepWaiting()) error = {net_error::Canceled, "The look-up was canceled."};
        if (NetClock::now() >= deadline) {
            error = {net_error::TimedOut, "The name service did not answer in time."};
        }
        if (error.Failed()) {
            ares_cancel(channel_);
            return error;
        }
        WaitForAnswers();
    }
    return {};
}

}  // namespace mailvane
