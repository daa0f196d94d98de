#pragma once

#include "core/Workbench.h"

namespace mailvane {

/// Pump events, briefly; every long loop calls it once an item.
void YieldBriefly(Workbench& wb);
void WaitSeconds(Workbench& wb, double seconds);

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

}  // namespace mailvane
