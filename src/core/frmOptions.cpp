#include "core/frmOptions.h"

#include <utility>

#include "core/Settings.h"
#include "core/Text.h"

namespace mailvane {

frmOptions::frmOptions(Workbench& wb) : WorkbenchForm(wb, "frmOptions", "Options") {}

void frmOptions::OnLoad() {
    const std::pair<const char*, CheckBox*> options[] = {
        {"Load", &chkLoad},
        {"Save", &chkSave},
        {"Upgrade", &chkUpgrade},
        {"Welcome", &chkWelcome},
        {"CompactMessages", &chkCompactMessages},
        {"CompactDatabase", &chkCompactDatabase},
        {"PopUp", &chkPopUp},
    };
    for (const auto& [key, box] : options) {
        const std::string value = GetUserSetting(wb_, "Settings", key);
        if (!EqualText(value, NotFound)) box->SetChecked(NumberOf(value) == 1);
    }
}

}  // namespace mailvane
