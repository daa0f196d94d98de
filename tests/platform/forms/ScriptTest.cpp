#include <gtest/gtest.h>

#include <sstream>

#include "platform/forms/HeadlessWindows.h"
#include "platform/script/ScriptRunner.h"
#include "support/ManualClock.h"
#include "support/ScriptForms.h"
#include "support/TempFolder.h"

namespace mailvane {
namespace {

/// A script that was played to its end.
struct Script {
    explicit Script(const std::string& script) { Play(folder.Write("test.script", script)); }
    ControlAnswer Command(const std::string& name, const std::string& caption) {
        if (name == "Disabled") return ControlAnswer::Disabled;
        if (name == "Open") {
            work.Log("open " + windows.FileDialog(FileRequest()).value_or("none"));
        } else if (name == "Show") {
            work.Show();
        } else if (name == "RecentFile1") {
            work.Log(caption);
        } else {
            return ControlAnswer::NoSuchEntry;
        }
        return ControlAnswer::Done;
    }

    void Play(const std::string& path) {
        std::ostringstream out, errors;
        ScriptRunner runner(windows, forms, windows.prompts,
                            {[this](const std::string& name, const std::string& caption) {
                                return Command(name, caption);
                            }},
                            out, errors);
        const auto end = runner.finished.Observe([this](int told) {
            EXPECT_EQ(status, -1);
            status = told;
        });
        runner.Start(path);
        windows.Run();
        output = out.str();
        error = errors.str();
        if (error.starts_with(path + ":")) error = error.substr(path.size() + 1);
    }

