#pragma once

#include "core/run/LongRun.h"

namespace mailvane {

/// Writes the message store anew, dense, through the file "messages.dat.bak", which is gone
/// afterwards. The store is closed for it and open again afterwards, unless the program is being
/// left. On failure the store is as it was.
DaoError CompactMessages(Workbench& wb, LongRun& run);
/// The same for the recipients database, which is repaired first and on which no view is open.
DaoError CompactDatabase(Workbench& wb, const std::string& path, LongRun& run);
void UnloadRecipientViews(Workbench& wb);
/// Closes the store and deletes a back-up that a crash has left.
void CleanUpBackup(Workbench& wb);

}  // namespace mailvane
