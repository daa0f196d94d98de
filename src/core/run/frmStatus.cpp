#include "core/run/frmStatus.h"

#include "core/Waiting.h"

namespace mailvane {

namespace {

constexpr std::chrono::milliseconds ShortRun{500};

}  // namespace

void DelayedShow::Open() {
    opened_ = form_.Windows().SystemClock().Monotonic();
}

void DelayedShow::ShowWhenDue() {
    if (!opened_ || form_.Visible() || form_.HasGone()) return;
    if (form_.Windows().SystemClock().Monotonic() - *opened_ < ShortRun) return;
    form_.Show();
}

void DelayedShow::Close() {
    opened_.reset();
    form_.Hide();
}

frmStatus::frmStatus(Workbench& wb) : WorkbenchForm(wb, "frmStatus", "Status") {}

void frmStatus::Cancel() {
    wb_.state.CancelRequested = true;
}

frmMSGPreparing::frmMSGPreparing(Workbench& wb)
    : WorkbenchForm(wb, "frmMSGPreparing", ProgramTitle) {}

void ShowPreparing(Workbench& wb, const std::string& text, long steps) {
    auto& form = wb.forms.Get<frmMSGPreparing>();
    form.lblCaption.SetText(text);
    form.Progress1.SetMaximum(steps);
    form.Progress1.SetValue(0);
    form.Window.Open();
    wb.platform.windows.PumpEvents();
}

void StepPreparing(Workbench& wb) {
    auto* form = wb.forms.Find<frmMSGPreparing>();
    if (!form) return;
    form->Progress1.SetValue(form->Progress1.Value() + 1);
    form->Window.ShowWhenDue();
    YieldBriefly(wb);
}

void EndPreparing(Workbench& wb) {
    if (auto* form = wb.forms.Find<frmMSGPreparing>()) form->Unload();
}

}  // namespace mailvane
