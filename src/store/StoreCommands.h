#pragma once

#include "core/Workbench.h"

namespace mailvane {

/// The command that shows the mail folders.
void RegisterStoreCommands(Workbench& wb);

}  // namespace mailvane
