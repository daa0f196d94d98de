#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "platform/dao/Database.h"

namespace mailvane {

/// The messages that a server has accepted and that have not left the Outbox yet, by their row's
/// ID: what lets an interrupted run be finished without sending anything twice. A system table of
/// the store.
namespace SentLedger {
/// Makes the ledger when it is not there, and opens it for Record.
DaoResult<std::shared_ptr<Recordset>> Open(Database& store);
/// The caller's transaction puts it on the disk.
DaoError Record(Recordset& ledger, std::int32_t outboxId);
DaoResult<std::vector<std::int32_t>> Entries(Database& store);  ///< empty when there never were any
/// Forgets the messages that have left the Outbox.
DaoError RemoveGone(Database& store);
}  // namespace SentLedger

}  // namespace mailvane
