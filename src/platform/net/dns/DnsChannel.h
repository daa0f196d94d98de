#pragma once

#include <ares.h>

#include <string>

#include "platform/net/NetError.h"
#include "platform/net/NetWait.h"

namespace mailvane {

/// One c-ares channel with its wait loop.
class DnsChannel {
public:
    DnsChannel() = default;
    ~DnsChannel();
    DnsChannel(const DnsChannel&) = delete;
    DnsChannel& operator=(const DnsChannel&) = delete;

    /// `servers` as ResolveName takes them. Fails with NameNotFound.
    NetError Open(const std::string& servers);
    ares_channel Handle() const { return channel_; }
    /// Runs the queries of the channel until `done`, which their callbacks set. Fails with TimedOut
    /// at the deadline and with Canceled when `keepWaiting` says so; the queries are given up then,
    /// with their callbacks called.
    NetError Run(const bool& done, NetClock::time_point deadline, const KeepWaiting& keepWaiting);

private:
    void WaitForAnswers();

    ares_channel channel_ = nullptr;
};

}  // namespace mailvane
