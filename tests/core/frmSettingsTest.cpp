#include <gtest/gtest.h>

#include "core/Running.h"
#include "core/project/Project.h"
#include "core/records/Sifrant.h"
#include "core/settings/frmSettings.h"
#include "support/TestBench.h"

namespace mailvane {
namespace {

struct FormSettings : testing::Test, test::TestBench {
    frmSettings& Form() { return wb.forms.Get<frmSettings>(); }
    /// A database file with two user tables; gives its path.
    std::string MakeDatabase(const std::string& name) {
        const std::string path = folder.File(name);
        const auto workspace = Workspace::Create();
        const auto database = workspace->CreateDatabase(path);
        EXPECT_TRUE(database.Ok());
        Field email;
        email.name = "email";
        for (const char* table : {"Clients", "Partners"})
            EXPECT_TRUE((*database)->AppendTable({table, 0, {email}, {}}).Ok());
        (*database)->Close();
        return path;
    }
    void OpenText(const std::string& clearText) {
        const std::string path = InProgramFolder("Projects/a.poc");
        WriteFileText(path, Sifrant().Sifriraj(clearText, ProjectKey));
        SwitchProject(wb, path);
    }
};

TEST_F(FormSettings, FieldsFollowTheirChoices) {
    EXPECT_FALSE(Form().txtIdentityCustom.Enabled());
    Form().optIdentityCustom.SetByUser("1");
    EXPECT_TRUE(Form().txtIdentityCustom.Enabled());
    Form().optIdentityAnonymous.SetByUser("1");
    EXPECT_FALSE(Form().txtIdentityCustom.Enabled());
    Form().optFile.SetByUser("1");
    EXPECT_TRUE(Form().txtSigFile.Enabled());
    EXPECT_FALSE(Form().txtSignature.Enabled());
    Form().chkServer.SetByUser("1");
    EXPECT_FALSE(Form().txtSMTPServer.Enabled());
    EXPECT_FALSE(Form().txtSMTPPort.Enabled());
    Form().chkServer.SetByUser("0");
    EXPECT_TRUE(Form().txtSMTPServer.Enabled());
    Form().Slider1.SetByUser("1");
    EXPECT_EQ(Form().lblTimeOut.Text(), "1 minute");
    EXPECT_EQ(Form().optIdentityDefault.Caption(), "Identify as &Mailvane.");
    Form().cmbPOPSecurity.SetByUser("TLS from the start");
    EXPECT_EQ(Form().txtPOPPort.Text(), "995");
    Form().cmbPOPSecurity.SetByUser("None");
    EXPECT_EQ(Form().txtPOPPort.Text(), "110");
}

TEST_F(FormSettings, NumbersAreCheckedOnLeaving) {
    const char* wrapBox = "Please enter a number of characters between 30 and 132.";
    const char* triesBox = "Please enter a number of characters between 1 and 132.";
    const std::tuple<const char*, const char*, const char*> rows[] = {
        {"30", "30", "30"}, {"132", "132", "132"}, {"133", "65", "4"}, {"29", "65", "29"},
        {"1", "65", "1"},   {"0", "65", "4"},      {"abc", "65", "4"}, {"", "65", "4"},
    };
    Prompts().UseDefaults();
    for (const auto& [typed, wrap, tries] : rows) {
        Form().txtWrap.SetByUser(typed);
        EXPECT_EQ(Form().txtWrap.Text(), wrap);
        EXPECT_EQ(Prompts().ExpectBox(wrapBox), std::string(wrap) != typed);
        Form().txtDeleteUndeliverables.SetByUser(typed);
        EXPECT_EQ(Form().txtDeleteUndeliverables.Text(), tries);
        EXPECT_EQ(Prompts().ExpectBox(triesBox), std::string(tries) != typed);
    }
    EXPECT_EQ(Prompts().Shown().front().title, "Error");
}

TEST_F(FormSettings, ButtonsWithoutWorkStayDisabled) {
    const auto attached = wb.forms.created.Observe([](auto& form) {
        if (auto* settings = dynamic_cast<frmSettings*>(&form)) {
            settings->SSCommand1.onClick = [] {};
            settings->cmdImportData.onClick = [] {};
        }
    });
    EXPECT_FALSE(Form().cmdExportData.Enabled());
    EXPECT_TRUE(Form().cmdExportData.Tip().ends_with(". Comes with a later version."));
    EXPECT_TRUE(Form().cmdImportData.Enabled());
    EXPECT_FALSE(Form().SSCommand1.Enabled());
    Form().chkServer.SetByUser("1");
    EXPECT_TRUE(Form().SSCommand1.Enabled());
    Form().chkSMTPAuth.SetByUser("1");
    EXPECT_FALSE(Form().cmdSMTPAuth.Enabled());
}

TEST_F(FormSettings, MissingSignatureFileIsTold) {
    const std::tuple<const char*, std::string, bool, bool, bool> rows[] = {
        {"no text either", "optFile*|*True#|#chkAddSignature*|*1#|#", false, true, false},
        {"with a text", "optFile*|*True#|#chkAddSignature*|*1#|#txtSignature*|*x#|#", false, true,
         true},
        {"nobody there", "optFile*|*True#|#chkAddSignature*|*1#|#", true, false, true},
        {"file is there",
         "optFile*|*True#|#chkAddSignature*|*1#|#txtSigFile*|*" + folder.Write("sig.txt", "x") +
             "#|#",
         false, false, true},
    };
    Prompts().UseDefaults();
    for (const auto& [name, text, unattended, told, signs] : rows) {
        wb.state.UnattendedRun = unattended;
        OpenText(text);
        EXPECT_EQ(Prompts().ExpectBox("Your signature file cannot be found."), told) << name;
        EXPECT_EQ(Form().optText.IsSet(), told) << name;
        EXPECT_EQ(Form().chkAddSignature.Checked(), signs) << name;
    }
}

TEST_F(FormSettings, RulesListComesFromTheProject) {
    folder.Write("program/Projects/a/Rules.dat", "1. Copy\r\n2. Move\r\n");
    OpenText("");
    EXPECT_EQ(Form().lbxRules.Items(), (std::vector<std::string>{"1. Copy", "2. Move"}));
}

TEST_F(FormSettings, DatabaseFillsTheTables) {
    const std::string path = MakeDatabase("list.db");
    int changes = 0;
    int choices = 0;
    const auto changed = Form().databaseChanged.Observe([&] { ++changes; });
    const auto chosen = Form().tableChosen.Observe([&] { ++choices; });
    Form().txtAccessDBPath.SetByUser(path);
    EXPECT_EQ(Form().cmbAccessTable.Items(), (std::vector<std::string>{"Clients", "Partners"}));
    EXPECT_EQ(Form().cmbAccessTable.Text(), "Clients");
    EXPECT_TRUE(Form().cmbAccessTable.Enabled());
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(choices, 0);
    Form().cmbAccessTable.SetByUser("Partners");
    EXPECT_EQ(choices, 1);
    Form().txtAccessDBPath.SetByUser(path + "x");
    EXPECT_EQ(Form().txtAccessDBPath.Text(), "");
    EXPECT_EQ(Form().cmbAccessTable.Count(), 0);
    EXPECT_FALSE(Form().cmbAccessTable.Enabled());
    EXPECT_EQ(changes, 2);
    Prompts().QueueFile(path);
    Form().cmdAccessBrowse.Press();
    EXPECT_EQ(changes, 3);
    OpenText("txtAccessDBPath*|*" + path + "#|#cmbAccessTable*|*1#|#");
    EXPECT_EQ(Form().cmbAccessTable.Text(), "Partners") << "a project restores its table";
}

TEST_F(FormSettings, WhatIsNoDatabaseIsTold) {
    const std::string text = folder.Write("list.txt", std::string(5000, 'x'));
    OpenText("txtAccessDBPath*|*" + text + "#|#");
    EXPECT_TRUE(Prompts().Shown().empty()) << "a project opens in silence";
    Prompts().UseDefaults();
    Form().txtAccessDBPath.SetText("");
    Form().txtAccessDBPath.SetText(text);
    EXPECT_EQ(Prompts().Shown().size(), 1u);
    EXPECT_FALSE(Form().cmbAccessTable.Enabled());
}

TEST_F(FormSettings, HidesAndStaysLoaded) {
    Form().ShowPage(frmSettings::DatabasePage, Form().txtAccessDBPath);
    EXPECT_TRUE(Form().Visible());
    EXPECT_EQ(Form().Tab1.Current(), frmSettings::DatabasePage);
    EXPECT_EQ(windows.FocusedControl(), &Form().txtAccessDBPath);
    int saved = 0;
    mainForm.cmdSave.onClick = [&] { ++saved; };
    Form().cmdOk.Press();
    EXPECT_FALSE(Form().Visible());
    EXPECT_EQ(saved, 0) << "there is no file yet";
    wb.state.CurrentProjectFile = "/a.poc";
    Form().Show();
    CloseWindowByTitle(wb, "Project settings");
    EXPECT_FALSE(Form().Visible());
    EXPECT_EQ(saved, 1);
    EXPECT_NE(wb.forms.Find<frmSettings>(), nullptr);
}

TEST_F(FormSettings, OtherProgramsAreStartedWithoutAShell) {
    processes.succeeds = false;
    Prompts().UseDefaults();
    EXPECT_FALSE(RunAndWait(wb, {"prog", "a b"}));
    EXPECT_TRUE(Prompts().ExpectBox("Error starting task "));
    EXPECT_EQ(processes.ran.front(), (std::vector<std::string>{"prog", "a b"}));
    wb.state.UnattendedRun = true;
    EXPECT_FALSE(RunAndWait(wb, {}));
    EXPECT_FALSE(Prompts().ExpectBox("Error starting task "));
    ShowHelpContext(wb);
    EXPECT_TRUE(Prompts().ExpectBox(
        "Unable to display Help Contents. There is no Help associated with this project."));
    EXPECT_FALSE(OpenInBrowser(wb, "--version"));
    EXPECT_TRUE(processes.opened.empty());
    processes.succeeds = true;
    EXPECT_TRUE(OpenInBrowser(wb, "HTTPS://example.com/"));
}

}  // namespace
}  // namespace mailvane
