#include <gtest/gtest.h>

#include "core/ProgramFolder.h"
#include "core/notices/frmMSGResources.h"
#include "core/project/Project.h"
#include "core/project/frmProjectDialog.h"
#include "core/project/frmProjectWizard.h"
#include "core/project/frmWelcome.h"
#include "core/settings/Settings.h"
#include "core/settings/frmSettings.h"
#include "support/TestBench.h"

namespace mailvane {
namespace {

struct ProjectWizard : testing::Test, test::TestBench {
    ProjectWizard() {
        PrepareProgramFolder(wb);
        mainForm.cmdSave.onClick = [this] {
            saved.push_back(wb.state.CurrentProjectFile);
            SaveProject(wb, saved.back());
        };
    }
    frmProjectWizard& Wizard() { return wb.forms.Get<frmProjectWizard>(); }
    frmSettings& Settings() { return wb.forms.Get<frmSettings>(); }
    std::vector<std::string> saved;
};

TEST_F(ProjectWizard, FirstPageNeedsALocation) {
    Prompts().UseDefaults();
    for (const char* location : {"", "  "}) {
        Wizard().txtProject.SetByUser(location);
        Wizard().cmdNext.Press();
        EXPECT_TRUE(Prompts().ExpectBox("You need to enter location of your new project file."));
        EXPECT_TRUE(Wizard().pnlProject.Visible());
    }
    Wizard().txtProject.SetByUser("/p/a.poc");
    Panel* const pages[] = {&Wizard().pnlProject, &Wizard().pnlSender, &Wizard().pnlServers,
                            &Wizard().pnlDatabase};
    for (Panel* shown : pages) {
        for (const Panel* page : pages)
            EXPECT_EQ(page->Visible(), page == shown);
        EXPECT_EQ(Wizard().cmdBack.Enabled(), shown != pages[0]);
        EXPECT_EQ(Wizard().cmdNext.Press() == ControlAnswer::Done, shown != pages[3]);
    }
    Wizard().cmdBack.Press();
    EXPECT_TRUE(Wizard().pnlServers.Visible());
}

TEST_F(ProjectWizard, BareNamesStandInTheUsualFolder) {
    const std::pair<std::string, std::string> rows[] = {
        {" Summer ", InProgramFolder("Projects/Summer.poc")},
        {"Sum.mer", InProgramFolder("Projects/Sum.mer")},
        {"/a.b/Summer", "/a.b/Summer.poc"},
        {"/a/Summer.poc", "/a/Summer.poc"},
        {"/a/", "/a/"},
        {"", ""},
    };
    for (const auto& [typed, location] : rows) {
        Wizard().txtProject.SetByUser(typed);
        EXPECT_EQ(Wizard().txtProject.Text(), location);
    }
    Prompts().QueueFile("/p/Chosen");
    Wizard().cmdBrowseProject.Press();
    Prompts().QueueFile(std::nullopt);
    Wizard().cmdBrowseProject.Press();
    EXPECT_EQ(Wizard().txtProject.Text(), "/p/Chosen.poc");
}

TEST_F(ProjectWizard, FinishMakesTheProject) {
    Settings().txtName.SetText("Ann");
    Settings().txtReplyTo.SetText("old@example.com");
    wb.forms.Get<frmMSGResources>();
    Wizard().Show();
    EXPECT_EQ(Wizard().txtName.Text(), "Ann") << "from the open project";
    const std::tuple<TextBox frmProjectWizard::*, TextBox frmSettings::*, const char*> rows[] = {
        {&frmProjectWizard::txtEmail, &frmSettings::txtEmail, "ann@example.com"},
        {&frmProjectWizard::txtSMTP, &frmSettings::txtSMTPServer, "smtp.example.com"},
        {&frmProjectWizard::txtPOP3, &frmSettings::txtPOPServer, "pop.example.com"},
        {&frmProjectWizard::txtLogin, &frmSettings::txtPOPUser, "ann"},
        {&frmProjectWizard::txtPassword, &frmSettings::txtPOPPassword, "secret"},
        {&frmProjectWizard::txtDatabase, &frmSettings::txtAccessDBPath, "/none.db"},
    };
    for (const auto& [typed, stored, text] : rows)
        (Wizard().*typed).SetText(text);
    const std::string file = InProgramFolder("Projects/Summer.poc");
    Wizard().txtProject.SetText(" " + file + " ");
    Wizard().cmdFinish.Press();

    EXPECT_EQ(wb.forms.Find<frmProjectWizard>(), nullptr);
    EXPECT_EQ(wb.forms.Find<frmMSGResources>(), nullptr) << "a project switch unloads the rest";
    EXPECT_FALSE(wb.state.NewProjectInProgress);
    EXPECT_EQ(saved, std::vector<std::string>{file});
    EXPECT_EQ(shell.recentFiles, std::vector<std::string>{file}) << "without the template";
    SwitchProject(wb, file);
    EXPECT_EQ(Settings().txtName.Text(), "Ann");
    for (const auto& [typed, stored, text] : rows)
        EXPECT_EQ((Settings().*stored).Text(), text);
    EXPECT_EQ(Settings().txtReplyTo.Text(), "") << "the template's";
}

TEST_F(ProjectWizard, FinishNeedsTheTemplate) {
    DeleteFile(TemplatePath(wb));
    wb.state.CurrentProjectFile = "/old.poc";
    Prompts().UseDefaults();
    Wizard().txtProject.SetText("/p/a.poc");
    Wizard().cmdFinish.Press();
    EXPECT_TRUE(Prompts().ExpectBox(
        "Some very important files are corrupted. To solve the problem please reinstall the "
        "program. "));
    EXPECT_EQ(Prompts().Shown().back().icon, BoxIcon::Critical);
    EXPECT_NE(wb.forms.Find<frmProjectWizard>(), nullptr) << "what was typed is not lost";
    EXPECT_EQ(wb.state.CurrentProjectFile, "/old.poc");
    EXPECT_FALSE(wb.state.NewProjectInProgress);
}

TEST_F(ProjectWizard, FinishWithoutALocationSavesNothing) {
    Wizard().txtName.SetText("Ann");
    Wizard().cmdFinish.Press();
    EXPECT_TRUE(saved.empty());
    EXPECT_EQ(wb.state.CurrentProjectFile, "");
    EXPECT_EQ(Settings().txtName.Text(), "Ann");
}

TEST_F(ProjectWizard, AnExistingProjectIsReplacedOnlyWhenAsked) {
    const std::string file = folder.Write("a.poc", "old");
    Wizard().txtProject.SetText(file);
    Prompts().QueueBox(BoxAnswer::No, "already exists");
    Wizard().cmdFinish.Press();
    EXPECT_EQ(ReadFileText(file), "old");
    Prompts().QueueFile(file);
    Wizard().cmdBrowseProject.Press();
    Wizard().cmdFinish.Press();
    EXPECT_EQ(saved, std::vector<std::string>{file}) << "the file dialog has asked already";
}

TEST_F(ProjectWizard, WelcomeComesAtTheFirstStartOnly) {
    const std::tuple<bool, const char*, bool> rows[] = {
        {true, nullptr, true}, {true, "0", true}, {true, "1", false}, {false, "0", false}};
    for (const auto& [first, stored, shown] : rows) {
        wb.forms.UnloadAllExcept({"frmMain"});
        DeleteFile(platform.registryFile);
        if (stored) SaveUserSetting(wb, "Settings", "Welcome", stored);
        wb.state.FirstLaunch = first;
        Wizard().cmdFinish.Press();
        EXPECT_EQ(wb.forms.IsFormLoaded("frmWelcome"), shown) << first << stored;
    }
}

struct ProjectDialog : testing::Test, test::TestBench {
    /// Opens the dialog and does that as soon as it stands there.
    ProjectChoice Ask(const std::function<void(frmProjectDialog&)>& act) {
        bool done = false;
        const auto acting = windows.idle.Observe([&] {
            auto* dialog = wb.forms.Find<frmProjectDialog>();
            if (!dialog || std::exchange(done, true)) return;
            act(*dialog);
            if (dialog->IsLoaded() && dialog->Visible()) dialog->OnCloseBox();
        });
        return AskForProject(wb, {summer, "", "/none.poc", winter});
    }
    std::string summer = folder.Write("Summer.poc", "");
    std::string winter = folder.Write("Winter.poc", "");
};

TEST_F(ProjectDialog, Choices) {
    const std::tuple<const char*, std::function<void(frmProjectDialog&)>, ProjectChoice,
                     std::vector<std::optional<std::string>>>
        rows[] = {
            {"closed", [](auto&) {}, {}, {}},
            {"another by a double click",
             [](auto& dialog) {
                 dialog.lstRecent.SetByUser("#1");
                 dialog.lstRecent.onDoubleClick();
             },
             {false, false, false, winter},
             {}},
            {"browsed at the second try",
             [](auto& dialog) {
                 dialog.cmdBrowse.Press();
                 EXPECT_TRUE(dialog.Visible());
                 dialog.cmdBrowse.Press();
             },
             {false, false, false, winter},
             {std::nullopt, winter}},
            {"new",
             [](auto& dialog) { dialog.cmdNew.Press(); },
             {false, true, false, "/p/New.poc"},
             {"/p/New"}},
        };
    for (const auto& [name, act, expected, files] : rows) {
        SCOPED_TRACE(name);
        for (const auto& file : files)
            Prompts().QueueFile(file);
        const ProjectChoice choice = Ask(act);
        EXPECT_EQ(choice.cancelled, expected.cancelled);
        EXPECT_EQ(choice.isNew, expected.isNew);
        EXPECT_EQ(choice.file, expected.file);
        EXPECT_FALSE(wb.forms.IsFormLoaded("frmProjectDialog"));
    }
}

TEST_F(ProjectDialog, FilesThatHaveGoneAreTold) {
    Prompts().QueueBox(BoxAnswer::Ok, "File not found.");
    const ProjectChoice choice = Ask([this](frmProjectDialog& dialog) {
        EXPECT_EQ(dialog.lstRecent.Items(),
                  (std::vector<std::string>{"Summer  (" + folder.Path() + ")",
                                            "Winter  (" + folder.Path() + ")"}));
        DeleteFile(summer);
        dialog.cmdOpen.Press();
        EXPECT_TRUE(dialog.Visible());
        dialog.Offer({});
        EXPECT_FALSE(dialog.cmdOpen.Enabled());
    });
    EXPECT_TRUE(choice.cancelled);
}

}  // namespace
}  // namespace mailvane
