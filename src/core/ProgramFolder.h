#pragma once

#include "core/Workbench.h"

namespace mailvane {

/// Makes the program folder with "Projects" in it, and copies the shipped files (templates, task
/// marker, help) that are missing there. What is there already stays. False when the folder or one
/// of the files could not be written.
bool PrepareProgramFolder(Workbench& wb);

}  // namespace mailvane
