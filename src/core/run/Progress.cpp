#include "core/run/Progress.h"

#include "core/run/frmStatus.h"
#include "platform/os/Processes.h"

namespace mailvane {

namespace {

void SetCaptions(frmStatus& status, const std::string& caption1, const std::string& caption2) {
    if (!caption1.empty()) status.lblCaption1.SetText(caption1);
    if (!caption2.empty()) status.lblCaption2.SetText(caption2);
}

void OpenProgress(Workbench& wb, frmStatus& status, long max, long value) {
    status.lblCaption1.SetText("");
    status.lblCaption2.SetText("");
    status.Progress1.SetMaximum(max);
    status.Progress1.SetValue(value);
    if (wb.shell == nullptr) return;
    wb.shell->Progress().SetMaximum(max);
    wb.shell->Progress().SetValue(value);
    wb.shell->ShowProgressButton().Press();
}

void StepProgress(Workbench& wb, frmStatus& status, long value) {
    status.Progress1.SetValue(value);
    if (wb.shell != nullptr) wb.shell->Progress().SetValue(value);
    if (value != status.Progress1.Maximum()) return;
    status.Hide();
    if (wb.shell == nullptr) return;
    wb.shell->HideProgressButton().Press();
    wb.shell->SetPanel("");
}

}  // namespace

void UpdateProgress(Workbench& wb, long max, long value, const std::string& caption1,
                    const std::string& caption2, bool show) {
    auto& status = wb.forms.Get<frmStatus>();
    if (max == 0) {
        SetCaptions(status, caption1, caption2);
        StepProgress(wb, status, value);
        return;
    }
    OpenProgress(wb, status, max, value);
    SetCaptions(status, caption1, caption2);
    if (show) status.Show();
}

void YieldBriefly(Workbench& wb) {
    wb.platform.windows.YieldBriefly();
}

void WaitSeconds(Workbench& wb, double seconds) {
    wb.platform.windows.WaitSeconds(seconds);
}

void ShowModalDialog(Workbench&, Form& form) {
    form.ShowModal();
}

bool IsFormLoaded(const Workbench& wb, const std::string& name) {
    return wb.forms.IsFormLoaded(name);
}

BusyPointer::BusyPointer(Workbench& wb) : wb_(wb) {
    if (wb_.state.BusyPointers++ == 0) wb_.platform.windows.SetPointer(MousePointer::Busy);
}

BusyPointer::~BusyPointer() {
    if (--wb_.state.BusyPointers == 0) wb_.platform.windows.SetPointer(MousePointer::Normal);
}

void Tell(Workbench& wb, const std::string& text, BoxIcon icon, const std::string& title) {
    wb.platform.windows.MessageBox({text, title, icon, BoxButtons::Ok});
}

bool AskYesNo(Workbench& wb, const std::string& text, BoxIcon icon, const std::string& title) {
    return wb.platform.windows.MessageBox({text, title, icon, BoxButtons::YesNo}) == BoxAnswer::Yes;
}

int FreeResourcesPercent() {
    return 0;
}

std::string GetLocalIpAddress() {
    return LocalIpAddress();
}

}  // namespace mailvane
