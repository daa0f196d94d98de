#pragma once

#include "core/Workbench.h"

namespace mailvane {

/// User and password of the SMTP logon, kept with the project.
class frmSMTPAuthentication final : public WorkbenchForm {
public:
    explicit frmSMTPAuthentication(Workbench& wb);

    TextBox txtUser{*this, "txtUser"};
    TextBox txtPass{*this, "txtPass"};
    Button cmdOk{*this, "cmdOk", [this] { Accept(); }};
    Button cmdCancel{*this, "cmdCancel", [this] { Unload(); }};

protected:
    void OnLoad() override;

private:
    void Accept();
};

/// Opens the dialog; a project that has not been saved has no place for the logon, and the user is
/// told so instead.
void ShowSmtpAuthentication(Workbench& wb);

}  // namespace mailvane
