#include "connection/ConnectionService.h"

#include "connection/ProjectAccounts.h"
#include "connection/frmConnectionTest.h"

namespace mailvane {

ConnectionService::ConnectionService(Workbench& wb) : wb_(wb) {
    created_ = wb.forms.created.Observe([this](Form& form) {
        if (auto* settings = dynamic_cast<frmSettings*>(&form)) Attach(*settings);
    });
}

void ConnectionService::Attach(frmSettings& settings) {
    settings.cmdTestPOP.onClick = [this, &settings] {
        ShowConnectionTest(wb_, ProjectAccounts(wb_).Incoming(settings));
    };
}

}  // namespace mailvane
