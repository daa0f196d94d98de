#pragma once

#include "core/Workbench.h"

namespace mailvane {

/// The commands of receiving mail and of what is done with it.
void RegisterReceiveCommands(Workbench& wb);

}  // namespace mailvane
