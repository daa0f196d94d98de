#include "send/SendService.h"

#include "connection/Logon.h"
#include "connection/ProjectAccounts.h"
#include "connection/frmConnectionTest.h"
#include "connection/frmSMTPAuthentication.h"
#include "core/Running.h"
#include "core/settings/frmSettings.h"
#include "send/direct/frmMailServer.h"
#include "send/run/SendRun.h"
#include "send/run/frmMSGSndRecvError.h"
#include "send/run/frmStatusEmail.h"

namespace mailvane {

struct SendService::State {
    explicit State(Workbench& workbench) : wb(workbench) {}

    void Attach(frmSettings& settings);
    void Send(frmSettings& settings);

    Workbench& wb;
    SendMemory memory;
    Subscription created;
};

namespace {

/// With the logon, when the relay needs one.
MailAccount RelayWithLogon(const Workbench& wb, const frmSettings& settings) {
    MailAccount account = ProjectAccounts(wb).Outgoing(settings);
    if (!settings.chkSMTPAuth.Checked()) return account;
    LogonData logon = ReadLogon(wb);
    account.User = std::move(logon.user);
    account.Password = std::move(logon.password);
    return account;
}

}  // namespace

void SendService::State::Attach(frmSettings& settings) {
    memory.dialPromptShown = false;
    settings.cmdSendEmail.onClick = [this, &settings] { Send(settings); };
    settings.SSCommand1.onClick = [this] { ShowMailServer(wb); };
    settings.cmdSMTPAuth.onClick = [this] { ShowSmtpAuthentication(wb); };
    settings.cmdTestSMTP.onClick = [this, &settings] {
        ShowConnectionTest(wb, RelayWithLogon(wb, settings));
    };
    settings.Timer1.onTimer = [this, &settings] {
        settings.Timer1.Stop();
        CloseWindowByTitle(wb, ErrorLogCaption);
    };
}

/// Send and receive runs never overlap: a click during a run shows that run.
void SendService::State::Send(frmSettings& settings) {
    if (!wb.state.RunBusy) {
        wb.state.RunBusy = true;
        SendAll(wb, settings, memory);
        wb.state.RunBusy = false;
        return;
    }
    frmStatusEmail* status = wb.forms.Find<frmStatusEmail>();
    if (!status || !status->Visible()) return;
    status->BringToFront();
    status->cmdCancel.Focus();
}

SendService::SendService(Workbench& wb) : state_(std::make_unique<State>(wb)) {
    state_->created = wb.forms.created.Observe([this](Form& form) {
        if (auto* settings = dynamic_cast<frmSettings*>(&form)) state_->Attach(*settings);
    });
    if (frmSettings* settings = wb.forms.Find<frmSettings>()) state_->Attach(*settings);
}

SendService::~SendService() = default;

}  // namespace mailvane
