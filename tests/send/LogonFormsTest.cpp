#include <gtest/gtest.h>

#include <chrono>
#include <ctime>
#include <filesystem>
#include <utility>

#include "connection/Logon.h"
#include "connection/frmSMTPAuthentication.h"
#include "core/settings/Settings.h"
#include "core/settings/frmSettings.h"
#include "send/SendService.h"
#include "send/direct/frmMailServer.h"
#include "support/TestBench.h"

namespace mailvane {
namespace {

namespace fs = std::filesystem;

struct FormsBench : test::TestBench {
    FormsBench() { UseProject(); }

    /// Lets `act` work on the form while it stands open.
    template <class F>
    void With(Button& button, const std::function<void(F&)>& act) {
        bool acted = false;
        const auto watch = windows.idle.Observe([&] {
            F* form = wb.forms.Find<F>();
            if (!form || !form->Visible() || std::exchange(acted, true)) return;
            act(*form);
        });
        EXPECT_EQ(button.Press(), ControlAnswer::Done);
        EXPECT_TRUE(acted);
    }
    std::string Stored(const char* key) { return GetUserSetting(wb, "MailServer", key); }
    /// A session log as old as that.
    void WriteLog(const std::string& name, int days) {
        const std::string path = wb.state.ProjectFolder + "/Logs/" + name;
        WriteFileText(path, "x");
        // The bench's clock shows the morning of 3/15/2024.
        std::tm then{};
        then.tm_year = 124, then.tm_mon = 2, then.tm_mday = 15 - days, then.tm_hour = 23;
        then.tm_isdst = -1;
        const auto time = std::chrono::system_clock::from_time_t(std::mktime(&then));
        fs::last_write_time(path, std::chrono::file_clock::from_sys(time));
    }

