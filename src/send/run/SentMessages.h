#pragma once

#include <functional>

#include "core/Workbench.h"
#include "store/SentLedger.h"

namespace mailvane {

/// Takes messages that were sent out of the Outbox: with `keepCopies` each is copied to Sent Items,
/// and its row is deleted. Both or neither, whenever the program dies; the ledger forgets them when
/// all is done. A message that cannot be finished keeps its row and entry; those are returned.
/// `afterGroup` runs now and then; each failure is told to `onFailure`, one of the whole store
/// once.
AcceptedMessages FinishSentMessages(Workbench& wb, const AcceptedMessages& accepted,
                                    bool keepCopies, const std::function<void()>& afterGroup,
                                    const std::function<void(const DaoError&)>& onFailure);

}  // namespace mailvane
