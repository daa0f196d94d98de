#include <gtest/gtest.h>

#include <set>

#include "platform/net/dns/MxLookup.h"
#include "support/FakeDnsServer.h"

namespace mailvane {
namespace {

using Hosts = std::vector<std::string>;
using std::chrono::milliseconds;

TEST(MxLookup, OrderIsThatOfPreferenceAndEqualOnesShareTheLoad) {
    std::mt19937 random(1);
    std::set<Hosts> orders;
    for (int i = 0; i < 100; ++i)
        orders.insert(InOrderOfPreference({{20, "c"}, {10, "a"}, {0, ""}, {10, "b"}}, random));
    EXPECT_EQ(orders, (std::set<Hosts>{{"a", "b", "c"}, {"b", "a", "c"}}));
}

TEST(MxLookup, AnswersOfTheNameService) {
    test::FakeDnsServer dns;
    dns.names["two.test"].exchangers = {{20, "mx2.two.test"}, {5, "mx1.two.test"}};
    dns.names["plain.test"].address = "127.0.0.2";
    dns.names["null.test"].exchangers = {{0, ""}};
    dns.names["broken.test"].fails = true;
    dns.names["silent.test"].silent = true;
    const struct {
        const char* domain;
        int code;
        Hosts hosts;
    } rows[] = {
        {"two.test", 0, {"mx1.two.test", "mx2.two.test"}},
        {"plain.test", 0, {"plain.test"}},
        {"unknown.test", 0, {"unknown.test"}},  // it may stand in the hosts file
        {"null.test", net_error::NoMailTaken, {}},
        {"broken.test", net_error::NameNotFound, {}},
        {"silent.test", net_error::TimedOut, {}},
    };
    std::mt19937 random(1);
    for (const auto& row : rows) {
        SCOPED_TRACE(row.domain);
        const FoundExchangers found = LookUpExchangers(
            row.domain, dns.Address(), NetClock::now() + milliseconds(500), [] { return true; },
            random);
        EXPECT_EQ(found.error.code, row.code) << found.error.description;
        EXPECT_EQ(found.hosts, row.hosts);
    }
    int waits = 0;
    const auto canceled = LookUpExchangers(
        "silent.test", dns.Address(), NetClock::now() + std::chrono::minutes(1),
        [&] { return ++waits < 3; }, random);
    EXPECT_EQ(canceled.error.code, net_error::Canceled);
    const auto nowhere = LookUpExchangers("two.test", "a.b.c.d", NetClock::now(), {}, random);
    EXPECT_EQ(nowhere.error.code, net_error::NameNotFound);
}

}  // namespace
}  // namespace mailvane
