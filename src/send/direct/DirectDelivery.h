#pragma once

#include <functional>
#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "core/Workbench.h"
#include "platform/net/smtp/SmtpClient.h"

namespace mailvane {

/// The addresses of one domain.
struct DomainGroup {
    std::string domain;  ///< in lower case; an address literal with its brackets
    std::vector<std::string> addresses;
};

/// Addresses by domain, in the order in which the domains appear. An address that no server takes,
/// or without a domain, is in the group of the domain "".
std::vector<DomainGroup> GroupByDomain(const std::vector<std::string>& addresses);

/// Delivery straight to the mail exchangers of the recipients' domains, without a server of one's
/// own. One per run: it remembers who takes the mail of a domain and which exchanger answers, so
/// that a dead one costs its time-out once. The name service, and two settings that no form shows
/// (`Port`, and `Timeout` in seconds), come from the user's settings, section MailServer.
class DirectDelivery {
public:
    /// `smtp` outlives it.
    DirectDelivery(const Workbench& wb, SmtpClient& smtp);

    /// Told of recipients whose domain has taken the message, before the next one is tried. Not
    /// told when that completes it: the result says so. False, when it could not be noted, ends the
    /// delivery.
    using NoteDelivered = std::function<bool(const std::vector<std::string>& addresses)>;

    /// Delivers the message that the component holds, to those addresses. Succeeds when each of
    /// their domains has taken it for somebody; otherwise the description names each domain that
    /// has not, its exchanger and the answer, and the component's onError is told the same once.
    NetError Deliver(const std::vector<std::string>& recipients,
                     const NoteDelivered& noteDelivered);
    /// Ends a delivery from inside its waits; no other exchanger is tried then.
    void GiveUp();

    /// Of the last message: addresses that were refused while their domain took it for others.
    const std::vector<RefusedRecipient>& RefusedRecipients() const { return refused_; }

private:
    /// Who takes the mail of a domain.
    struct Route {
        std::vector<std::string> hosts;  ///< the one to begin with first
        NetError failure;                ///< nobody does, as far as this run knows
        bool givenUp = false;            ///< in the middle of the look-up
    };
    struct Attempt {
        bool connected = false;  ///< greeted, before anything of the message
        NetError failure;
    };

    NetError DeliverToAll(const std::vector<std::string>& recipients,
                          const NoteDelivered& noteDelivered);
    void TakeSettings();
    std::vector<DomainGroup> ValidGroups(const std::vector<std::string>& recipients);
    NetError DeliverTo(const DomainGroup& group);
    Route& RouteTo(const std::string& domain);
    Route FindRoute(const std::string& domain);
    Attempt Try(const std::string& host);
    NetError Connect(const std::string& host);
    void Remark(const std::string& text) const;

    SmtpClient& smtp_;
    int port_ = 25;
    int patience_ = 0;
    std::string dnsServers_;
    std::mt19937 random_{std::random_device()()};
    std::map<std::string, Route> routes_;
    std::set<std::string> withoutTls_;  ///< exchangers whose TLS does not work
    std::vector<RefusedRecipient> refused_;
    bool givenUp_ = false;
};

}  // namespace mailvane
