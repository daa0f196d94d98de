#pragma once

#include <string>

#include "core/Workbench.h"

namespace mailvane {

/// The text alone with an icon.
void Tell(Workbench& wb, const std::string& text, BoxIcon icon = BoxIcon::None,
          const std::string& title = ProgramTitle);
/// A question; true for Yes.
bool AskYesNo(Workbench& wb, const std::string& text, BoxIcon icon = BoxIcon::Question,
              const std::string& title = ProgramTitle);
/// The form modally, with the other windows out of reach.
void ShowModalDialog(Workbench& wb, Form& form);

}  // namespace mailvane
