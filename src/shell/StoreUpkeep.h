#pragma once

#include "core/run/LongRun.h"
#include "platform/dao/file/Workspace.h"

namespace mailvane {

/// Writes the message store anew, dense, through the file "messages.dat.bak", which is gone
/// afterwards. The store is closed for it and open again afterwards, unless the program is being
/// left. A damaged store is repaired instead. On failure the store is as it was.
DaoResult<RepairReport> CompactMessages(Workbench& wb, LongRun& run);
/// The same for the recipients database, on which no view is open.
DaoResult<RepairReport> CompactDatabase(Workbench& wb, const std::string& path, LongRun& run);
void UnloadRecipientViews(Workbench& wb);
/// Closes the store and deletes a back-up that a crash has left.
void CleanUpBackup(Workbench& wb);

}  // namespace mailvane