    SendService service{wb};
    frmSettings& settings = wb.forms.Get<frmSettings>();
};

struct SendForms : testing::Test, FormsBench {};

TEST_F(SendForms, SettingsButtonsOpenThemWhileTheirChoiceIsOn) {
    EXPECT_FALSE(settings.SSCommand1.Enabled() || settings.cmdSMTPAuth.Enabled());
    settings.chkServer.SetByUser("1");
    settings.chkSMTPAuth.SetByUser("1");
    EXPECT_TRUE(settings.SSCommand1.Enabled() && settings.cmdSMTPAuth.Enabled());
    With<frmMailServer>(settings.SSCommand1, [](auto& form) {
        EXPECT_TRUE(form.chkEnable.Checked());
        form.chkEnable.SetByUser("0");
        form.cmdOk.Press();
    });
    EXPECT_FALSE(settings.chkServer.Checked());
    EXPECT_TRUE(settings.txtSMTPServer.Enabled());
    EXPECT_FALSE(settings.SSCommand1.Enabled());
    settings.chkServer.SetByUser("1");
    With<frmMailServer>(settings.SSCommand1, [](auto& form) {
        EXPECT_TRUE(form.chkEnable.Checked()) << "a hidden form takes the choice again";
        form.chkEnable.SetByUser("0");
        form.cmdCancel.Press();
    });
    EXPECT_TRUE(settings.chkServer.Checked());
}

TEST_F(SendForms, LogonIsKeptWithTheProject) {
    settings.chkSMTPAuth.SetByUser("1");
    const std::string user = "ann=;[x]\xC3\xA4";
    const std::string password = " %41+ \"quoted\" ";
    With<frmSMTPAuthentication>(settings.cmdSMTPAuth, [&](auto& dialog) {
        dialog.txtUser.SetText(user);
        dialog.txtPass.SetText(password);
        dialog.cmdOk.Press();
    });
    EXPECT_EQ(ReadLogon(wb), (LogonData{user, password}));
    With<frmSMTPAuthentication>(settings.cmdSMTPAuth, [&](auto& dialog) {
        EXPECT_EQ(dialog.txtUser.Text(), user);
        EXPECT_EQ(dialog.txtPass.Text(), password);
        dialog.txtUser.SetText("other");
        dialog.cmdCancel.Press();
    });
    EXPECT_EQ(ReadLogon(wb).user, user);
}

TEST_F(SendForms, LogonThatCannotBeStoredIsTold) {
    settings.chkSMTPAuth.SetByUser("1");
    fs::create_directories(LogonFile(wb.state) + "/in the way");
    Prompts().QueueBox(BoxAnswer::Ok, "could not be stored");
    With<frmSMTPAuthentication>(settings.cmdSMTPAuth, [&](auto& dialog) {
        dialog.txtUser.SetText("ann");
        dialog.cmdOk.Press();
        EXPECT_TRUE(dialog.Visible());
        dialog.cmdCancel.Press();
    });
    EXPECT_EQ(Prompts().Shown().size(), 1u);
}

TEST_F(SendForms, LogonNeedsASavedProject) {
    wb.state.ProjectFolder = "";
    settings.chkSMTPAuth.SetByUser("1");
    Prompts().QueueBox(BoxAnswer::Ok);
    settings.cmdSMTPAuth.Press();
    EXPECT_TRUE(Prompts().ExpectBox(
        "You need to save your project before you can configure this e-mail account."));
    EXPECT_FALSE(wb.forms.IsFormLoaded("frmSMTPAuthentication"));
    EXPECT_EQ(windows.Pointer(), MousePointer::Normal);
}

TEST(MailServer, ChecksWhatIsEntered) {
    const struct {
        const char* server;
        bool valid;
        const char* days;
        const char* stored;  ///< DNS, Logs, Delete and Days
    } rows[] = {
        {"127.0.1", false, "10", "127.0.1 1 1 10"},
        {"1.2.3.4.5", false, "10", "1.2.3.4.5 1 1 10"},
        {"a.b.c.d", true, "10", "a.b.c.d 1 1 10"},
        {"127.0.0.1:5300", true, "0", "127.0.0.1:5300 1 1 0"},
        {"1.2.3.4", true, "abc", "1.2.3.4 1 0 3"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.server);
        FormsBench bench;
        auto& form = bench.wb.forms.Get<frmMailServer>();
        EXPECT_EQ(form.txtDays.Text(), "3");
        EXPECT_FALSE(form.txtDNS.Enabled() || form.txtDays.Enabled());
        form.optCustomDNS.SetByUser("1");
        form.chkDelete.SetByUser("1");
        form.chkLogs.SetByUser("1");
        EXPECT_TRUE(form.txtDNS.Enabled() && form.txtDays.Enabled());
        form.txtDNS.SetText(row.server);
        form.txtDays.SetText(row.days);
        if (!row.valid) bench.Prompts().QueueBox(BoxAnswer::Ok);
        form.cmdOk.Press();
        EXPECT_EQ(bench.Prompts().ExpectBox("Wrong IP address of your DNS server."), !row.valid);
        EXPECT_EQ(bench.Stored("DNS") + " " + bench.Stored("Logs") + " " + bench.Stored("Delete") +
                      " " + form.txtDays.Text(),
                  row.stored);
        EXPECT_EQ(bench.Stored("DefDNS"), row.valid ? "false" : "true");
        EXPECT_EQ(bench.Stored("Days"), form.txtDays.Text());
        form.Unload();
        auto& again = bench.wb.forms.Get<frmMailServer>();
        EXPECT_TRUE(again.txtDNS.Enabled() == row.valid && again.optCustomDNS.IsSet() == row.valid);
        EXPECT_EQ(again.txtDNS.Text(), row.server);
    }
}

TEST_F(SendForms, LogsAreListedAndThoseOlderThanTheLimitRemoved) {
    EXPECT_FALSE(wb.forms.Get<frmMailServer>().cmdLogs.Enabled()) << "there is none";
    wb.forms.Get<frmMailServer>().Unload();
    WriteLog("today.txt", 0);
    WriteLog("3-12-2024 11.00.00 PM.txt", 3);
    WriteLog("older.TXT", 4);
    WriteLog("notes.doc", 9);
    std::vector<std::string> left = {"3-12-2024 11.00.00 PM", "older", "today"};
    for (const char* deletes : {"0", "1"}) {
        SaveUserSetting(wb, "MailServer", "Delete", deletes);
        if (*deletes == '1') left.erase(left.begin() + 1);
        auto& form = wb.forms.Get<frmMailServer>();
        EXPECT_EQ(form.cmbLogs.Items(), left);
        EXPECT_EQ(form.cmbLogs.Text(), "today") << "the newest";
        EXPECT_TRUE(FileExists(wb.state.ProjectFolder + "/Logs/notes.doc"));
        form.cmbLogs.SetByUser("#0");
        form.cmdLogs.Press();
        ASSERT_FALSE(processes.opened.empty());
        EXPECT_TRUE(processes.opened.back().first.ends_with("/Logs/3-12-2024 11.00.00 PM.txt"));
        form.Unload();
    }
}

TEST_F(SendForms, WithoutAProjectThereIsNoFolderOfLogs) {
    wb.state.ProjectFolder = "";
    EXPECT_FALSE(wb.forms.Get<frmMailServer>().cmdLogs.Enabled());
    EXPECT_FALSE(FileExists("/Logs", true));
}

}  // namespace
}  // namespace mailvane
