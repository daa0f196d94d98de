#include "core/run/Progress.h"

#include "core/run/frmStatus.h"

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
    status.Window.ShowWhenDue();
    if (wb.shell != nullptr) wb.shell->Progress().SetValue(value);
    if (value != status.Progress1.Maximum()) return;
    status.Window.Close();
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
    if (show) status.Window.Open();
}

}  // namespace mailvane
