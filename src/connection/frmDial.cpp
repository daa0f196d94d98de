#include "connection/frmDial.h"

#include "core/Settings.h"
#include "core/Text.h"

namespace mailvane {

namespace {

constexpr const char* NoDialUp =
    "This system has no dial-up lines. If you connect over your LAN, choose the direct connection "
    "in the options.";

}  // namespace

frmDial::frmDial(Workbench& wb) : WorkbenchForm(wb, "frmDial", "Dial") {
    cmdDialNow.onClick = [this] { lblStatus.SetText(NoDialUp); };
    cmdStop.onClick = [this] { lblStatus.SetText(""); };
    // With no line up there is none to hang up.
    cmdDisconnect.onClick = [this] { lConnections.Clear(); };
    cmdOk.onClick = [this] { Hide(); };
    cmdCancel.onClick = [this] { Unload(); };
}

bool EnsureDialUp(Workbench& wb) {
    if (ToLower(GetUserSetting(wb, "Proxy", "Connection")) != "modem") return true;
    frmDial& dial = wb.forms.Get<frmDial>();
    // Listing the active connections finds none on this system.
    dial.lConnections.Clear();
    return dial.lConnections.Count() >= 1;
}

}  // namespace mailvane