    test::TempFolder folder;
    test::ManualClock clock;
    HeadlessWindows windows{clock};
    FormRegistry forms{windows};
    test::frmWork& work = static_cast<test::frmWork&>(forms.LoadAs(
        typeid(test::frmWork), [this] { return std::make_unique<test::frmWork>(windows, forms); }));
    int status = -1;
    std::string output;
    std::string error;  ///< without the name of the file
};

TEST(Script, PlaysToItsEnd) {
    struct {
        const char* name;
        std::string script;
        std::string output = {};
    } const rows[] = {
        {"NothingToDo", "\xEF\xBB\xBF# only a comment\r\n\r\n   \n"},
        {"WordsAndEscapes", R"(set frmwork.TXTWRAP "a \"b\" \\ c\nd\te"   # comment
print frmWork.txtWrap)",
         "a \"b\" \\ c\\nd\\te\n"},
        {"HashInsideAWord", "set frmWork.txtWrap a#b\nexpect frmWork.txtWrap \"a#b\""},
        {"TextIsSetThenLeft", "set frmWork.txtWrap 5\nexpect frmWork.txtWrap 65"},
        {"CheckBoxRunsItsHandlerOnce",
         "set frmWork.chkWrap 1\nset frmWork.chkWrap 1\nexpect frmWork.txtLog wrap1;"},
        {"OptionsAreExclusive", "set frmWork.optFile 1\nexpect frmWork.optText 0"},
        {"ComboBoxByTextOrNumber",
         "set frmWork.cmbTable orders\nexpect frmWork.cmbTable Orders\n"
         "set frmWork.cmbTable #0\nexpect frmWork.cmbTable Customers\n"
         "set frmWork.cmbTable \"#1\"\nexpect frmWork.cmbTable Orders\n"
         "expect-count frmWork.cmbTable 2"},
        {"TypedTextInAComboBox", "set frmWork.cmbTo bob@x\nexpect frmWork.cmbTo bob@x"},
        {"ListSliderAndDate",
         "set frmWork.List1 #1\nexpect frmWork.List1 b\nset frmWork.Slider1 7\n"
         "expect frmWork.Slider1 7\nset frmWork.dtpFrom 2/29/2024\nexpect frmWork.dtpFrom "
         "2/29/2024"},
        {"ListButtons",
         "press frmWork.lbxRules add\nset frmWork.lbxRules rule\npress frmWork.lbxRules edit\n"
         "expect frmWork.txtLog \"edit rule;\"\npress frmWork.lbxRules delete\n"
         "expect-count frmWork.lbxRules 0"},
        {"GridRows",
         "row frmWork.Grid1 2\nexpect frmWork.Grid1 \"Bob\\tb@x\"\nexpect-count frmWork.Grid1 3"},
        {"ToolsAndCommands",
         "tool frmWork print\ncommand RecentFile1 /a.poc\nexpect frmWork.txtLog Print;/a.poc;"},
        {"OpenComesBeforeQueuedFiles",
         "file /later\nopen /p.poc\npress frmWork.cmdFile\nexpect frmWork.txtLog \"open "
         "/p.poc;/later;\""},
        {"ShowAndClose",
         "expect-closed frmWork\ncommand Show\nexpect-open FRMWORK\nclose frmWork\n"
         "expect-closed frmWork"},
        {"UnloadedByItsOwnButton", "press frmWork.cmdClose\nexpect-closed frmWork"},
        {"Prompts",
         "answer yes \"on?\"\ninput Ann\nfile-cancel\npress frmWork.cmdAsk\npress "
         "frmWork.cmdInput\n"
         "press frmWork.cmdFile\ninput-cancel\npress frmWork.cmdInput\n"
         "expect frmWork.txtLog yes;Ann;none;none;\nexpect-box \"Go\\non?\"\nprint boxes",
         "message box\tAsk\tquestion\tGo\\non?\tyes-no\tyes\n"
         "input box\tAsk\tnone\tName?\tok-cancel\tAnn\n"
         "file dialog\t\tnone\topen\tok-cancel\t(cancelled)\n"
         "input box\tAsk\tnone\tName?\tok-cancel\t(cancelled)\n"},
        {"DefaultAnswers",
         "answers default\npress frmWork.cmdAsk\nanswer no\npress frmWork.cmdAsk\n"
         "expect frmWork.txtLog yes;no;"},
        {"LinesGoOnInsideAModalDialog",
         "press frmWork.cmdModal\nexpect-open frmDialog\nexpect frmWork.txtLog \"\"\npress "
         "frmDialog.cmdOK\n"
         "expect-closed frmDialog\nexpect frmWork.txtLog \"dialog over;\""},
        {"EndInsideAModalDialog", "press frmWork.cmdModal"},
        {"RunIsOneLine", "press frmWork.cmdRun\nexpect frmWork.lblNote \"1000 done\""},
        {"WatchActsInTheMiddleOfARun",
         "when frmWork.lblNote contains \"20 done\" press frmWork.cmdCancel\n"
         "when frmLater.lblNote contains x press frmLater.cmdCancel\n"
         "press frmWork.cmdRun\nexpect frmWork.lblNote \"20 done\"\n"
         "press frmWork.cmdRun\nexpect frmWork.lblNote \"1000 done\""},
        {"WatchActsBeforeTheNextLine",
         "when frmWork.txtWrap contains 7 set frmWork.txtWrap 8\nset frmWork.txtWrap 7\n"
         "expect frmWork.txtWrap 8"},
        {"WatchOpensADialogInARun",
         "when frmWork.lblNote contains \"30 done\" press frmWork.cmdModal\npress frmWork.cmdRun\n"
         "expect frmWork.lblNote \"30 done\"\npress frmDialog.cmdOK\n"
         "expect frmWork.txtLog \"dialog over;run over;\""},
        {"WaitLetsTheProgramRun",
         "when frmWork.txtLog contains x press frmWork.cmdCancel\nwait 2.5\nwait 0"},
        {"Enabled", "expect-enabled frmWork.cmdOff no\nexpect-enabled frmWork.cmdAsk yes"},
        {"QuitByTheLastLine", "press frmWork.cmdQuit"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const Script played(row.script);
        EXPECT_EQ(played.status, 0);
        EXPECT_EQ(played.error, "");
        EXPECT_EQ(played.output, row.output);
    }
}

using Faults = std::pair<std::string, std::string>[];  ///< scripts, and the errors behind "FILE:"

void ExpectFault(const std::pair<std::string, std::string>& row, int status) {
    const Script played(row.first);
    EXPECT_EQ(played.status, status) << row.first;
    EXPECT_EQ(played.error, row.second + "\n");
    EXPECT_EQ(played.output, "") << row.first;
}

TEST(Script, StopsWhereWhatItExpectsDoesNotHold) {
    const Faults rows = {
        {"\nset frmWork.txtWrap a\nexpect frmWork.txtWrap \"b\\nc\"\nprint boxes",
         R"(3: frmWork.txtWrap: expected "b\nc", found "a")"},
        {"expect-contains frmWork.lblNote x",
         R"(1: frmWork.lblNote: expected a text with "x", found "Note")"},
        {"expect-count frmWork.List1 4", "1: frmWork.List1: expected 4 entries, found 3"},
        {"expect-enabled frmWork.cmdOff yes",
         "1: frmWork.cmdOff: expected enabled, found disabled"},
        {"expect-open frmGone", "1: frmGone: expected open, found not loaded"},
        {"expect-open frmWork", "1: frmWork: expected open, found hidden"},
        {"command Show\nexpect-closed frmWork", "2: frmWork: expected closed, found open"},
        {"expect-box Hello", R"(1: message box: expected "Hello", found none)"},
        {"answers default\npress frmWork.cmdAsk\nexpect-box Hello",
         R"(3: message box: expected "Hello", found "Go\non?" as the last one)"},
        {"press frmWork.cmdAsk\nprint frmWork.txtLog",
         R"(1: nothing answers the message box "Ask": "Go\non?")"},
        {"press frmWork.cmdInput", R"(1: nothing answers the input box "Ask": "Name?")"},
        {"press frmWork.cmdFile", R"(1: nothing answers the file dialog "")"},
        {"press frmWork.cmdModal\npress frmWork.cmdAsk\nwait 1",
         R"(2: nothing answers the message box "Ask": "Go\non?")"},
        {"when frmWork.lblNote contains \"20 done\" expect frmWork.lblNote x\npress frmWork.cmdRun",
         R"(1: frmWork.lblNote: expected "x", found "20 done")"},
        {"press frmWork.cmdQuit\nwait 1", "2: expected the program to run, found it ended"},
        {"press frmWork.cmdModal\npress frmWork.cmdQuit\nwait 1",
         "3: expected the program to run, found it ended"},
    };
    for (const auto& row : rows)
        ExpectFault(row, 1);
}

TEST(Script, TellsWhatIsWrong) {
    const Faults rows = {
        {"print frmWork.lblNote\ndance", "2: unknown command \"dance\""},
        {"expect frmWork.lblNote", "1: \"expect\" needs more words"},
        {"close frmWork now", "1: \"close\" takes fewer words"},
        {"input \"a", "1: a quote is not closed"},
        {"input \"a\"b", "1: a blank must follow a closing quote"},
        {"input \"\\x\"", "1: unknown escape in a quoted word"},
        {"when frmWork.lblNote contains x dance", "1: unknown command \"dance\""},
        {"when frmWork.lblNote is x press frmWork.cmdAsk",
         "1: \"when\" needs \"contains\" behind the control"},
        {"when frmWork.lblNone contains x press frmWork.cmdAsk\nwait 0",
         "1: frmWork has no control lblNone"},
        {"press frmGone.cmdOK", "1: no form frmGone is loaded"},
        {"press frmWork.cmdNone", "1: frmWork has no control cmdNone"},
        {"print frmWork", "1: \"frmWork\" names no control"},
        {"press frmWork.cmdOff", "1: frmWork.cmdOff is disabled"},
        {"press frmWork.lblNote", "1: frmWork.lblNote cannot be pressed"},
        {"set frmWork.lblNote x", "1: frmWork.lblNote cannot take \"x\""},
        {"set frmWork.Grid1 x", "1: frmWork.Grid1 cannot take \"x\""},
        {"set frmWork.chkWrap yes", "1: frmWork.chkWrap cannot take \"yes\""},
        {"set frmWork.cmbTable Gone", "1: frmWork.cmbTable has no entry \"Gone\""},
        {"set frmWork.List1 #3", "1: frmWork.List1 has no entry \"#3\""},
        {"set frmWork.Slider1 11", "1: frmWork.Slider1 has no entry \"11\""},
        {"set frmWork.dtpFrom 2/30/2024", "1: frmWork.dtpFrom cannot take \"2/30/2024\""},
        {"row frmWork.Grid1 4", "1: frmWork.Grid1 has no row 4: it has 3"},
        {"select frmWork.Grid1 1 0", "1: frmWork.Grid1 has no row 0: it has 3"},
        {"row frmWork.Grid1 last", "1: \"last\" is no row number"},
        {"row frmWork.List1 1", "1: frmWork.List1 is no grid"},
        {"press frmWork.lbxRules edit", "1: frmWork.lbxRules: no entry is chosen"},
        {"press frmWork.lbxRules copy", "1: frmWork.lbxRules has no button \"copy\""},
        {"tool frmWork Copy", "1: frmWork has no tool \"Copy\""},
        {"tool frmWork Sort", "1: frmWork: \"Sort\" is disabled"},
        {"command Dance", "1: the main window has no tool \"Dance\""},
        {"command Disabled", "1: the main window: \"Disabled\" is disabled"},
        {"close frmWork", "1: frmWork is not open"},
        {"answer maybe", "1: no message box has a button \"maybe\""},
        {"expect-count frmWork.lblNote 1", "1: frmWork.lblNote has no entries to count"},
        {"wait soon", "1: \"soon\" is no number of seconds"},
    };
    for (const auto& row : rows)
        ExpectFault(row, 2);
    Script lost("");
    lost.status = -1;
    lost.Play("/nowhere/test.script");
    EXPECT_EQ(lost.status, 2);
    EXPECT_EQ(lost.error, "0: the script cannot be read\n");
}

TEST(Script, SelectsRowsInTheirOrder) {
    using Rows = std::vector<std::int64_t>;
    EXPECT_EQ(Script("select frmWork.Grid1 3 1").work.Grid1.SelBookmarks().All(), (Rows{2, 0}));
    const Script all("select frmWork.Grid1 2\nselect frmWork.Grid1 none\nselect frmWork.Grid1 all");
    EXPECT_EQ(all.work.Grid1.SelBookmarks().All(), (Rows{0, 1, 2}));
}

TEST(Script, TakesNoTimeBetweenLines) {
    const Script played("set frmWork.txtWrap a\nwait 3\nexpect frmWork.txtWrap a");
    EXPECT_EQ(played.clock.Monotonic(), std::chrono::seconds(3));
}

}  // namespace
}  // namespace mailvane
