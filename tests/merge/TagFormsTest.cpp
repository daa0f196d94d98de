#include "core/Paths.h"
#include "merge/MergeBench.h"
#include "merge/tags/frmTagCGI.h"
#include "merge/tags/frmTagCGIAdd.h"
#include "merge/tags/frmTagProgram.h"
#include "merge/tags/frmTagProgramAdd.h"

namespace mailvane::test {
namespace {

struct TagFormsTest : testing::Test, MergeBench {
    /// Carries this out in the next dialog, once it stands open.
    void Then(std::function<void()> work) { windows.Post(std::move(work)); }
    /// Adds a tag to the list; `fill` fills the editor, then OK is pressed.
    template <class List, class Editor>
    void Add(const std::function<void(Editor&)>& fill) {
        Then([this, fill] {
            auto& editor = wb.forms.Get<Editor>();
            fill(editor);
            editor.cmdOk.Press();
            editor.Unload();
        });
        wb.forms.Get<List>().lbxTags.PressAdd();
    }
    void AddProgram(const std::function<void(frmTagProgramAdd&)>& fill) {
        Add<frmTagProgram, frmTagProgramAdd>([&](auto& editor) {
            EXPECT_EQ(editor.Caption(), "Add Message Tag");
            editor.txtProgram.SetByUser(program);
            fill(editor);
        });
    }
    void AddScript(const std::function<void(frmTagCGIAdd&)>& fill) {
        Add<frmTagCGI, frmTagCGIAdd>([&](auto& editor) {
            EXPECT_EQ(editor.txtCGI.Text(), "http://");
            fill(editor);
        });
    }

    /// Presses that button of the list, with this tag chosen.
    template <class List>
    std::string Insert(const char* key, const std::string& tag, Button TagListForm::*button) {
        Then([this, tag, button] {
            auto& list = wb.forms.Get<List>();
            if (!tag.empty()) list.lbxTags.SetByUser(tag);
            (list.*button).Press();
        });
        auto& view = wb.forms.Get<frmViewMerge>();
        view.ActiveBar1.Press(key);
        return view.txtBody.Text();
    }

