#pragma once

#include "core/Workbench.h"

namespace mailvane {

/// The commands of writing messages, to many and to one.
void RegisterMergeCommands(Workbench& wb);

}  // namespace mailvane
