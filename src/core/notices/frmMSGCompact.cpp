#include "core/notices/frmMSGCompact.h"

#include "core/MessageBoxes.h"
#include "core/settings/Settings.h"

namespace mailvane {

namespace {

constexpr const char* Section = "Messages";
constexpr const char* Key = "Compact";

}  // namespace

frmMSGCompact::frmMSGCompact(Workbench& wb)
    : WorkbenchForm(wb, "frmMSGCompact", "Compact Database") {}

void frmMSGCompact::OnLoad() {
    wb_.state.CompactConfirmed = false;
    Check1.SetChecked(GetUserSetting(wb_, Section, Key) == "1");
    if (Check1.Checked()) Answer(true);
}

void frmMSGCompact::Answer(bool confirmed) {
    wb_.state.CompactConfirmed = confirmed;
    Unload();
}

void frmMSGCompact::OnUnload() {
    SaveUserSetting(wb_, Section, Key, Check1.ShownText());
}

bool ConfirmCompaction(Workbench& wb) {
    ShowModalDialog(wb, wb.forms.Get<frmMSGCompact>());
    return wb.state.CompactConfirmed;
}

}  // namespace mailvane
