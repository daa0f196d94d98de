#pragma once

#include "core/Workbench.h"
#include "core/settings/frmSettings.h"
#include "platform/net/MailAccount.h"

namespace mailvane {

/// The mail accounts of the project, from its settings. Two settings of the user's that no form
/// shows have their part in them, section MailServer: `CertificateAuthorities`, a PEM file in place
/// of the system's, and `HelloName`, how this machine introduces itself.
class ProjectAccounts {
public:
    explicit ProjectAccounts(const Workbench& wb);

    /// The relay, without its logon: a run reads that once (ReadLogon).
    MailAccount Outgoing(const frmSettings& settings) const;
    MailAccount Incoming(const frmSettings& settings) const;

private:
    MailAccount usual_;
};

}  // namespace mailvane