    std::string program = folder.Write("look up.sh", "");
};

TEST_F(TagFormsTest, ProgramsAreAddedEditedAndRemoved) {
    auto& list = wb.forms.Get<frmTagProgram>();
    AddProgram([](auto& editor) { editor.txtCommand.SetByUser(" a [Email] "); });
    AddProgram([&](auto& editor) {
        editor.txtProgram.SetByUser("  " + program + " ");
        editor.chkInclude.SetByUser("1");
        editor.txtResult.SetByUser(" /r ");
        editor.chkDelete.SetByUser("1");
        editor.optWaitSec.SetByUser("1");
        editor.UpDown1.SetByUser("600");
    });
    EXPECT_EQ(ReadFileText(InProject("pTags.dat")),
              "1. execute look up.sh and do not include results.\r\n"
              "2. execute look up.sh and include results.\r\n");
    EXPECT_EQ(LoadTag<ProgramTagRecord>(wb, "1").CommandLine, "a [Email]");
    const auto tag = LoadTag<ProgramTagRecord>(wb, "2");
    EXPECT_EQ(tag, (ProgramTagRecord{.TagNumber = 2,
                                     .ProgramPath = program,
                                     .IncludeResult = true,
                                     .ResultFile = "/r",
                                     .DeleteResult = true,
                                     .SecondsToWait = 600,
                                     .EditMode = "Add"}));

    list.lbxTags.SetByUser("#1");
    Then([this] {
        auto& editor = wb.forms.Get<frmTagProgramAdd>();
        EXPECT_EQ(editor.Caption(), "Edit Message Tag");
        EXPECT_TRUE(editor.optWaitSec.IsSet());
        EXPECT_EQ(editor.txtSeconds.Text(), "600");
        EXPECT_EQ(editor.UpDown1.Value(), 600);
        editor.chkInclude.SetByUser("0");
        editor.txtSeconds.SetByUser("");
        editor.cmdOk.Press();
    });
    list.lbxTags.PressEdit();
    EXPECT_EQ(list.lbxTags.Items()[1], "2. execute look up.sh and do not include results.");
    EXPECT_EQ(LoadTag<ProgramTagRecord>(wb, "2").SecondsToWait, 0);
    EXPECT_EQ(LoadTag<ProgramTagRecord>(wb, "2").TagListIndex, 1);
    EXPECT_EQ(LoadTag<ProgramTagRecord>(wb, "2").EditMode, "Edit");

    list.lbxTags.PressDelete();
    EXPECT_TRUE(FileExists(InProject("pTags/2.ptg"))) << "a message may still name it";
    AddProgram([](auto&) {});
    EXPECT_EQ(list.lbxTags.Items()[1].substr(0, 3), "2. ") << "the number is given out again";
    EXPECT_FALSE(LoadTag<ProgramTagRecord>(wb, "2").IncludeResult);
}

TEST_F(TagFormsTest, EnablesWhatCountsOnly) {
    auto& editor = wb.forms.Get<frmTagProgramAdd>();
    EXPECT_TRUE(editor.optWaitExit.IsSet());
    for (const bool on : {true, false}) {
        (on ? editor.optWaitSec : editor.optWaitExit).SetValue(true);
        editor.chkInclude.SetChecked(on);
        for (const Control* control :
             std::initializer_list<Control*>{&editor.txtSeconds, &editor.UpDown1, &editor.txtResult,
                                             &editor.chkDelete, &editor.cmdBrowse})
            EXPECT_EQ(control->Enabled(), on) << control->Name();
    }
    auto& script = wb.forms.Get<frmTagCGIAdd>();
    EXPECT_FALSE(script.txtResult.Enabled());
    script.chkSave.SetChecked(true);
    EXPECT_TRUE(script.txtResult.Enabled());
}

TEST_F(TagFormsTest, RefusesWhatCannotBe) {
    const std::string notSaved = "You need to save your project before you can add this tag. ";
    const std::string noProgram = "You need to enter valid file location of the program.";
    const std::string noResult = "Invalid location of the result file.";
    const std::string tooLong =
        "You need to enter correct value in the seconds text box (between 1 and 600).";
    const std::string project = wb.state.ProjectFolder;
    const std::pair<std::string, std::function<void(frmTagProgramAdd&)>> rows[] = {
        {noProgram, [](auto& editor) { editor.txtProgram.SetText(" "); }},
        {noProgram, [this](auto& editor) { editor.txtProgram.SetText(folder.Path()); }},
        {noResult, [](auto& editor) { editor.chkInclude.SetChecked(true); }},
        {tooLong, [](auto& editor) { editor.txtSeconds.SetText("601"); }},
        {notSaved, [this](auto&) { wb.state.ProjectFolder += "/gone"; }},
    };
    for (const auto& [box, fill] : rows) {
        Prompts().QueueBox(BoxAnswer::Ok);
        AddProgram(fill);
        EXPECT_TRUE(Prompts().ExpectBox(box)) << box;
        wb.state.ProjectFolder = project;
    }
    EXPECT_EQ(wb.forms.Get<frmTagProgram>().lbxTags.Count(), 0);
    EXPECT_FALSE(FileExists(InProject("pTags"), true));
    auto& editor = wb.forms.Get<frmTagProgramAdd>();
    editor.txtProgram.SetText(program);
    editor.chkInclude.SetChecked(true);
    Prompts().QueueBox(BoxAnswer::Ok);
    editor.cmdOk.Press();
    EXPECT_FALSE(editor.chkInclude.Checked());

    Prompts().QueueBox(BoxAnswer::Ok, "You need to enter valid location of the CGI script.");
    AddScript([](auto& script) { script.txtCGI.SetText("  "); });
    Prompts().QueueBox(BoxAnswer::Ok, noResult);
    AddScript([](auto& script) { script.chkSave.SetChecked(true); });
    wb.state.ProjectFolder += "/gone";
    Prompts().QueueBox(BoxAnswer::Ok, notSaved);
    AddScript([](auto&) {});
    EXPECT_TRUE(Prompts().ExpectBox(notSaved));
}

TEST_F(TagFormsTest, ScriptsKeepTheirRequest) {
    AddScript([](auto& editor) {
        editor.txtCGI.SetByUser(" http://x/cgi/count.pl ");
        editor.txtQuery.SetByUser(" ??n=[Name] ");
        editor.txtReferer.SetByUser(" r ");
        editor.optHEAD.SetByUser("1");
        editor.chkInclude.SetByUser("1");
    });
    EXPECT_EQ(LoadTag<CgiTagRecord>(wb, "1"), (CgiTagRecord{.TagNumber = 1,
                                                            .ScriptUrl = "http://x/cgi/count.pl",
                                                            .QueryString = "?n=[Name]",
                                                            .IncludeResult = true,
                                                            .Referer = "r",
                                                            .RequestMethod = "Head",
                                                            .EditMode = "Add"}));
    auto& list = wb.forms.Get<frmTagCGI>();
    EXPECT_EQ(list.lbxTags.Items()[0], "1. execute count.pl CGI script and include results.");
    auto tag = LoadTag<CgiTagRecord>(wb, "1");
    tag.RequestMethod = "POST";
    SaveTag(wb, tag);
    list.lbxTags.SetByUser("#0");
    Then([this] {
        auto& editor = wb.forms.Get<frmTagCGIAdd>();
        EXPECT_TRUE(editor.optPOST.IsSet());
        editor.chkInclude.SetByUser("0");
        editor.cmdOk.Press();
    });
    list.lbxTags.PressEdit();
    EXPECT_EQ(list.lbxTags.Items()[0],
              "1. execute count.pl CGI script and do not include results.");
    EXPECT_EQ(LoadTag<CgiTagRecord>(wb, "1").RequestMethod, "Post");
}

TEST_F(TagFormsTest, ATagGoesInAtTheCaret) {
    MakeRecipients(1);
    WriteFileText(InProject("pTags.dat"), "3. execute a and include results.\r\n12. execute b\r\n");
    WriteFileText(InProject("cTags.dat"), "5. execute c CGI script and include results.\r\n");
    Message("before after").txtBody.Select(7, 0);
    const std::string both = "before ##Execute Program 12####Execute CGI 5##after";
    EXPECT_EQ(Insert<frmTagProgram>("Execute Program", "#1", &TagListForm::cmdOk),
              "before ##Execute Program 12##after");
    EXPECT_EQ(Insert<frmTagCGI>("Execute CGI", "#0", &TagListForm::cmdOk), both);
    EXPECT_EQ(Insert<frmTagCGI>("Execute CGI", "#0", &TagListForm::cmdCancel), both);
    EXPECT_EQ(Insert<frmTagProgram>("Execute Program", "", &TagListForm::cmdOk), both)
        << "no tag is chosen";
}

}  // namespace
}  // namespace mailvane::test
