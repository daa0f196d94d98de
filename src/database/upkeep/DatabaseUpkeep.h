#pragma once

#include "core/Workbench.h"

namespace mailvane {

enum class MaintainAction { Repair = 7, Compact = 8 };

/// Repairs or compacts the view's database file, with every connection to it closed meanwhile.
/// Compacting asks first, and leaves a copy of the compacted file with ".bak" behind its name.
void MaintainDatabase(Workbench& wb, MaintainAction action);

/// Removes what such a run has left in the project's folder when the program was killed in it.
void RemoveUpkeepLeftovers(Workbench& wb);

}  // namespace mailvane
