#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include "platform/dao/file/Database.h"
#include "platform/os/DateTime.h"

namespace mailvane {

/// Messages that a server has accepted, by their row's ID in the Outbox, with the time of the
/// attempt.
using AcceptedMessages = std::map<std::int32_t, DateTime>;

/// The messages that a server has accepted and that have not left the Outbox yet: what lets an
/// interrupted run be finished without sending anything twice. A system table of the store.
namespace SentLedger {
/// Opens the ledger for Record, and makes it when it is not there. Fails when the store takes no
/// changes.
DaoResult<std::shared_ptr<Recordset>> Open(Database& store);
/// The caller's transaction puts it on the disk.
DaoError Record(Recordset& ledger, std::int32_t outboxId, DateTime attempt);
DaoResult<AcceptedMessages> Entries(Database& store);  ///< empty when there never were any
/// Forgets the messages that have left the Outbox.
DaoError RemoveGone(Database& store);
}  // namespace SentLedger

/// Takes the entries out of a ledger whose "ID" names no message of the Outbox any more.
DaoError RemoveEntriesWithoutMessage(Database& store, const std::string& ledger);

}  // namespace mailvane
