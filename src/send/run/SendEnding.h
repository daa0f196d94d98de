#pragma once

#include "core/run/LongRun.h"
#include "send/run/MessageTransfer.h"
#include "send/run/SendJob.h"

namespace mailvane {

/// The end of every run: the messages sent leave the Outbox, the line is hung up where that is
/// wanted, the outcome is told, logged and reported, the store and the status form are closed.
void EndSending(SendJob& job, MessageTransfer& transfer, const LongRun& run, SendOutcome outcome);

}  // namespace mailvane
