#pragma once

#include "core/Workbench.h"

namespace mailvane {

class frmViewDatabase;

/// The commands of the main window that work on the recipients database.
void RegisterDatabaseCommands(Workbench& wb);
/// Gives the database view the tools that work on its table, and their buttons what they do. To be
/// called before the view is loaded.
void AttachTableTools(Workbench& wb, frmViewDatabase& view);

}  // namespace mailvane
