#pragma once

#include <functional>
#include <string>

#include "platform/net/MailAccount.h"

namespace mailvane {

/// What a test tells while it runs.
struct ConnectionTestEvents {
    /// One step is over: "Name", "Connection", "Encryption", "Logon", whether it worked, and what
    /// there is to say, in the server's own words where it said something.
    std::function<void(const std::string& step, bool worked, const std::string& text)> onStep;
    /// Called at least every 50 ms; false ends the test.
    std::function<bool()> goOn;
};

/// Does what a run does up to the logon, and takes leave. True when all steps worked. A test that
/// was ended tells so in its step.
bool TestMailAccount(const MailAccount& account, const ConnectionTestEvents& events);

}  // namespace mailvane
