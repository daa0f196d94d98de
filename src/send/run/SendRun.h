#pragma once

#include "send/run/SendJob.h"

namespace mailvane {

/// One send run: takes every row of the Outbox, in table order, through BuildOutgoingMessage,
/// records what became of it, moves the good ones out, and reports. Runs on the one thread; buttons
/// and events arrive while a message goes out, as flags and actions of the transfer component. It
/// holds the store and the settings, so that nothing goes away under it.
void SendAll(Workbench& wb, frmSettings& settings, SendMemory& memory);

}  // namespace mailvane
