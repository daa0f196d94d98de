#include <gtest/gtest.h>

#include <filesystem>

#include "core/ProgramFolder.h"
#include "core/Waiting.h"
#include "core/project/Project.h"
#include "core/records/Sifrant.h"
#include "core/run/Progress.h"
#include "core/run/frmStatus.h"
#include "core/settings/Settings.h"
#include "core/settings/frmSettings.h"
#include "core/text/Text.h"
#include "support/TestBench.h"

namespace mailvane {
namespace {

struct Project : testing::Test, test::TestBench {
    frmSettings& Settings() { return wb.forms.Get<frmSettings>(); }
    std::string ProjectPath(const std::string& name) const {
        return InProgramFolder("Projects/" + name);
    }
    void Open(const std::string& path) { SwitchProject(wb, path); }
    /// A project file with that clear text.
    std::string Written(const std::string& clearText, const char* key = ProjectKey) {
        const std::string path = ProjectPath("given.poc");
        WriteFileText(path, Sifrant().Sifriraj(clearText, key));
        return path;
    }
};

TEST_F(Project, ComesBackAsItWasSaved) {
    Settings().txtName.SetText("\xC3\x84nn \"A\"");
    Settings().txtSignature.SetText("two\r\nlines, * | # each");
    Settings().chkWrap.SetChecked(true);
    Settings().optIdentityCustom.SetValue(true);
    Settings().cmbIndent.SetListIndex(3);
    Settings().Slider1.SetValue(12);
    SaveProject(wb, ProjectPath("Sum.mer.poc"));
    EXPECT_EQ(wb.state.ProjectName, "Sum.mer");
    EXPECT_EQ(wb.state.ProjectFolder, ProjectPath("Sum.mer"));
    EXPECT_TRUE(FileExists(ProjectPath("Sum.mer"), true));
    EXPECT_EQ(mainForm.Caption(), "Sum.mer - Mailvane");
    EXPECT_EQ(shell.recentFiles, (std::vector<std::string>{ProjectPath("Sum.mer.poc")}));
    EXPECT_FALSE(wb.forms.Get<frmStatus>().Visible());

    Open(ProjectPath("Sum.mer.poc"));
    EXPECT_EQ(shell.panels.front(), "");
    EXPECT_EQ(shell.panel, "");
    EXPECT_EQ(Settings().txtName.Text(), "\xC3\x84nn \"A\"");
    EXPECT_TRUE(Settings().optIdentityCustom.IsSet());
    EXPECT_FALSE(Settings().optIdentityDefault.IsSet());
    EXPECT_EQ(Settings().cmbIndent.ListIndex(), 3);
    EXPECT_EQ(Settings().lblTimeOut.Text(), "12 minutes");
    EXPECT_FALSE(wb.state.LoadingProject);

    SaveProject(wb, ProjectPath("Copy.poc"));
    EXPECT_EQ(ReadFileText(ProjectPath("Copy.poc")), ReadFileText(ProjectPath("Sum.mer.poc")));
}

TEST_F(Project, TextHasTheFormsOrder) {
    const std::string text = ReadControlValues(wb, Settings());
    EXPECT_TRUE(text.starts_with("txtName*|*#|#txtEmail*|*#|#txtReplyTo*|*#|#"));
    EXPECT_NE(text.find("optIdentityDefault*|*True#|#optIdentityAnonymous*|*False#|#"),
              std::string::npos);
    EXPECT_TRUE(text.ends_with("chkPOPVerify*|*1#|#chkStandardParts*|*1#|#\r\n"));
    EXPECT_EQ(text.find("lblTimeOut"), std::string::npos);
    EXPECT_EQ(text.find("lbxRules"), std::string::npos);
}

TEST_F(Project, ValuesOfTheText) {
    const std::tuple<const char*, const char*, const char*, const char*> rows[] = {
        {"first of two", "txtName*|*a#|#txtName*|*b#|#", "txtName", "a"},
        {"name counts exactly", "TXTNAME*|*a#|#", "txtName", ""},
        {"item separator in a value", "txtName*|*a#|#b#|#", "txtName", "a"},
        {"name separator in a value", "txtName*|*a*|*b#|#", "txtName", "a"},
        {"item without a value", "txtName#|#", "txtName", ""},
        {"missing text is emptied", "", "txtSMTPPort", ""},
        {"missing check box stays", "", "chkPOPVerify", "1"},
        {"empty option stays", "optIdentityDefault*|*#|#", "optIdentityDefault", "1"},
        {"option as a number", "optFile*|*-1#|#txtSigFile*|*/none#|#", "optText", "1"},
        {"option as a word", "optIdentityCustom*|*true#|#", "optIdentityCustom", "1"},
        {"missing list index stays", "", "cmbSMTPSecurity", "Automatic"},
        {"list index beyond the end", "cmbIndent*|*99#|#", "cmbIndent", ">"},
        {"list index that is none", "cmbIndent*|*x#|#", "cmbIndent", ">"},
        {"no entry", "cmbIndent*|*-1#|#", "cmbIndent", ""},
        {"slider beyond its end", "Slider1*|*4000000000#|#", "Slider1", "5"},
        {"missing wrap gets its default", "", "txtWrap", "65"},
        {"missing tries get their default", "", "txtDeleteUndeliverables", "4"},
        {"missing POP3 port gets its default", "", "txtPOPPort", "110"},
        {"the secure default port", "cmbPOPSecurity*|*2#|#", "txtPOPPort", "995"},
    };
    for (const auto& [name, text, control, expected] : rows) {
        Prompts().UseDefaults();
        Open(Written(text));
        EXPECT_EQ(Settings().FindControl(control)->ShownText(), expected) << name;
    }
}

TEST_F(Project, BadFilesEmptyTheTextsAndKeepTheRest) {
    Settings().txtEmail.SetText("a@b.c");
    const std::string good = ReadControlValues(wb, Settings());
    const std::pair<const char*, std::string> rows[] = {
        {"wrong key", Written(good, "other")},
        {"empty", folder.Write("empty.poc", "")},
        {"not scrambled", folder.Write("plain.poc", good)},
        {"missing", folder.File("missing.poc")},
        {"a folder", folder.Path()},
    };
    for (const auto& [name, path] : rows) {
        SCOPED_TRACE(name);
        Open(path);
        EXPECT_EQ(Settings().txtEmail.Text(), "");
        EXPECT_EQ(Settings().txtSMTPPort.Text(), "");
        EXPECT_TRUE(Settings().optIdentityDefault.IsSet());
        EXPECT_EQ(Settings().cmbIndent.ListIndex(), 0);
    }
}

TEST_F(Project, CutFilesNeverCrash) {
    SaveProject(wb, ProjectPath("a.poc"));
    const std::string whole = ReadFileText(ProjectPath("a.poc"));
    for (std::size_t length = 0; length < whole.size(); length += 41)
        Open(folder.Write("cut.poc", whole.substr(0, length)));
    EXPECT_FALSE(Prompts().Failure().has_value());
}

TEST_F(Project, SavingRefusesWhatIsNoPath) {
    Prompts().UseDefaults();
    SaveProject(wb, "ab");
    EXPECT_TRUE(Prompts().ExpectBox("Invalid File Name."));
    EXPECT_EQ(wb.state.ProjectName, "");
    EXPECT_FALSE(SaveProject(wb, folder.File("none/none/a.poc")));
    EXPECT_EQ(Prompts().Shown().size(), 2u);
    EXPECT_EQ(wb.state.ProjectFolder, "") << "the open project stays the open one";
    EXPECT_TRUE(shell.recentFiles.empty());
}

TEST_F(Project, OnlyTheOwnerReadsWhatHoldsPasswords) {
    namespace fs = std::filesystem;
    constexpr auto OwnerOnly = fs::perms::owner_read | fs::perms::owner_write;
    SaveProject(wb, ProjectPath("a.poc"));
    SaveUserSetting(wb, "Proxy", "ProxyServerName", "proxy");
    for (const std::string& file : {ProjectPath("a.poc"), wb.platform.registryFile})
        EXPECT_EQ(fs::status(file).permissions(), OwnerOnly) << file;
}

TEST_F(Project, FilesThatNameNoSettingAreNoProjects) {
    SaveProject(wb, ProjectPath("a.poc"));
    EXPECT_TRUE(IsProjectFile(wb, ProjectPath("a.poc")));
    for (const char* content : {"", "a letter", "txtName*|*Ann#|#"})
        EXPECT_FALSE(IsProjectFile(wb, folder.Write("b.poc", content))) << content;
}

TEST_F(Project, ShippedTemplateHoldsTheDefaults) {
    const std::string defaults = ReadControlValues(wb, Settings());
    ASSERT_TRUE(PrepareProgramFolder(wb));
    EXPECT_EQ(Sifrant().DeSifriraj(ReadFileText(TemplatePath(wb)), ProjectKey), defaults);
    Open(TemplatePath(wb));
    EXPECT_EQ(mainForm.Caption(), "Mailvane");
    EXPECT_TRUE(shell.recentFiles.empty());
    for (const char* reply : {"subs.msg", "unsubs.msg"}) {
        const std::string text =
            Sifrant().DeSifriraj(ReadFileText(InProgramFolder(reply)), ProjectKey);
        for (const char* key : {"txtFrom*|*", "txtSubject*|*", "txtBody*|*"})
            EXPECT_NE(text.find(key), std::string::npos) << reply << key;
        EXPECT_EQ(CountOccurrences(text, "[!replace!]"), 3) << reply;
    }
    for (const char* name : {".shd", "msge.mg", "help/index.html"})
        EXPECT_TRUE(FileExists(InProgramFolder(name))) << name;
}

TEST_F(Project, PreparingKeepsWhatIsThere) {
    WriteFileText(TemplatePath(wb), "mine");
    EXPECT_TRUE(PrepareProgramFolder(wb));
    EXPECT_EQ(ReadFileText(TemplatePath(wb)), "mine");
    platform.shareFolder = folder.Path() + "/none";
    DeleteFile(TemplatePath(wb));
    EXPECT_FALSE(PrepareProgramFolder(wb));
}

TEST_F(Project, BrowsingRemembersTheFolder) {
    Prompts().QueueFile(std::nullopt);
    EXPECT_EQ(BrowseFile(wb, false, "Projects", ".poc"), "");
    EXPECT_EQ(GetUserSetting(wb, "Recent File List", "LastDir"), NotFound);
    Prompts().QueueFile("/p/q/Summer");
    EXPECT_EQ(BrowseFile(wb, true, "Projects", ".poc"), "/p/q/Summer.poc");
    EXPECT_EQ(GetUserSetting(wb, "Recent File List", "LastDir"), "/p/q");
}

TEST_F(Project, RecentFilesKeepFive) {
    RecentFile recent(wb, "Mailvane");
    std::vector<std::string> told;
    recent.onChange = [&](const std::vector<std::string>& paths) { told = paths; };
    for (const char* path : {"/1", "/2", "/3", "/4", "/5", "/6", "/4"})
        recent.Add(path);
    const std::vector<std::string> expected = {"/4", "/6", "/5", "/3", "/2"};
    EXPECT_EQ(told, expected);
    RecentFile again(wb, "Mailvane");
    again.Load();
    EXPECT_EQ(again.Paths(), expected);
    RecentFile other(wb, "Other");
    other.Load();
    EXPECT_EQ(other.Paths(), std::vector<std::string>(5));
}

TEST_F(Project, ProgressRunsFromItsOpeningToItsLastStep) {
    std::string pressed;
    mainForm.cmdProgress.onClick = [&] { pressed += "+"; };
    mainForm.cmdNoProgress.onClick = [&] { pressed += "-"; };
    auto& status = wb.forms.Get<frmStatus>();
    shell.panel = "busy";
    UpdateProgress(wb, 3, 0, "one", "two");
    UpdateProgress(wb, 0, 1);
    EXPECT_FALSE(status.Visible()) << "a short run only flashes";
    clock.Sleep(std::chrono::milliseconds(500));
    UpdateProgress(wb, 0, 2, "", "more");
    EXPECT_TRUE(status.Visible());
    EXPECT_EQ(status.lblCaption1.Text(), "one");
    EXPECT_EQ(status.lblCaption2.Text(), "more");
    EXPECT_EQ(mainForm.Progress1.Value(), 2);
    EXPECT_EQ(shell.panel, "busy");
    UpdateProgress(wb, 0, 3);
    EXPECT_FALSE(status.Visible());
    EXPECT_EQ(pressed, "+-");
    EXPECT_EQ(shell.panel, "");
    UpdateProgress(wb, 5, 0, "", "", false);
    EXPECT_FALSE(status.Visible());
    EXPECT_EQ(status.lblCaption1.Text(), "");
    status.cmdCancel.Press();
    EXPECT_TRUE(wb.state.CancelRequested);
    wb.shell = nullptr;
    UpdateProgress(wb, 0, 5);
}

TEST_F(Project, BusyPointersNest) {
    auto outer = std::make_optional<BusyPointer>(wb);
    std::make_optional<BusyPointer>(wb).reset();
    EXPECT_EQ(windows.Pointer(), MousePointer::Busy);
    outer.reset();
    EXPECT_EQ(windows.Pointer(), MousePointer::Normal);
}

}  // namespace
}  // namespace mailvane
