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

class ProjectWizard : public ::testing::Test {
protected:
    ProjectWizard() {
        PrepareProgramFolder(bench.wb);
        bench.mainForm.cmdSave.onClick = [this] {
            saved.push_back(bench.wb.state.CurrentProjectFile);
            SaveProject(bench.wb, saved.back());
        };
    }
    frmProjectWizard& Wizard() { return bench.wb.forms.Get<frmProjectWizard>(); }
    frmSettings& Settings() { return bench.wb.forms.Get<frmSettings>(); }

    test::TestBench bench;
    std::vector<std::string> saved;
};

TEST_F(ProjectWizard, FirstPageNeedsALocation) {
    bench.Prompts().UseDefaults();
    for (const char* location : {"", "  "}) {
        Wizard().txtProject.SetByUser(location);
        Wizard().cmdNext.Press();
        EXPECT_TRUE(
            bench.Prompts().ExpectBox("You need to enter location of your new project file."));
        EXPECT_TRUE(Wizard().pnlProject.Visible());
    }
    Wizard().txtProject.SetByUser("/p/a.poc");
    Panel* const pages[] = {&Wizard().pnlProject, &Wizard().pnlSender, &Wizard().pnlServers,
                            &Wizard().pnlDatabase};
    for (int page = 0; page < 4; ++page) {
        for (int i = 0; i < 4; ++i)
            EXPECT_EQ(pages[i]->Visible(), i == page) << page;
        EXPECT_EQ(Wizard().cmdBack.Enabled(), page > 0);
        EXPECT_EQ(Wizard().cmdNext.Press() == ControlAnswer::Done, page < 3);
    }
    Wizard().cmdBack.Press();
    EXPECT_TRUE(Wizard().pnlServers.Visible());
}

TEST_F(ProjectWizard, BareNamesStandInTheUsualFolder) {
    const std::pair<std::string, std::string> rows[] = {
        {" Summer ", bench.InProgramFolder("Projects/Summer.poc")},
        {"Sum.mer", bench.InProgramFolder("Projects/Sum.mer")},
        {"/a.b/Summer", "/a.b/Summer.poc"},
        {"/a/Summer.poc", "/a/Summer.poc"},
        {"/a/", "/a/"},
        {"", ""},
    };
    for (const auto& [typed, location] : rows) {
        Wizard().txtProject.SetByUser(typed);
        EXPECT_EQ(Wizard().txtProject.Text(), location);
    }
    bench.Prompts().QueueFile("/p/Chosen");
    Wizard().cmdBrowseProject.Press();
    bench.Prompts().QueueFile(std::nullopt);
    Wizard().cmdBrowseProject.Press();
    EXPECT_EQ(Wizard().txtProject.Text(), "/p/Chosen.poc");
}

TEST_F(ProjectWizard, FinishMakesTheProject) {
    Settings().txtName.SetText("Ann");
    Settings().txtReplyTo.SetText("old@example.com");
    bench.wb.forms.Get<frmMSGResources>();
    Wizard().Show();
    EXPECT_EQ(Wizard().txtName.Text(), "Ann") << "from the open project";
    EXPECT_EQ(Wizard().txtProject.Text(), "");
    const struct {
        TextBox frmProjectWizard::*typed;
        TextBox frmSettings::*stored;
        const char* text;
    } rows[] = {
        {&frmProjectWizard::txtEmail, &frmSettings::txtEmail, "ann@example.com"},
        {&frmProjectWizard::txtSMTP, &frmSettings::txtSMTPServer, "smtp.example.com"},
        {&frmProjectWizard::txtPOP3, &frmSettings::txtPOPServer, "pop.example.com"},
        {&frmProjectWizard::txtLogin, &frmSettings::txtPOPUser, "ann"},
        {&frmProjectWizard::txtPassword, &frmSettings::txtPOPPassword, "secret"},
        {&frmProjectWizard::txtDatabase, &frmSettings::txtAccessDBPath, "/none.db"},
    };
    for (const auto& row : rows)
        (Wizard().*row.typed).SetText(row.text);
    const std::string file = bench.InProgramFolder("Projects/Summer.poc");
    Wizard().txtProject.SetText(" " + file + " ");
    Wizard().cmdFinish.Press();

    EXPECT_EQ(bench.wb.forms.Find<frmProjectWizard>(), nullptr);
    EXPECT_EQ(bench.wb.forms.Find<frmMSGResources>(), nullptr)
        << "a project switch unloads the rest";
    EXPECT_FALSE(bench.wb.state.NewProjectInProgress);
    EXPECT_EQ(bench.shell.panel, "");
    EXPECT_EQ(saved, std::vector<std::string>{file});
    EXPECT_EQ(bench.shell.recentFiles, std::vector<std::string>{file}) << "without the template";
    SwitchProject(bench.wb, file);
    EXPECT_EQ(Settings().txtName.Text(), "Ann");
    for (const auto& row : rows)
        EXPECT_EQ((Settings().*row.stored).Text(), row.text) << row.text;
    EXPECT_EQ(Settings().txtReplyTo.Text(), "") << "the template's";
}

TEST_F(ProjectWizard, FinishWithoutALocationSavesNothing) {
    Wizard().txtName.SetText("Ann");
    Wizard().cmdFinish.Press();
    EXPECT_TRUE(saved.empty());
    EXPECT_EQ(bench.wb.state.CurrentProjectFile, "");
    EXPECT_EQ(Settings().txtName.Text(), "Ann");
}

