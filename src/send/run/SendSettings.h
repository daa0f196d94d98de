#pragma once

#include "core/Workbench.h"
#include "core/settings/frmSettings.h"

namespace mailvane {

/// True when a send run must not start: the settings lack something, or there is no line. Tells
/// the user why, unless nobody is there. `dialPromptShown` keeps the warning of a missing line from
/// coming again within one command.
bool ValidateSendSettings(Workbench& wb, frmSettings& settings, bool& dialPromptShown);

}  // namespace mailvane
