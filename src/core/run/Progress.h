#pragma once

#include <string>

#include "core/Workbench.h"

namespace mailvane {

/// With `max` not 0 opens the progress display (frmStatus and the bar of the main window) for that
/// many steps; with `max` 0 sets `value` on both, and closes them when it is the last. Captions are
/// set when not empty; `show` false keeps frmStatus hidden.
void UpdateProgress(Workbench& wb, long max, long value, const std::string& caption1 = {},
                    const std::string& caption2 = {}, bool show = true);
/// Pump events, briefly; every long loop calls it once an item.
void YieldBriefly(Workbench& wb);
void WaitSeconds(Workbench& wb, double seconds);
/// The form modally, with the owner's other windows out of reach.
void ShowModalDialog(Workbench& wb, Form& form);
bool IsFormLoaded(const Workbench& wb, const std::string& name);
/// Busy pointer for the length of a block.
class BusyPointer {
public:
    explicit BusyPointer(Workbench& wb);
    ~BusyPointer();
    BusyPointer(const BusyPointer&) = delete;
    BusyPointer& operator=(const BusyPointer&) = delete;

private:
    Workbench& wb_;
};
/// Message boxes: the text alone with an icon, or a question answered Yes (true) or No.
void Tell(Workbench& wb, const std::string& text, BoxIcon icon = BoxIcon::None,
          const std::string& title = ProgramTitle);
bool AskYesNo(Workbench& wb, const std::string& text, BoxIcon icon = BoxIcon::Question,
              const std::string& title = ProgramTitle);
int FreeResourcesPercent();  ///< 0: this system has no such pool
std::string GetLocalIpAddress();

}  // namespace mailvane
