#include "core/notices/frmMSGLargeEmailDB.h"

#include "core/MessageBoxes.h"
#include "core/notices/frmMSGCompact.h"
#include "core/settings/Settings.h"

namespace mailvane {

namespace {

constexpr const char* Section = "Messages";
constexpr const char* Key = "LargeEmailDB";

}  // namespace

frmMSGLargeEmailDB::frmMSGLargeEmailDB(Workbench& wb)
    : WorkbenchForm(wb, "frmMSGLargeEmailDB", "Large messages database") {}

void frmMSGLargeEmailDB::OnLoad() {
    Check1.SetChecked(GetUserSetting(wb_, Section, Key) == "1");
    if (Check1.Checked()) Unload();
}

void frmMSGLargeEmailDB::Compact() {
    if (!wb_.shell) return;
    cmdCompact.SetEnabled(false);
    if (wb_.shell->CompactMessageStore()) Tell(wb_, MessagesCompactedText);
    cmdCompact.SetEnabled(true);
}

void frmMSGLargeEmailDB::OnUnload() {
    SaveUserSetting(wb_, Section, Key, Check1.ShownText());
}

}  // namespace mailvane
