#include "connection/frmConnectionTest.h"

#include "core/MessageBoxes.h"
#include "core/Waiting.h"

namespace mailvane {

frmConnectionTest::frmConnectionTest(Workbench& wb)
    : WorkbenchForm(wb, "frmConnectionTest", "Connection test") {}

void frmConnectionTest::Start(const MailAccount& account) {
    const bool smtp = account.MailProtocol == MailAccount::Protocol::Smtp;
    lblServer.SetText(std::string(smtp ? "Outgoing" : "Incoming") + " mail server " +
                      account.MailServer + ", port " + std::to_string(account.MailPort));
    running_ = true;
    cmdClose.SetEnabled(false);
    Windows().Post([this, account] { Run(account); });
}

void frmConnectionTest::Run(const MailAccount& account) {
    // An unloaded form is alive until no modal window is open, and this runs inside one.
    const bool worked = TestMailAccount(
        account, {[this](const std::string& step, bool good, const std::string& text) {
                      AddLine(step + ": " + (good ? "" : "FAILED. ") + text);
                  },
                  [this] {
                      YieldBriefly(wb_);
                      return !canceled_ && IsLoaded() && !Windows().Quitting();
                  }});
    AddLine(worked ? "Everything works." : "The test ended here.");
    running_ = false;
    cmdCancel.SetEnabled(false);
    cmdClose.SetEnabled(true);
    if (IsLoaded()) cmdClose.Focus();
}

void frmConnectionTest::AddLine(const std::string& line) {
    txtReport.SetText(txtReport.Text() + line + "\r\n");
}

/// While the test runs the window stays and the test ends.
void frmConnectionTest::OnCloseBox() {
    canceled_ = true;
    if (!running_) Unload();
}

void ShowConnectionTest(Workbench& wb, const MailAccount& account) {
    auto& form = wb.forms.Get<frmConnectionTest>();
    form.Start(account);
    ShowModalDialog(wb, form);
}

}  // namespace mailvane
