#pragma once

#include "core/Workbench.h"

namespace mailvane {

/// The commands that set up and dial the connection.
void RegisterConnectionCommands(Workbench& wb);

}  // namespace mailvane
