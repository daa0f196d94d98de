#pragma once

#include "core/Workbench.h"

namespace mailvane {

/// Writes the message store anew, dense, through the file "messages.dat.bak", which is gone
/// afterwards. The store is closed for it and open again afterwards, unless the program is being
/// left. On failure the store is as it was.
DaoError CompactMessages(Workbench& wb);
/// The same for the recipients database of the project, which is repaired first. Does nothing when
/// the project names none. The views on it are unloaded.
DaoError CompactDatabase(Workbench& wb);
/// Closes the store and deletes a back-up that a crash has left.
void CleanUpBackup(Workbench& wb);

}  // namespace mailvane
