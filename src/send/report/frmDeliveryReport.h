#pragma once

#include <memory>
#include <string>
#include <vector>

#include "core/Workbench.h"
#include "platform/forms/Chart.h"
#include "send/report/DeliveryReport.h"

namespace mailvane {

/// What the last runs of the project have generated, sent, had refused and left.
class frmDeliveryReport final : public WorkbenchForm {
public:
    explicit frmDeliveryReport(Workbench& wb);

    ComboBox cmbRun{*this, "cmbRun"};
    Label lblSummary{*this, "lblSummary"};
    Tabs Tab1{*this, "Tab1"};
    Chart chtDomains{*this, "chtDomains"};
    Grid grdDomains{*this, "grdDomains"};
    Grid grdRefused{*this, "grdRefused"};
    Button cmdRefresh{*this, "cmdRefresh", [this] { Refresh(); }};
    Button cmdClose{*this, "cmdClose", [this] { Unload(); }};

    /// Reads the report again and shows the last run.
    void Refresh();
    /// Says, as long as it stays loaded, that a run could not be added to the report.
    void TellLost(DateTime began, const std::string& reason);

protected:
    void OnActivate() override { Refresh(); }

private:
    void ShowRun();
    void ShowDomains(const DeliveryRun& run);
    std::vector<DeliveryRun> runs_;  ///< the newest first
    std::string unreadable_;         ///< why there are none
    std::string lost_;
};

/// Shows the report, in a window beside the others.
void ShowDeliveryReport(Workbench& wb);

/// Adds a run to the report of the project with that folder ("" for none). When that fails, the
/// form says so when it is opened next.
void RecordDeliveryRun(Workbench& wb, const std::string& projectFolder, DeliveryRun run);

}  // namespace mailvane
