#include "connection/ProjectAccounts.h"

#include <algorithm>

#include "core/settings/Settings.h"
#include "core/text/Text.h"

namespace mailvane {

namespace {

constexpr double LargestPort = 65535;

std::string HiddenText(const Workbench& wb, const char* key) {
    const std::string text = GetUserSetting(wb, "MailServer", key);
    return text == NotFound ? std::string() : Trim(text);
}

int PortOf(const TextBox& field) {
    return static_cast<int>(std::clamp(NumberOf(field.Text()), 0.0, LargestPort));
}

Security SecurityOf(const ComboBox& choice) {
    return static_cast<Security>(std::max(choice.ListIndex(), 0));
}

}  // namespace

ProjectAccounts::ProjectAccounts(const Workbench& wb) {
    usual_.CertificateAuthorities = HiddenText(wb, "CertificateAuthorities");
    usual_.LocalName = HiddenText(wb, "HelloName");
}

MailAccount ProjectAccounts::Outgoing(const frmSettings& settings) const {
    MailAccount account = usual_;
    account.MailServer = Trim(settings.txtSMTPServer.Text());
    account.MailPort = PortOf(settings.txtSMTPPort);
    account.ConnectionSecurity = SecurityOf(settings.cmbSMTPSecurity);
    account.VerifyCertificate = settings.chkSMTPVerify.Checked();
    return account;
}

MailAccount ProjectAccounts::Incoming(const frmSettings& settings) const {
    MailAccount account = usual_;
    account.MailProtocol = MailAccount::Protocol::Pop3;
    account.MailServer = Trim(settings.txtPOPServer.Text());
    account.MailPort = PortOf(settings.txtPOPPort);
    account.ConnectionSecurity = SecurityOf(settings.cmbPOPSecurity);
    account.VerifyCertificate = settings.chkPOPVerify.Checked();
    account.User = settings.txtPOPUser.Text();
    account.Password = settings.txtPOPPassword.Text();
    return account;
}

}  // namespace mailvane
