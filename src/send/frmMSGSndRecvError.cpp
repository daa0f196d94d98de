#include "send/frmMSGSndRecvError.h"

#include "core/Progress.h"
#include "core/Settings.h"

namespace mailvane {

namespace {

constexpr const char* Section = "Messages";
constexpr const char* Key = "SndRecvError";

}  // namespace

frmMSGSndRecvError::frmMSGSndRecvError(Workbench& wb)
    : WorkbenchForm(wb, "frmMSGSndRecvError", ErrorLogCaption) {
    lblText.SetText(
        "Some errors occurred while sending or receiving your messages.\r\n"
        "Do you want to see the error log?");
}

void frmMSGSndRecvError::Answer(bool yes) {
    wb_.state.DialogAnswer = yes;
    if (Check1.Checked()) SaveUserSetting(wb_, Section, Key, "1");
    Unload();
}

bool AskToShowErrorLog(Workbench& wb) {
    wb.state.DialogAnswer = false;
    if (GetUserSetting(wb, Section, Key) != "1")
        ShowModalDialog(wb, wb.forms.Get<frmMSGSndRecvError>());
    return wb.state.DialogAnswer;
}

}  // namespace mailvane
