#pragma once

#include <cstdint>
#include <functional>
#include <set>
#include <vector>

#include "core/Workbench.h"

namespace mailvane {

/// Takes messages that were sent out of the Outbox: with `keepCopies` each is copied to Sent Items,
/// its row is deleted, and so is its entry in the ledger. All three or none, whenever the program
/// dies. A message that cannot be finished keeps its row and entry; those are returned.
/// `afterGroup` runs now and then; each failure is told to `onFailure`, one of the whole store
/// once.
std::set<std::int32_t> FinishSentMessages(Workbench& wb, const std::vector<std::int32_t>& ids,
                                          bool keepCopies, const std::function<void()>& afterGroup,
                                          const std::function<void(const DaoError&)>& onFailure);

}  // namespace mailvane
