#include "connection/frmSMTPAuthentication.h"

#include "connection/Logon.h"
#include "core/MessageBoxes.h"
#include "core/Paths.h"
#include "core/Waiting.h"
#include "platform/os/Files.h"

namespace mailvane {

frmSMTPAuthentication::frmSMTPAuthentication(Workbench& wb)
    : WorkbenchForm(wb, "frmSMTPAuthentication", "SMTP logon") {
    txtUser.SetTip("User name that the SMTP server knows you by");
    txtPass.SetTip("Password of that user");
}

void frmSMTPAuthentication::OnLoad() {
    if (!FileExists(wb_.state.ProjectFolder, true)) {
        Tell(wb_, "You need to save your project before you can configure this e-mail account.",
             BoxIcon::Exclamation);
        Unload();
        return;
    }
    const BusyPointer pointer(wb_);
    MakeFolders(FolderFromPath(LogonFile(wb_.state), PathSeparator));
    const LogonData logon = ReadLogon(wb_);
    txtUser.SetText(logon.user);
    txtPass.SetText(logon.password);
}

void frmSMTPAuthentication::Accept() {
    if (!WriteLogon(wb_, {txtUser.Text(), txtPass.Text()})) {
        Tell(
            wb_,
            "The user name and the password could not be stored in '" + LogonFile(wb_.state) + "'.",
            BoxIcon::Exclamation);
        return;
    }
    Unload();
}

void ShowSmtpAuthentication(Workbench& wb) {
    auto& dialog = wb.forms.Get<frmSMTPAuthentication>();
    if (dialog.IsLoaded()) ShowModalDialog(wb, dialog);
}

}  // namespace mailvane
