#pragma once

#include "core/Workbench.h"

namespace mailvane {

/// The commands around the project and the program itself.
void RegisterCoreCommands(Workbench& wb);

}  // namespace mailvane
