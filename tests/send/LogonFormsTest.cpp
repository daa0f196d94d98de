#include <gtest/gtest.h>

#include <chrono>
#include <ctime>
#include <filesystem>
#include <utility>

#include "core/Settings.h"
#include "core/frmSettings.h"
#include "send/Logon.h"
#include "send/SendService.h"
#include "send/frmMailServer.h"
#include "send/frmSMTPAuthentication.h"
#include "support/TestBench.h"

namespace mailvane {
namespace {

namespace fs = std::filesystem;

struct FormsBench : test::TestBench {
    explicit FormsBench(bool saved = true) {
        if (saved) UseProject();
    }

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

TEST(SettingsButtons, OpenTheFormsWhileTheirChoiceIsOn) {
    FormsBench bench;
    EXPECT_FALSE(bench.settings.SSCommand1.Enabled() || bench.settings.cmdSMTPAuth.Enabled());
    bench.settings.chkServer.SetByUser("1");
    bench.settings.chkSMTPAuth.SetByUser("1");
    EXPECT_TRUE(bench.settings.SSCommand1.Enabled() && bench.settings.cmdSMTPAuth.Enabled());
    bench.With<frmMailServer>(bench.settings.SSCommand1, [](auto& form) {
        EXPECT_TRUE(form.chkEnable.Checked());
        form.chkEnable.SetByUser("0");
        form.cmdOk.Press();
    });
    EXPECT_FALSE(bench.settings.chkServer.Checked());
    EXPECT_TRUE(bench.settings.txtSMTPServer.Enabled());
    EXPECT_FALSE(bench.settings.SSCommand1.Enabled());
    bench.settings.chkServer.SetByUser("1");
    bench.With<frmMailServer>(bench.settings.SSCommand1, [](auto& form) {
        EXPECT_TRUE(form.chkEnable.Checked()) << "a hidden form takes the choice again";
        form.chkEnable.SetByUser("0");
        form.cmdCancel.Press();
    });
    EXPECT_TRUE(bench.settings.chkServer.Checked());
}

TEST(frmSMTPAuthentication, KeepsUserAndPasswordWithTheProject) {
    FormsBench bench;
    bench.settings.chkSMTPAuth.SetByUser("1");
    const std::string user = "ann=;[x]\xC3\xA4";
    const std::string password = " %41+ \"quoted\" ";
    using Dialog = frmSMTPAuthentication;
    bench.With<Dialog>(bench.settings.cmdSMTPAuth, [&](Dialog& dialog) {
        dialog.txtUser.SetText(user);
        dialog.txtPass.SetText(password);
        dialog.cmdOk.Press();
    });
    EXPECT_EQ(ReadLogon(bench.wb), (LogonData{user, password}));
    const std::string file = ReadFileText(LogonFile(bench.wb.state));
    EXPECT_EQ(file.find("ann"), std::string::npos);
    EXPECT_EQ(file.find("quoted"), std::string::npos);
    bench.With<Dialog>(bench.settings.cmdSMTPAuth, [&](Dialog& dialog) {
        EXPECT_EQ(dialog.txtUser.Text(), user);
        EXPECT_EQ(dialog.txtPass.Text(), password);
        dialog.txtUser.SetText("other");
        dialog.cmdCancel.Press();
    });
    EXPECT_EQ(ReadLogon(bench.wb).user, user);
}

TEST(frmSMTPAuthentication, SaysSoWhenTheLogonCannotBeStored) {
    FormsBench bench;
    bench.settings.chkSMTPAuth.SetByUser("1");
    fs::create_directories(LogonFile(bench.wb.state) + "/in the way");
    bench.Prompts().QueueBox(BoxAnswer::Ok, "could not be stored");
    bench.With<frmSMTPAuthentication>(bench.settings.cmdSMTPAuth, [&](auto& dialog) {
        dialog.txtUser.SetText("ann");
        dialog.cmdOk.Press();
        EXPECT_TRUE(dialog.Visible());
        dialog.cmdCancel.Press();
    });
    EXPECT_EQ(bench.Prompts().Shown().size(), 1u);
}

TEST(frmSMTPAuthentication, NeedsASavedProject) {
    FormsBench bench(false);
    bench.settings.chkSMTPAuth.SetByUser("1");
    bench.Prompts().QueueBox(BoxAnswer::Ok);
    bench.settings.cmdSMTPAuth.Press();
    EXPECT_TRUE(bench.Prompts().ExpectBox(
        "You need to save your project before you can configure this e-mail account."));
    EXPECT_FALSE(bench.wb.forms.IsFormLoaded("frmSMTPAuthentication"));
    EXPECT_EQ(bench.windows.Pointer(), MousePointer::Normal);
}

TEST(frmMailServer, ChecksWhatIsEntered) {
    struct Case {
        const char* name;
        const char* server;
        const char* days;
        bool box;
        const char* defaultServer;
        const char* deletes;
        const char* storedDays;
    };
    const Case cases[] = {
        {"three parts", "127.0.1", "10", true, "true", "1", "10"},
        {"four parts of letters", "a.b.c.d", "10", false, "false", "1", "10"},
        {"port", "127.0.0.1:5300", "0", false, "false", "1", "0"},
        {"five parts", "1.2.3.4.5", "10", true, "true", "1", "10"},
        {"no number of days", "1.2.3.4", "abc", false, "false", "0", "3"},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.name);
        FormsBench bench;
        auto& form = bench.wb.forms.Get<frmMailServer>();
        EXPECT_EQ(form.txtDays.Text(), "3");
        EXPECT_FALSE(form.txtDNS.Enabled() || form.txtDays.Enabled());
        form.optCustomDNS.SetByUser("1");
        form.chkDelete.SetByUser("1");
        form.chkLogs.SetByUser("1");
        EXPECT_TRUE(form.txtDNS.Enabled() && form.txtDays.Enabled());
        form.txtDNS.SetText(test.server);
        form.txtDays.SetText(test.days);
        if (test.box) bench.Prompts().QueueBox(BoxAnswer::Ok);
        form.cmdOk.Press();
        EXPECT_EQ(bench.Prompts().ExpectBox("Wrong IP address of your DNS server."), test.box);
        EXPECT_EQ(bench.Stored("DefDNS"), test.defaultServer);
        EXPECT_EQ(bench.Stored("DNS"), test.server);
        EXPECT_EQ(bench.Stored("Logs"), "1");
        EXPECT_EQ(bench.Stored("Delete"), test.deletes);
        EXPECT_EQ(bench.Stored("Days"), test.storedDays);
        EXPECT_EQ(form.txtDays.Text(), test.storedDays);
        form.Unload();
        auto& again = bench.wb.forms.Get<frmMailServer>();
        EXPECT_EQ(again.txtDNS.Enabled(), again.optCustomDNS.IsSet());
        EXPECT_EQ(again.optCustomDNS.IsSet(), test.defaultServer == std::string("false"));
        EXPECT_EQ(again.txtDNS.Text(), test.server);
    }
}

TEST(frmMailServer, ListsLogsAndRemovesThoseThatAreOlderThanTheLimit) {
    for (const bool deletes : {true, false}) {
        SCOPED_TRACE(deletes);
        FormsBench bench;
        MakeFolders(bench.wb.state.ProjectFolder + "/Logs");
        bench.WriteLog("today.txt", 0);
        bench.WriteLog("3-12-2024 11.00.00 PM.txt", 3);
        bench.WriteLog("older.TXT", 4);
        bench.WriteLog("notes.doc", 9);
        SaveUserSetting(bench.wb, "MailServer", "Delete", deletes ? "1" : "0");
        auto& form = bench.wb.forms.Get<frmMailServer>();
        std::vector<std::string> left = {"3-12-2024 11.00.00 PM", "older", "today"};
        if (deletes) left.erase(left.begin() + 1);
        EXPECT_EQ(form.cmbLogs.Items(), left);
        EXPECT_EQ(form.cmbLogs.Text(), "today") << "the newest";
        EXPECT_TRUE(FileExists(bench.wb.state.ProjectFolder + "/Logs/notes.doc"));
        form.cmbLogs.SetByUser("#0");
        form.cmdLogs.Press();
        ASSERT_EQ(bench.processes.opened.size(), 1u);
        EXPECT_TRUE(bench.processes.opened[0].first.ends_with("/Logs/3-12-2024 11.00.00 PM.txt"));
    }
}

TEST(frmMailServer, WithoutLogsThereIsNoneToShowAndWithoutAProjectNoFolder) {
    for (const bool saved : {true, false}) {
        FormsBench bench(saved);
        auto& form = bench.wb.forms.Get<frmMailServer>();
        EXPECT_FALSE(form.cmdLogs.Enabled());
        EXPECT_EQ(FileExists(bench.wb.state.ProjectFolder + "/Logs", true), saved);
    }
}

}  // namespace
}  // namespace mailvane
