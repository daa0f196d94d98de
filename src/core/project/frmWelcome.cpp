#include "core/project/frmWelcome.h"

#include "core/settings/Settings.h"
#include "core/settings/frmOptions.h"

namespace mailvane {

namespace {

constexpr const char* Section = "Settings";
constexpr const char* Key = "Welcome";

}  // namespace

frmWelcome::frmWelcome(Workbench& wb) : WorkbenchForm(wb, "frmWelcome", "Welcome") {}

void frmWelcome::OnLoad() {
    chkWelcome.SetChecked(GetUserSetting(wb_, Section, Key) == "1");
    chkWelcome.onClick = [this] { StoreChoice(); };
}

void frmWelcome::StoreChoice() {
    SaveUserSetting(wb_, Section, Key, chkWelcome.ShownText());
    if (auto* options = wb_.forms.Find<frmOptions>())
        options->chkWelcome.SetChecked(chkWelcome.Checked());
}

void frmWelcome::Command(const std::string& tool) {
    if (wb_.shell) wb_.shell->ExecuteCommand(tool, "");
}

/// The window makes room for what comes.
void frmWelcome::Leave(const std::string& tool) {
    Unload();
    Command(tool);
}

}  // namespace mailvane
