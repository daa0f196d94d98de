#pragma once

#include "core/Workbench.h"

namespace mailvane {

class frmViewDatabase;

/// Gives the view's buttons for table copies, structure, upkeep and printing their work. To be
/// called before the view is loaded.
void AttachTableCommands(Workbench& wb, frmViewDatabase& view);

}  // namespace mailvane
