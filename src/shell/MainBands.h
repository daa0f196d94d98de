#pragma once

#include <vector>

#include "platform/forms/ActiveBar.h"

namespace mailvane {

/// The menus and tool bars of the main window, made of commands by their names.
std::vector<Band> MainBands();

}  // namespace mailvane
