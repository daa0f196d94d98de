#include "connection/ConnectionService.h"

#include <algorithm>

#include "connection/frmConnectionTest.h"
#include "core/settings/Settings.h"
#include "core/text/Text.h"

namespace mailvane {

namespace {

MailAccount IncomingAccount(const Workbench& wb, const frmSettings& settings) {
    MailAccount account;
    account.certificateAuthorities = TrustedAuthorities(wb);
    account.protocol = MailAccount::Protocol::Pop3;
    account.server = Trim(settings.txtPOPServer.Text());
    account.port = static_cast<int>(NumberOf(settings.txtPOPPort.Text()));
    account.security = static_cast<Security>(std::max(settings.cmbPOPSecurity.ListIndex(), 0));
    account.verifyCertificate = settings.chkPOPVerify.Checked();
    account.user = settings.txtPOPUser.Text();
    account.password = settings.txtPOPPassword.Text();
    return account;
}

}  // namespace

std::string TrustedAuthorities(const Workbench& wb) {
    const std::string file = GetUserSetting(wb, "MailServer", "CertificateAuthorities");
    return file == NotFound ? std::string() : file;
}

ConnectionService::ConnectionService(Workbench& wb) : wb_(wb) {
    created_ = wb.forms.created.Observe([this](Form& form) {
        if (auto* settings = dynamic_cast<frmSettings*>(&form)) Attach(*settings);
    });
}

void ConnectionService::Attach(frmSettings& settings) {
    settings.cmdTestPOP.onClick = [this, &settings] {
        ShowConnectionTest(wb_, IncomingAccount(wb_, settings));
    };
}

}  // namespace mailvane
