#pragma once

#include <functional>
#include <string>

#include "platform/net/smtp/SmtpClient.h"

namespace mailvane {

/// An account on a mail server, as the settings have it.
struct MailAccount {
    enum class Protocol { Smtp, Pop3 };
    Protocol protocol = Protocol::Smtp;
    std::string server;
    int port = 0;
    Security security = Security::Automatic;
    bool verifyCertificate = true;
    std::string certificateAuthorities;  ///< a PEM file in place of the system's; "" for those
    std::string user;                    ///< "" for none: no logon is tried
    std::string password;
};

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
