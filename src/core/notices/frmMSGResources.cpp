#include "core/notices/frmMSGResources.h"

#include "core/Machine.h"

namespace mailvane {

frmMSGResources::frmMSGResources(Workbench& wb)
    : NoticeForm(wb, "frmMSGResources", "System resources", "Resources", Check1) {}

void frmMSGResources::OnLoad() {
    NoticeForm::OnLoad();
    if (HasGone()) return;
    GetResources();
    Timer1.Start();
}

void frmMSGResources::GetResources() {
    lblResources.SetText("Free resources: " + std::to_string(FreeResourcesPercent()) + "%");
}

}  // namespace mailvane
