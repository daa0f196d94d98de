#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "send/report/DeliveryReport.h"
#include "store/MessageRecord.h"
#include "store/SentLedger.h"

namespace mailvane {

/// Notes for the delivery report what becomes of the messages of one send run.
class DeliveryNotes {
public:
    explicit DeliveryNotes(DateTime began);

    /// A part of the present message was taken, whatever becomes of the rest.
    void NotePart(const std::vector<std::string>& addresses);
    /// The present message has had its attempt: `error` is "" when it was accepted. `refusals` are
    /// the answers that single addresses got. Who had it before is not counted again.
    void NoteMessage(const MessageRecord& record, const std::set<std::string>& hadBefore,
                     const std::vector<RefusedRecipient>& refusals, const std::string& error);
    /// Messages of the Outbox that a run which died had sent; `counted` says which a report has
    /// already, and is told of them.
    void NoteAccepted(Database& store, const AcceptedMessages& accepted,
                      std::set<std::int32_t>& counted);

    bool Empty() const { return domains_.empty(); }
    /// The run, when it has ended with so many messages in the Outbox.
    DeliveryRun Take(std::int64_t left);

private:
    void AddSent(const std::vector<std::string>& addresses);
    void AddRefused(const std::string& address, const std::string& answer);

    DeliveryRun run_;
    std::map<std::string, DomainOutcome> domains_;
    std::set<std::string> part_;  ///< of the present message
};

}  // namespace mailvane