TEST_F(ProjectWizard, FinishNeedsTheTemplate) {
    DeleteFile(TemplatePath(bench.wb));
    bench.wb.state.CurrentProjectFile = "/old.poc";
    bench.Prompts().UseDefaults();
    Wizard().txtProject.SetText("/p/a.poc");
    Wizard().cmdFinish.Press();
    EXPECT_TRUE(bench.Prompts().ExpectBox(
        "Some very important files are corrupted. To solve the problem please reinstall the "
        "program. "));
    EXPECT_EQ(bench.Prompts().Shown().back().icon, BoxIcon::Critical);
    EXPECT_NE(bench.wb.forms.Find<frmProjectWizard>(), nullptr) << "what was typed is not lost";
    EXPECT_EQ(bench.wb.state.CurrentProjectFile, "/old.poc");
    EXPECT_FALSE(bench.wb.state.NewProjectInProgress);
}

TEST_F(ProjectWizard, AnExistingProjectIsReplacedOnlyWhenAsked) {
    const std::string file = bench.folder.Write("a.poc", "old");
    Wizard().txtProject.SetText(file);
    bench.Prompts().QueueBox(BoxAnswer::No, "already exists");
    Wizard().cmdFinish.Press();
    EXPECT_EQ(ReadFileText(file), "old");
    bench.Prompts().QueueFile(file);
    Wizard().cmdBrowseProject.Press();
    Wizard().cmdFinish.Press();
    EXPECT_EQ(saved, std::vector<std::string>{file}) << "the file dialog has asked already";
}

TEST_F(ProjectWizard, WelcomeComesAtTheFirstStartOnly) {
    struct {
        bool first;
        const char* stored;
        bool shown;
    } const rows[] = {
        {true, nullptr, true}, {true, "0", true}, {true, "1", false}, {false, "0", false}};
    for (const auto& row : rows) {
        bench.wb.forms.UnloadAllExcept({"frmMain"});
        DeleteFile(bench.platform.registryFile);
        if (row.stored) SaveUserSetting(bench.wb, "Settings", "Welcome", row.stored);
        bench.wb.state.FirstLaunch = row.first;
        Wizard().cmdFinish.Press();
        EXPECT_EQ(bench.wb.forms.IsFormLoaded("frmWelcome"), row.shown) << row.first << row.stored;
    }
}

class ProjectDialog : public ::testing::Test {
protected:
    /// Opens the dialog and does that as soon as it stands there.
    ProjectChoice Ask(const std::function<void(frmProjectDialog&)>& act) {
        bool done = false;
        const auto acting = bench.windows.idle.Observe([&] {
            auto* dialog = bench.wb.forms.Find<frmProjectDialog>();
            if (!dialog || std::exchange(done, true)) return;
            act(*dialog);
            if (dialog->IsLoaded() && dialog->Visible()) dialog->OnCloseBox();
        });
        return AskForProject(bench.wb, {summer, "", "/none.poc", winter});
    }

    test::TestBench bench;
    std::string summer = bench.folder.Write("Summer.poc", "");
    std::string winter = bench.folder.Write("Winter.poc", "");
};

TEST_F(ProjectDialog, Choices) {
    const auto press = [](Button frmProjectDialog::*button) {
        return [button](frmProjectDialog& dialog) { (dialog.*button).Press(); };
    };
    struct {
        const char* name;
        std::function<void(frmProjectDialog&)> act;
        ProjectChoice choice;
        std::vector<std::optional<std::string>> files = {};  ///< that the file dialog gives
    } const rows[] = {
        {"closed", [](auto&) {}, {}},
        {"cancelled", press(&frmProjectDialog::cmdCancel), {}},
        {"the last one", press(&frmProjectDialog::cmdOpen), {false, false, false, summer}},
        {"another by a double click",
         [](auto& dialog) {
             dialog.lstRecent.SetByUser("#1");
             dialog.lstRecent.onDoubleClick();
         },
         {false, false, false, winter}},
        {"browsed", press(&frmProjectDialog::cmdBrowse), {false, false, false, winter}, {winter}},
        {"browsing cancelled",
         [](auto& dialog) {
             dialog.cmdBrowse.Press();
             EXPECT_TRUE(dialog.Visible());
         },
         {},
         {std::nullopt}},
        {"new", press(&frmProjectDialog::cmdNew), {false, true, false, "/p/New.poc"}, {"/p/New"}},
        {"wizard", press(&frmProjectDialog::cmdWizard), {false, false, true, ""}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        for (const auto& file : row.files)
            bench.Prompts().QueueFile(file);
        const ProjectChoice choice = Ask(row.act);
        EXPECT_EQ(choice.cancelled, row.choice.cancelled);
        EXPECT_EQ(choice.isNew, row.choice.isNew);
        EXPECT_EQ(choice.wizard, row.choice.wizard);
        EXPECT_EQ(choice.file, row.choice.file);
        EXPECT_FALSE(bench.wb.forms.IsFormLoaded("frmProjectDialog"));
    }
}

TEST_F(ProjectDialog, FilesThatHaveGoneAreTold) {
    bench.Prompts().QueueBox(BoxAnswer::Ok, "File not found.");
    const ProjectChoice choice = Ask([this](frmProjectDialog& dialog) {
        EXPECT_EQ(dialog.lstRecent.Items(),
                  (std::vector<std::string>{"Summer  (" + bench.folder.Path() + ")",
                                            "Winter  (" + bench.folder.Path() + ")"}));
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
