#include "core/run/frmStatus.h"

#include "core/run/Progress.h"

namespace mailvane {

frmStatus::frmStatus(Workbench& wb) : WorkbenchForm(wb, "frmStatus", "Status") {}

void frmStatus::Cancel() {
    wb_.state.CancelRequested = true;
}

frmMSGPreparing::frmMSGPreparing(Workbench& wb)
    : WorkbenchForm(wb, "frmMSGPreparing", ProgramTitle) {}

void ShowPreparing(Workbench& wb, const std::string& text) {
    auto& form = wb.forms.Get<frmMSGPreparing>();
    form.lblCaption.SetText(text);
    form.Show();
    wb.platform.windows.PumpEvents();
}

void EndPreparing(Workbench& wb) {
    if (auto* form = wb.forms.Find<frmMSGPreparing>()) form->Unload();
}

}  // namespace mailvane
