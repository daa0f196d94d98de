#include "send/run/SendSettings.h"

#include "connection/frmDial.h"
#include "core/MessageBoxes.h"
#include "core/text/Text.h"

namespace mailvane {

namespace {

constexpr std::size_t ShortestServer = 4;
constexpr const char* NotConnected =
    "You are not connected to the Internet. \r\n"
    "If you connect to the Internet over your LAN or don't want to use Mailvane Dialer to dial "
    "your ISP, choose Tools/Options from the menu, click Connection tab and choose 'Direct (non "
    "modem)' option.";

void ShowMistake(Workbench& wb, frmSettings& settings, Control& field, const char* text) {
    if (wb.state.UnattendedRun) return;
    Tell(wb, text, BoxIcon::Exclamation);
    settings.ShowPage(frmSettings::SendingPage, field);
}

/// True when there is no line, even after the user had the chance to dial.
bool LineIsMissing(Workbench& wb, bool& dialPromptShown) {
    if (EnsureDialUp(wb) || wb.state.UnattendedRun || dialPromptShown) return false;
    dialPromptShown = !wb.state.FinalRunStep;
    Tell(wb, NotConnected, BoxIcon::Exclamation);
    ShowModalDialog(wb, wb.forms.Get<frmDial>());
    return !EnsureDialUp(wb);
}

}  // namespace

bool ValidateSendSettings(Workbench& wb, frmSettings& settings, bool& dialPromptShown) {
    const bool direct = settings.chkServer.Checked();
    settings.txtSMTPServer.SetText(Trim(settings.txtSMTPServer.Text()));
    settings.txtSMTPPort.SetText(Trim(settings.txtSMTPPort.Text()));
    if (!direct && settings.txtSMTPServer.Text().size() < ShortestServer) {
        ShowMistake(wb, settings, settings.txtSMTPServer, "Please supply a valid SMTP server.");
        return true;
    }
    if (!IsNumeric(settings.txtSMTPPort.Text())) {
        if (!direct) {
            ShowMistake(wb, settings, settings.txtSMTPPort, "Please supply a valid SMTP port.");
            return true;
        }
        settings.txtSMTPPort.SetText("25");
    }
    return LineIsMissing(wb, dialPromptShown);
}

}  // namespace mailvane
