#include <gtest/gtest.h>

#include "connection/frmConnectionWizard.h"
#include "connection/frmDial.h"
#include "core/settings/Settings.h"
#include "core/settings/frmOptions.h"
#include "support/TestBench.h"

namespace mailvane {
namespace {

struct Dial : testing::Test, test::TestBench {
    frmDial& Form() { return wb.forms.Get<frmDial>(); }
    frmConnectionWizard& Wizard() { return wb.forms.Get<frmConnectionWizard>(); }
    std::string Stored(const char* key) const { return GetUserSetting(wb, "Proxy", key); }
};

TEST_F(Dial, OnlyAModemNeedsALine) {
    EXPECT_TRUE(EnsureDialUp(wb)) << "nothing stored";
    for (const char* connection : {"direct", "", "Not Found", "modems"}) {
        SaveUserSetting(wb, "Proxy", "Connection", connection);
        EXPECT_TRUE(EnsureDialUp(wb)) << connection;
    }
    EXPECT_FALSE(wb.forms.IsFormLoaded("frmDial")) << "no control was touched";
    SaveUserSetting(wb, "Proxy", "Connection", "MODEM");
    Form().lConnections.AddItem("a line of before");
    EXPECT_FALSE(EnsureDialUp(wb));
    EXPECT_FALSE(Form().Visible());
    EXPECT_EQ(Form().lConnections.Count(), 0);
}

TEST_F(Dial, DialingSaysThatThereIsNoLine) {
    Form().Show();
    const std::string atFirst = Form().lblStatus.Text();
    EXPECT_TRUE(atFirst.starts_with("This system has no dial-up lines."));
    Form().cmdDialNow.Press();
    EXPECT_EQ(Form().lblStatus.Text(), atFirst) << "no entry is chosen";
    Form().Tab1.SetByUser("1");
    Form().Text1_3.SetByUser("555");
    Form().cmdDialNow.Press();
    EXPECT_EQ(Form().lblStatus.Text(), "615: " + atFirst);
    EXPECT_TRUE(Form().cmdDialNow.Enabled());
    EXPECT_EQ(shell.panel, "");
    Form().cmdOk.Press();
    Form().cmdDialNow.Press();
    EXPECT_EQ(shell.panel, "615: " + atFirst) << "hidden, the main window says it";
    Form().cmdCancel.Press();
    EXPECT_FALSE(wb.forms.IsFormLoaded("frmDial"));
}

TEST_F(Dial, StoppingTakesAMomentBeforeTheNextDial) {
    Form().cmdDialNow.SetEnabled(false);
    const auto before = clock.Monotonic();
    Form().cmdStop.Press();
    EXPECT_EQ(clock.Monotonic() - before, std::chrono::milliseconds(1500));
    EXPECT_TRUE(Form().cmdDialNow.Enabled());
}

TEST_F(Dial, WizardStoresTheConnection) {
    wb.forms.Get<frmOptions>();
    Wizard().Show();
    EXPECT_TRUE(Wizard().optDirect.IsSet());
    EXPECT_FALSE(Wizard().txtProxy.Enabled());
    Wizard().optModem.SetByUser("1");
    Wizard().cmdNext.Press();
    EXPECT_EQ(windows.FocusedControl(), &Wizard().chkProxy);
    Wizard().chkProxy.SetByUser("1");
    Wizard().txtProxy.SetByUser("proxy.example.com");
    Wizard().txtPort.SetByUser("3128");
    Wizard().cmdNext.Press();
    EXPECT_FALSE(Wizard().cmdNext.Enabled());
    EXPECT_EQ(windows.FocusedControl(), &Wizard().cmdFinish);
    EXPECT_EQ(Stored("Status"), NotFound);
    Wizard().cmdFinish.Press();
    EXPECT_FALSE(wb.forms.IsFormLoaded("frmConnectionWizard"));
    const std::pair<const char*, const char*> rows[] = {{"Status", "yes"},
                                                        {"Connection", "modem"},
                                                        {"UseProxy", "yes"},
                                                        {"ProxyServerName", "proxy.example.com"},
                                                        {"HttpPort", "3128"}};
    for (const auto& [key, value] : rows)
        EXPECT_EQ(Stored(key), value) << key;
    const auto& options = wb.forms.Get<frmOptions>();
    EXPECT_TRUE(options.chkProxy.Checked());
    EXPECT_EQ(options.txtProxy.Text(), "proxy.example.com");
    EXPECT_EQ(options.txtPort.Text(), "3128");
    EXPECT_TRUE(options.optDial.IsSet()) << "its OK would store the old connection otherwise";

    EXPECT_TRUE(Wizard().optModem.IsSet()) << "what was stored";
}

TEST_F(Dial, ACancelledWizardDoesNotComeBack) {
    for (const bool closeBox : {false, true}) {
        SaveUserSetting(wb, "Proxy", "Status", "no");
        Wizard().optModem.SetByUser("1");
        if (closeBox)
            Wizard().OnCloseBox();
        else
            Wizard().cmdCancel.Press();
        EXPECT_FALSE(wb.forms.IsFormLoaded("frmConnectionWizard"));
        EXPECT_EQ(Stored("Status"), "yes");
        EXPECT_EQ(Stored("Connection"), NotFound);
    }
    EXPECT_TRUE(EnsureDialUp(wb));
}

}  // namespace
}  // namespace mailvane
