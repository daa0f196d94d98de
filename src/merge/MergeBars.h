#pragma once

#include "platform/forms/ActiveBar.h"

namespace mailvane {

/// Gives the merge view's bar its tools, menus and tool bars.
void BuildMergeBars(ActiveBar& bar);

}  // namespace mailvane
