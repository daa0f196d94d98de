#pragma once

#include <string>
#include <vector>

#include "platform/forms/ActiveBar.h"

namespace mailvane {

/// The tools of the main window and the menus and tool bars that hold them. A tool whose work is
/// not built yet is there and disabled, with a tip that says so.
void AddMainTools(ActiveBar& bar);
std::vector<Band> MainBands();

}  // namespace mailvane
