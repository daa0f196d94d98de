#include "send/SendService.h"

#include "core/Running.h"
#include "core/frmSettings.h"
#include "send/SendRun.h"
#include "send/frmMSGSndRecvError.h"
#include "send/frmStatusEmail.h"

namespace mailvane {

struct SendService::State {
    explicit State(Workbench& workbench) : wb(workbench) {}

    void Attach(frmSettings& settings);
    void Send(frmSettings& settings);

    Workbench& wb;
    SendMemory memory;
    Subscription created;
};

void SendService::State::Attach(frmSettings& settings) {
    memory.dialPromptShown = false;
    settings.cmdSendEmail.onClick = [this, &settings] { Send(settings); };
    settings.Timer1.onTimer = [this, &settings] {
        settings.Timer1.Stop();
        CloseWindowByTitle(wb, ErrorLogCaption);
    };
}

/// Send and receive runs never overlap: a click during a run shows that run.
void SendService::State::Send(frmSettings& settings) {
    if (!wb.state.RunBusy) {
        wb.state.RunBusy = true;
        SendRun(wb, settings, memory).SendAll();
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
