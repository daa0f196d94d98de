#include "connection/frmDial.h"

#include "core/Running.h"
#include "core/Waiting.h"
#include "core/settings/Settings.h"
#include "core/text/Text.h"

namespace mailvane {

namespace {

constexpr const char* NoDialUp =
    "This system has no dial-up lines. If you connect over your LAN, choose the direct connection "
    "in the options.";
constexpr const char* NoLineNumber = "615";  ///< what dialers answer when a line is missing
constexpr double StopSeconds = 1.5;

}  // namespace

frmDial::frmDial(Workbench& wb) : WorkbenchForm(wb, "frmDial", "Dial") {}

/// There are no entries and no lines to list.
void frmDial::OnLoad() {
    lPhonebook.SetListIndex(0);
    lblStatus.SetText(NoDialUp);
}

void frmDial::DialNow() {
    if (Tab1.Current() == PhonebookPage && lPhonebook.ListIndex() < 0) return;
    cmdDialNow.SetEnabled(false);
    StatusEvent(NoDialUp, NoLineNumber);
    lConnections.Clear();
    cmdDialNow.SetEnabled(true);
}

void frmDial::StatusEvent(const std::string& state, const std::string& number) {
    lblStatus.SetText(number + ": " + state);
    if (!Visible() && wb_.shell) wb_.shell->SetPanel(lblStatus.Text());
    wb_.platform.windows.PumpEvents();
}

/// A dialer needs that time before it dials again.
void frmDial::Stop() {
    WaitSeconds(wb_, StopSeconds);
    cmdDialNow.SetEnabled(true);
}

/// With no line up there is none to hang up.
void frmDial::Disconnect() {
    lConnections.Clear();
}

void frmDial::ShowHelp() {
    ShowHelpContext(wb_);
}

bool EnsureDialUp(Workbench& wb) {
    if (ToLower(GetUserSetting(wb, "Proxy", "Connection")) != "modem") return true;
    frmDial& dial = wb.forms.Get<frmDial>();
    // Listing the active connections finds none on this system.
    dial.lConnections.Clear();
    return dial.lConnections.Count() >= 1;
}

}  // namespace mailvane
