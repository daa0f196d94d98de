#include "database/view/frmMSGMemo.h"

#include "core/MessageBoxes.h"
#include "core/settings/Settings.h"

namespace mailvane {

namespace {

constexpr const char* Section = "Messages";
constexpr const char* Key = "MemoSort";

}  // namespace

frmMSGMemo::frmMSGMemo(Workbench& wb) : WorkbenchForm(wb, "frmMSGMemo", "Can't sort Memo data") {}

void frmMSGMemo::OnUnload() {
    if (Check1.Checked()) SaveUserSetting(wb_, Section, Key, "1");
}

void TellMemoSort(Workbench& wb) {
    if (GetUserSetting(wb, Section, Key) == "1") return;
    ShowModalDialog(wb, wb.forms.Get<frmMSGMemo>());
}

}  // namespace mailvane
