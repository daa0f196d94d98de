#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "platform/dao/file/Database.h"

namespace mailvane {

/// Whom messages that are still in the Outbox have reached already, by their row's ID: bare
/// addresses.
using DeliveredRecipients = std::map<std::int32_t, std::set<std::string>>;

/// The recipients whose servers have taken a message that others have not: what lets the rest of it
/// be delivered later without sending anything twice. A system table of the store.
namespace DeliveredLedger {
/// On the disk when the call returns. Makes the table when it is not there.
DaoError Record(Database& store, std::int32_t outboxId, const std::vector<std::string>& addresses);
DaoResult<DeliveredRecipients> Entries(Database& store);  ///< empty when there never were any
/// Forgets the messages that have left the Outbox.
DaoError RemoveGone(Database& store);
}  // namespace DeliveredLedger

}  // namespace mailvane
