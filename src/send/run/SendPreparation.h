#pragma once

#include <optional>

#include "send/run/SendJob.h"

namespace mailvane {

/// The Outbox of one run, open at its first row, and what earlier runs have left of it.
struct OpenOutbox {
    std::shared_ptr<Recordset> rows;
    std::shared_ptr<Recordset> ledger;    ///< where accepted messages are recorded
    AcceptedMessages acceptedBefore;      ///< an earlier run could not take these out
    DeliveredRecipients deliveredBefore;  ///< recipients who have their message already
};

/// Opens the store, finishes what an interrupted run has left, lists the messages on the status
/// form and opens the Outbox. Says how the run ends when there is nothing to go through.
std::optional<SendOutcome> PrepareSending(SendJob& job, OpenOutbox& outbox);

}  // namespace mailvane
