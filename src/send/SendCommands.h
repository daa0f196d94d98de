#pragma once

#include "core/Workbench.h"

namespace mailvane {

/// The commands of sending and of what it needs and leaves behind.
void RegisterSendCommands(Workbench& wb);

/// What "Send and Receive" says while nothing receives.
inline constexpr const char* ReceivingLater = "Receiving comes with a later version.";

/// Both halves of "Send and Receive". Sending comes first and without the final step, so that only
/// the receive half may hang up.
void SendThenReceive(Workbench& wb);

}  // namespace mailvane
