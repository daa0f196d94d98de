#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "core/Workbench.h"
#include "platform/net/smtp/RefusedRecipient.h"
#include "platform/os/DateTime.h"

namespace mailvane {

/// What became of the addresses of one domain.
struct DomainOutcome {
    std::string domain;  ///< in lower case; "" for what is no address, OtherDomains for a rest
    std::int64_t sent = 0;
    std::int64_t refused = 0;

    std::int64_t Total() const { return sent + refused; }
    friend bool operator==(const DomainOutcome&, const DomainOutcome&) = default;
};

inline constexpr const char* OtherDomains = "(others)";

/// The domains with the most addresses, the largest first, and behind these `most` the sum of the
/// others.
std::vector<DomainOutcome> LargestDomains(std::vector<DomainOutcome> domains, std::size_t most);

/// What one run has done.
struct DeliveryRun {
    enum class Kind { Merge, Send };
    static constexpr std::size_t MostDomains = 1000;
    static constexpr std::size_t MostRefused = 10000;

    DateTime began;
    Kind kind = Kind::Send;
    // Of a merge.
    std::string table;           ///< the recipients
    std::int64_t generated = 0;  ///< messages put into the Outbox
    // Of a send run. A message to several addresses counts each of them.
    std::int64_t left = 0;                  ///< messages in the Outbox at its end
    std::vector<DomainOutcome> domains;     ///< the file keeps the largest
    std::vector<RefusedRecipient> refused;  ///< at most MostRefused, the domains count all

    std::int64_t Sent() const;
    std::int64_t Refused() const;
};

/// Text from outside, fit for the report: valid UTF-8 of at most `longest` bytes, without control
/// characters other than tabs and line ends.
std::string ReportText(const std::string& text, std::size_t longest = 500);

/// The report of a project; of the program without one, when the folder is "".
std::string DeliveryReportPath(const Workbench& wb, const std::string& projectFolder);

/// The runs in a report, oldest first. Lines that say nothing of a run are passed over. Empty, with
/// the reason in `error`, when there is a file that cannot be read.
std::vector<DeliveryRun> ReadDeliveryRuns(const std::string& path, std::string& error);

/// Adds a run behind the last ones, of which 20 are kept. "", or why the report stays as it was.
std::string AddDeliveryRun(const std::string& path, DeliveryRun run);

}  // namespace mailvane
