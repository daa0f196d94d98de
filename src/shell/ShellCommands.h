#pragma once

#include "core/Workbench.h"

namespace mailvane {

/// The commands that the main window itself carries out.
void RegisterShellCommands(Workbench& wb);

}  // namespace mailvane
