#include "core/notices/frmMSGResources.h"

#include "core/Machine.h"
#include "core/settings/Settings.h"

namespace mailvane {

namespace {

constexpr const char* Section = "Messages";
constexpr const char* Key = "Resources";

}  // namespace

frmMSGResources::frmMSGResources(Workbench& wb)
    : WorkbenchForm(wb, "frmMSGResources", "System resources") {}

void frmMSGResources::OnLoad() {
    Check1.SetChecked(GetUserSetting(wb_, Section, Key) == "1");
    if (Check1.Checked()) {
        Unload();
        return;
    }
    GetResources();
    Timer1.Start();
}

void frmMSGResources::GetResources() {
    lblResources.SetText("Free resources: " + std::to_string(FreeResourcesPercent()) + "%");
}

void frmMSGResources::OnUnload() {
    SaveUserSetting(wb_, Section, Key, Check1.ShownText());
}

}  // namespace mailvane
