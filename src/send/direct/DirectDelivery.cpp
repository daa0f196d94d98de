#include "send/direct/DirectDelivery.h"

#include <algorithm>
#include <utility>

#include "core/settings/Settings.h"
#include "core/text/Text.h"
#include "platform/net/dns/MxLookup.h"
#include "platform/net/dns/NameResolver.h"
#include "platform/net/mime/MailAddress.h"

namespace mailvane {

namespace {

constexpr const char* Section = "MailServer";
constexpr const char* InvalidAddress = "Invalid e-mail address.";
constexpr double LargestPort = 65535;
constexpr double LongestPatience = 3600;
constexpr std::size_t MostExchangers = 10;  ///< of a domain: a run is not to wait for hundreds
constexpr std::string_view Ipv6Mark = "ipv6:";

/// A number of the user's settings that no form shows; `usual` when it is not there or out of
/// range.
int HiddenNumber(const Workbench& wb, const char* key, int usual, double largest) {
    const std::string text = GetUserSetting(wb, Section, key);
    const double number = NumberOf(text);
    return IsNumeric(text) && number >= 1 && number <= largest ? static_cast<int>(number) : usual;
}

std::string DomainOf(const std::string& address) {
    const std::size_t at = address.rfind('@');
    if (at == std::string::npos || !IsMailbox(address)) return {};
    return ToLower(address.substr(at + 1));
}

bool IsLiteral(const std::string& domain) {
    return domain.starts_with('[') && domain.ends_with(']');
}

/// The address in a literal, "[192.0.2.1]" or "[ipv6:2001:db8::1]".
std::string LiteralAddress(const std::string& domain) {
    std::string address = domain.substr(1, domain.size() - 2);
    if (address.starts_with(Ipv6Mark)) address.erase(0, Ipv6Mark.size());
    return address;
}

NetError Named(const std::string& name, const NetError& error) {
    return {error.code, name + ": " + error.description};
}

/// Another exchanger may still take the message: this one could not be talked to, or its answer is
/// for the moment only.
bool AnotherMayTakeIt(const NetError& error) {
    switch (error.code) {
        case net_error::ConnectFailed:
        case net_error::NameNotFound:
        case net_error::TlsFailed:
        case net_error::ConnectionLost:
        case net_error::TimedOut:
        case net_error::BadReply:
            return true;
        default:
            return error.code >= 400 && error.code < 500;
    }
}

/// Of the failures at several exchangers the last one counts, but a server's own answer says more
/// than a connection that was not made.
void KeepTelling(NetError& told, NetError later) {
    if (told.code >= 400 && later.code < 400) return;
    told = std::move(later);
}

/// The failures of several domains as one. A lost answer shows in the code, whatever else failed.
NetError Joined(const std::vector<NetError>& failures) {
    NetError joined;
    for (const NetError& failure : failures) {
        if (joined.Ok() || failure.code == net_error::AnswerLost) joined.code = failure.code;
        if (!joined.description.empty()) joined.description += "; ";
        joined.description += failure.description;
    }
    return joined;
}

}  // namespace

std::vector<DomainGroup> GroupByDomain(const std::vector<std::string>& addresses) {
    std::vector<DomainGroup> groups;
    std::map<std::string, std::size_t> places;
    for (const std::string& address : addresses) {
        const std::string domain = DomainOf(address);
        const auto [place, added] = places.emplace(domain, groups.size());
        if (added) groups.push_back({domain, {}});
        groups[place->second].addresses.push_back(address);
    }
    return groups;
}

DirectDelivery::DirectDelivery(const Workbench& wb, SmtpClient& smtp)
    : smtp_(smtp),
      // A server of the test's own cannot stand on port 25, and need not be waited for as long.
      port_(HiddenNumber(wb, "Port", 25, LargestPort)),
      patience_(HiddenNumber(wb, "Timeout", smtp.Timeout, LongestPatience)) {
    if (ToLower(GetUserSetting(wb, Section, "DefDNS")) != "false") return;
    const std::string servers = GetUserSetting(wb, Section, "DNS");
    if (servers != NotFound) dnsServers_ = Trim(servers);
}

void DirectDelivery::GiveUp() {
    givenUp_ = true;
    smtp_.SetAction(SmtpClient::Action::Idle).Ignore();
}

NetError DirectDelivery::Deliver(const std::vector<std::string>& recipients,
                                 const NoteDelivered& noteDelivered) {
    givenUp_ = false;
    refused_.clear();
    // What fails at one exchanger is no failure of the message yet.
    const auto onError = std::exchange(smtp_.onError, nullptr);
    const NetError outcome = DeliverToAll(recipients, noteDelivered);
    smtp_.onError = onError;
    if (outcome.Failed() && onError) onError(outcome.code, outcome.description);
    return outcome;
}

NetError DirectDelivery::DeliverToAll(const std::vector<std::string>& recipients,
                                      const NoteDelivered& noteDelivered) {
    TakeSettings();
    const std::vector<DomainGroup> groups = ValidGroups(recipients);
    if (groups.empty()) {
        const bool none = std::exchange(refused_, {}).empty();
        return none ? NetError{net_error::NoRecipients, "No recipient is given."}
                    : NetError{net_error::BadAddress, InvalidAddress};
    }
    std::vector<NetError> failures;
    for (const DomainGroup& group : groups) {
        const NetError failed = DeliverTo(group);
        const bool complete = failed.Ok() && failures.empty() && &group == &groups.back();
        if (failed.Failed()) {
            failures.push_back(Named(group.domain, failed));
            if (givenUp_) break;
        } else if (!complete && !noteDelivered(group.addresses)) {
            failures.push_back(Named(
                group.domain, {net_error::FileUnwritable, "The delivery could not be recorded."}));
            break;
        }
    }
    return Joined(failures);
}

void DirectDelivery::TakeSettings() {
    smtp_.MailPort = port_;
    smtp_.Timeout = patience_;
    smtp_.ConnectTimeout = std::min(smtp_.ConnectTimeout, patience_);
    smtp_.DnsServers = dnsServers_;
    // The names in certificates seldom are those of the exchangers, and a connection that anybody
    // could listen to would be the alternative (RFC 7435).
    smtp_.VerifyCertificate = false;
    smtp_.SameMessage = true;
}

/// What is no address is refused here.
std::vector<DomainGroup> DirectDelivery::ValidGroups(const std::vector<std::string>& recipients) {
    std::vector<DomainGroup> groups = GroupByDomain(recipients);
    std::erase_if(groups, [this](const DomainGroup& group) {
        if (!group.domain.empty()) return false;
        for (const std::string& address : group.addresses)
            refused_.push_back({address, InvalidAddress});
        return true;
    });
    return groups;
}

/// To one domain: its exchangers are tried in turn. One that takes no part is tried last from then
/// on, so that it is waited for once.
NetError DirectDelivery::DeliverTo(const DomainGroup& group) {
    Route& route = RouteTo(group.domain);
    if (route.failure.Failed()) return route.failure;
    smtp_.Recipients = group.addresses;
    std::vector<std::string>& hosts = route.hosts;
    NetError told;
    bool reached = false;
    for (std::size_t left = hosts.size(); left > 0; --left) {
        const std::string host = hosts.front();
        const Attempt attempt = Try(host);
        if (attempt.failure.Ok()) {
            const auto& refused = smtp_.RefusedRecipients();
            refused_.insert(refused_.end(), refused.begin(), refused.end());
            return {};
        }
        reached |= attempt.connected;
        KeepTelling(told, Named(host, attempt.failure));
        Remark(host + ": " + attempt.failure.description);
        const bool itsLastWord = attempt.connected && !AnotherMayTakeIt(attempt.failure);
        if (givenUp_ || !itsLastWord) std::rotate(hosts.begin(), hosts.begin() + 1, hosts.end());
        if (givenUp_ || itsLastWord) return told;
    }
    if (!reached) route.failure = told;
    return told;
}

DirectDelivery::Attempt DirectDelivery::Try(const std::string& host) {
    if (NetError failed = Connect(host); failed.Failed()) return {false, failed};
    // While nothing was under way there was nothing to cancel.
    if (givenUp_) return {true, {net_error::Canceled, "The delivery was canceled."}};
    return {true, smtp_.SetAction(SmtpClient::Action::Send)};
}

NetError DirectDelivery::Connect(const std::string& host) {
    smtp_.MailServer = host;
    smtp_.ConnectionSecurity = withoutTls_.contains(host) ? Security::None : Security::Automatic;
    NetError failed = smtp_.SetAction(SmtpClient::Action::Connect);
    if (failed.code != net_error::TlsFailed) return failed;
    // A server with broken TLS would get no mail at all otherwise, and nothing is given away: who
    // can spoil the handshake can as well hide that TLS is offered.
    Remark(host + ": " + failed.description);
    withoutTls_.insert(host);
    smtp_.ConnectionSecurity = Security::None;
    return smtp_.SetAction(SmtpClient::Action::Connect);
}

// --- who takes the mail of a domain -----------------------------------------------------------

DirectDelivery::Route& DirectDelivery::RouteTo(const std::string& domain) {
    Route& route = routes_[domain];
    const bool known = !route.hosts.empty() || (route.failure.Failed() && !route.givenUp);
    if (!known) route = FindRoute(domain);
    return route;
}

DirectDelivery::Route DirectDelivery::FindRoute(const std::string& domain) {
    Route route;
    if (IsLiteral(domain)) {
        const std::string address = LiteralAddress(domain);
        if (IsIpAddress(address))
            route.hosts.push_back(address);
        else
            route.failure = {net_error::BadAddress, "This is no address of a server."};
        return route;
    }
    Remark("Looking up the mail exchangers of " + domain + ".");
    const auto keepWaiting = [this] {
        if (smtp_.onIdle) smtp_.onIdle();
        return !givenUp_;
    };
    const auto deadline = NetClock::now() + std::chrono::seconds(smtp_.ConnectTimeout);
    FoundExchangers found = LookUpExchangers(domain, dnsServers_, deadline, keepWaiting, random_);
    found.hosts.resize(std::min(found.hosts.size(), MostExchangers));
    return {std::move(found.hosts), std::move(found.error), givenUp_};
}

/// For the list of the conversation and the session log.
void DirectDelivery::Remark(const std::string& text) const {
    if (smtp_.onProtocol) smtp_.onProtocol(Direction::None, text);
}

}  // namespace mailvane
