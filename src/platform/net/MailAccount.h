#pragma once

#include <string>

#include "platform/net/Security.h"

namespace mailvane {

/// An account on a mail server: where it is, how it is reached, and who logs on. The clients of
/// both protocols have these as their properties, so that an account can be given to them as a
/// whole.
struct MailAccount {
    enum class Protocol { Smtp, Pop3 };

    Protocol MailProtocol = Protocol::Smtp;
    std::string MailServer;
    int MailPort = 25;
    /// Automatic means implicit TLS on the ports 465 (SMTP) and 995 (POP3).
    Security ConnectionSecurity = Security::Automatic;
    bool VerifyCertificate = true;
    std::string CertificateAuthorities;  ///< a PEM file in place of the system's; "" for those
    std::string LocalName;  ///< how this machine introduces itself; "" takes its own name
    std::string User;       ///< "" for none: there is no logon
    std::string Password;

    bool operator==(const MailAccount&) const = default;
};

}  // namespace mailvane
