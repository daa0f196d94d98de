#pragma once

#include <string>

#include "core/Workbench.h"

namespace mailvane {

/// With `max` not 0 opens the progress display (frmStatus and the bar of the main window) for that
/// many steps; with `max` 0 sets `value` on both, and closes them when it is the last. Captions are
/// set when not empty. The window of frmStatus comes half a second after the opening; `show` false
/// keeps it hidden.
void UpdateProgress(Workbench& wb, long max, long value, const std::string& caption1 = {},
                    const std::string& caption2 = {}, bool show = true);

}  // namespace mailvane
