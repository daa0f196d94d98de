#include "core/Waiting.h"

namespace mailvane {

void YieldBriefly(Workbench& wb) {
    wb.platform.windows.YieldBriefly();
}

void WaitSeconds(Workbench& wb, double seconds) {
    wb.platform.windows.WaitSeconds(seconds);
}

BusyPointer::BusyPointer(Workbench& wb) : wb_(wb) {
    if (wb_.state.BusyPointers++ == 0) wb_.platform.windows.SetPointer(MousePointer::Busy);
}

BusyPointer::~BusyPointer() {
    if (--wb_.state.BusyPointers == 0) wb_.platform.windows.SetPointer(MousePointer::Normal);
}

}  // namespace mailvane
