#include "send/SendCommands.h"

#include "core/settings/frmSettings.h"
#include "send/direct/frmMailServer.h"
#include "send/report/frmDeliveryReport.h"

namespace mailvane {

namespace {

void SendAll(Workbench& wb) {
    wb.state.FinalRunStep = true;
    wb.forms.Get<frmSettings>().cmdSendEmail.Press();
    wb.state.FinalRunStep = false;
    wb.state.SendReceiveActive = false;
}

/// Behind what the send run has said last.
void TellReceivingIsMissing(Workbench& wb) {
    if (!wb.shell) return;
    const std::string said = wb.shell->Panel();
    wb.shell->SetPanel((said.empty() ? "" : said + " ") + ReceivingLater);
}

constexpr ToolRow<Workbench> Rows[] = {
    {"Send All", "Send &All", "Send all messages of the Outbox", "mail-send", "Ctrl+Return",
     SendAll},
    {"Internal Mail Server", "Internal Mail Ser&ver...", "Deliver without a relay",
     "network-server", "", ShowMailServer},
    {"Delivery Report", "&Delivery Report", "Show what the last runs sent and had refused",
     "office-chart-bar", "", ShowDeliveryReport},
};

}  // namespace

void RegisterSendCommands(Workbench& wb) {
    wb.commands.Register(wb, Rows);
}

void SendThenReceive(Workbench& wb) {
    wb.forms.Get<frmSettings>().cmdSendEmail.Press();
    wb.state.SendReceiveActive = true;
    wb.state.FinalRunStep = true;
    Button& receive = wb.forms.Get<frmSettings>().cmdReadEmail;
    if (!receive.onClick) TellReceivingIsMissing(wb);
    receive.Press();
    wb.state.SendReceiveActive = false;
    wb.state.FinalRunStep = false;
}

}  // namespace mailvane
