#include "merge/run/frmMSGOutbox.h"

#include "core/settings/Settings.h"

namespace mailvane {

namespace {

constexpr const char* Section = "Messages";
constexpr const char* Key = "Outbox";

}  // namespace

frmMSGOutbox::frmMSGOutbox(Workbench& wb) : WorkbenchForm(wb, "frmMSGOutbox", "Outbox") {
    cmdStart.onClick = [this] { Unload(); };
}

void frmMSGOutbox::OnLoad() {
    Check1.SetChecked(GetUserSetting(wb_, Section, Key) == "1");
    if (Check1.Checked()) Unload();
}

void frmMSGOutbox::OnUnload() {
    SaveUserSetting(wb_, Section, Key, std::to_string(Check1.Value()));
}

}  // namespace mailvane
