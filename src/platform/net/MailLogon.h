#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/net/MailAccount.h"

namespace mailvane {

/// A line that a client says to its server.
struct LogonLine {
    std::string text;
    bool secret = false;  ///< holds a password
};

/// What logs on to the account, each line after a good answer to the one before; nothing when the
/// account has no user. `mechanisms` are those that an SMTP server offers behind AUTH: it is LOGIN
/// unless there is only PLAIN (RFC 4616). POP3 has USER and PASS.
std::vector<LogonLine> LogonLines(const MailAccount& account, std::string_view mechanisms = "");

/// A secret line as a protocol shows it: behind its first word, or as a whole, "***".
std::string WithoutSecret(std::string_view line);

}  // namespace mailvane
