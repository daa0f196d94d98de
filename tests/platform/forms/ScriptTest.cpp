#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "platform/forms/FormRegistry.h"
#include "platform/forms/HeadlessWindows.h"
#include "platform/script/ScriptRunner.h"
#include "support/ManualClock.h"
#include "support/TempFolder.h"

namespace mailvane {
namespace {

/// One control of each kind, and buttons that do what scripts must cope with.
class frmWork final : public Form {
public:
    explicit frmWork(WindowSystem& windows) : Form(windows, "frmWork", "Work") {
        cmbTable.SetItems({"Customers", "Orders"});
        cmbTo.SetItems({"ann@x"});
        List1.SetItems({"a", "b", "c"});
        rows->rows = {{"Ann", "a@x"}, {"Bob", "b@x"}, {"Cid", "c@x"}};
        Grid1.SetRows(rows);
        cmdOff.SetEnabled(false);
        ActiveBar1.AddTool({.name = "Print", .caption = "&Print"});
        ActiveBar1.AddTool({.name = "Sort", .caption = "&Sort", .enabled = false});
        txtWrap.onLeave = [this] {
            if (txtWrap.Text() == "5") txtWrap.SetText("65");
        };
    }

    TextBox txtWrap{*this, "txtWrap"};
    TextBox txtLog{*this, "txtLog"};
    Label lblNote{*this, "lblNote", "Note"};
    CheckBox chkWrap{*this, "chkWrap", false, [this] { Log("wrap" + chkWrap.ShownText()); }};
    OptionButton optText{*this, "optText", true};
    OptionButton optFile{*this, "optFile"};
    ComboBox cmbTable{*this, "cmbTable"};
    ComboBox cmbTo{*this, "cmbTo", ComboBox::Style::Editable};
    ListBox List1{*this, "List1", ListBox::Selection::Multiple};
    ListBoks lbxRules{*this, "lbxRules"};
    Slider Slider1{*this, "Slider1", 1, 10, 5};
    DatePicker dtpFrom{*this, "dtpFrom"};
    Grid Grid1{*this, "Grid1"};
    std::shared_ptr<GridTable> rows = std::make_shared<GridTable>();
    ActiveBar ActiveBar1{*this, "ActiveBar1", [this](const Tool& tool) { Log(tool.name); }};
    Button cmdOff{*this, "cmdOff"};
    Button cmdClose{*this, "cmdClose", [this] { Unload(); }};
    Button cmdAsk{*this, "cmdAsk", [this] {
                      const auto answer = Windows().MessageBox(
                          {"Go\r\non?", "Ask", BoxIcon::Question, BoxButtons::YesNo});
                      Log(answer == BoxAnswer::Yes ? "yes" : "no");
                  }};
    Button cmdInput{*this, "cmdInput", [this] {
                        Log(Windows().InputBox({"Name?", "Ask", ""}).value_or("none"));
                    }};
    Button cmdFile{*this, "cmdFile",
                   [this] { Log(Windows().FileDialog(FileRequest()).value_or("none")); }};
    Button cmdModal{*this, "cmdModal", Button::HiddenButton};
    Button cmdRun{*this, "cmdRun", [this] {
                      cancelled = false;
                      for (int i = 1; i <= 1000 && !cancelled; ++i) {
                          lblNote.SetText(std::to_string(i) + " done");
                          Windows().SystemClock().Sleep(std::chrono::milliseconds(1));
                          Windows().YieldBriefly();
                      }
                      Log("run over");
                  }};
    Button cmdCancel{*this, "cmdCancel", [this] { cancelled = true; }};
    Button cmdQuit{*this, "cmdQuit", [this] { Windows().Quit(); }};
    bool cancelled = false;

    void Log(const std::string& what) { txtLog.SetText(txtLog.Text() + what + ";"); }
};

class frmAsk final : public Form {
public:
    explicit frmAsk(WindowSystem& windows) : Form(windows, "frmAsk", "Ask") {}
    Button cmdOK{*this, "cmdOK", [this] { Hide(); }};
};

struct Case {
    const char* name;
    std::string script;
    int status = 0;
    std::string error = {};  ///< behind "FILE:"
    std::string output = {};
};
void PrintTo(const Case& row, std::ostream* out) {
    *out << row.name;
}

class Script : public testing::TestWithParam<Case> {
protected:
    Script() {
        work.cmdModal.onClick = [this] {
            Load<frmAsk>().ShowModal();
            work.Log("dialog over");
        };
        work.lbxRules.onAdd = [this] { work.lbxRules.AddItem("rule"); };
        work.lbxRules.onEdit = [this] { work.Log("edit " + work.lbxRules.Text()); };
    }

    template <class F>
    F& Load() {
        return static_cast<F&>(
            forms.LoadAs(typeid(F), [this] { return std::make_unique<F>(windows); }));
    }

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

    /// Plays the script to its end; the error without the file's name.
    void Play(const std::string& script) {
        const std::string path = folder.Write("test.script", script);
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
    frmWork& work = Load<frmWork>();
    int status = -1;
    std::string output;
    std::string error;
};

TEST_P(Script, Plays) {
    Play(GetParam().script);
    EXPECT_EQ(status, GetParam().status);
    EXPECT_EQ(error, GetParam().error.empty() ? "" : GetParam().error + "\n");
    EXPECT_EQ(output, GetParam().output);
}

const Case Working[] = {
    {"NothingToDo", "\xEF\xBB\xBF# only a comment\r\n\r\n   \n"},
    {"WordsAndEscapes", R"(set frmwork.TXTWRAP "a \"b\" \\ c\nd\te"   # comment
print frmWork.txtWrap)",
     0, "", "a \"b\" \\ c\\nd\\te\n"},
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
     "expect frmWork.Slider1 7\nset frmWork.dtpFrom 2/29/2024\nexpect frmWork.dtpFrom 2/29/2024"},
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
     "answer yes \"on?\"\ninput Ann\nfile-cancel\npress frmWork.cmdAsk\npress frmWork.cmdInput\n"
     "press frmWork.cmdFile\ninput-cancel\npress frmWork.cmdInput\n"
     "expect frmWork.txtLog yes;Ann;none;none;\nexpect-box \"Go\\non?\"\nprint boxes",
     0, "",
     "message box\tAsk\tquestion\tGo\\non?\tyes-no\tyes\n"
     "input box\tAsk\tnone\tName?\tok-cancel\tAnn\n"
     "file dialog\t\tnone\topen\tok-cancel\t(cancelled)\n"
     "input box\tAsk\tnone\tName?\tok-cancel\t(cancelled)\n"},
    {"DefaultAnswers",
     "answers default\npress frmWork.cmdAsk\nanswer no\npress frmWork.cmdAsk\n"
     "expect frmWork.txtLog yes;no;"},
    {"LinesGoOnInsideAModalDialog",
     "press frmWork.cmdModal\nexpect-open frmAsk\nexpect frmWork.txtLog \"\"\npress frmAsk.cmdOK\n"
     "expect-closed frmAsk\nexpect frmWork.txtLog \"dialog over;\""},
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
     "expect frmWork.lblNote \"30 done\"\npress frmAsk.cmdOK\n"
     "expect frmWork.txtLog \"dialog over;run over;\""},
    {"WaitLetsTheProgramRun",
     "when frmWork.txtLog contains x press frmWork.cmdCancel\nwait 2.5\nwait 0"},
    {"Enabled", "expect-enabled frmWork.cmdOff no\nexpect-enabled frmWork.cmdAsk yes"},
    {"QuitByTheLastLine", "press frmWork.cmdQuit"},
};

const Case Failing[] = {
    {"WrongValue", "\nset frmWork.txtWrap a\nexpect frmWork.txtWrap \"b\\nc\"\nprint boxes", 1,
     R"(3: frmWork.txtWrap: expected "b\nc", found "a")"},
    {"WrongPart", "expect-contains frmWork.lblNote x", 1,
     R"(1: frmWork.lblNote: expected a text with "x", found "Note")"},
    {"WrongCount", "expect-count frmWork.List1 4", 1,
     "1: frmWork.List1: expected 4 entries, found 3"},
    {"WronglyEnabled", "expect-enabled frmWork.cmdOff yes", 1,
     "1: frmWork.cmdOff: expected enabled, found disabled"},
    {"NotLoaded", "expect-open frmGone", 1, "1: frmGone: expected open, found not loaded"},
    {"Hidden", "expect-open frmWork", 1, "1: frmWork: expected open, found hidden"},
    {"NotClosed", "command Show\nexpect-closed frmWork", 1,
     "2: frmWork: expected closed, found open"},
    {"NoBox", "expect-box Hello", 1, R"(1: message box: expected "Hello", found none)"},
    {"OtherBox", "answers default\npress frmWork.cmdAsk\nexpect-box Hello", 1,
     R"(3: message box: expected "Hello", found "Go\non?" as the last one)"},
    {"UnansweredBox", "press frmWork.cmdAsk\nprint frmWork.txtLog", 1,
     R"(1: nothing answers the message box "Ask": "Go\non?")"},
    {"UnansweredInput", "press frmWork.cmdInput", 1,
     R"(1: nothing answers the input box "Ask": "Name?")"},
    {"UnansweredFile", "press frmWork.cmdFile", 1, R"(1: nothing answers the file dialog "")"},
    {"UnansweredBoxInsideAModalDialog", "press frmWork.cmdModal\npress frmWork.cmdAsk\nwait 1", 1,
     R"(2: nothing answers the message box "Ask": "Go\non?")"},
    {"WatchThatFails",
     "when frmWork.lblNote contains \"20 done\" expect frmWork.lblNote x\npress frmWork.cmdRun", 1,
     R"(1: frmWork.lblNote: expected "x", found "20 done")"},
    {"ProgramEndsBeforeTheScript", "press frmWork.cmdQuit\nwait 1", 1,
     "2: expected the program to run, found it ended"},
    {"ProgramEndsInsideAModalDialog", "press frmWork.cmdModal\npress frmWork.cmdQuit\nwait 1", 1,
     "3: expected the program to run, found it ended"},
};

const Case Wrong[] = {
    {"UnknownCommandIsFoundBeforeTheFirstLine", "print frmWork.lblNote\ndance", 2,
     "2: unknown command \"dance\""},
    {"TooFewWords", "expect frmWork.lblNote", 2, "1: \"expect\" needs more words"},
    {"TooManyWords", "close frmWork now", 2, "1: \"close\" takes fewer words"},
    {"OpenQuote", "input \"a", 2, "1: a quote is not closed"},
    {"TextBehindAQuote", "input \"a\"b", 2, "1: a blank must follow a closing quote"},
    {"UnknownEscape", "input \"\\x\"", 2, "1: unknown escape in a quoted word"},
    {"WatchOfAnUnknownCommand", "when frmWork.lblNote contains x dance", 2,
     "1: unknown command \"dance\""},
    {"WatchWithoutContains", "when frmWork.lblNote is x press frmWork.cmdAsk", 2,
     "1: \"when\" needs \"contains\" behind the control"},
    {"WatchOfAnUnknownControl", "when frmWork.lblNone contains x press frmWork.cmdAsk\nwait 0", 2,
     "1: frmWork has no control lblNone"},
    {"FormNotLoaded", "press frmGone.cmdOK", 2, "1: no form frmGone is loaded"},
    {"NoControl", "press frmWork.cmdNone", 2, "1: frmWork has no control cmdNone"},
    {"NoPoint", "print frmWork", 2, "1: \"frmWork\" names no control"},
    {"DisabledButton", "press frmWork.cmdOff", 2, "1: frmWork.cmdOff is disabled"},
    {"LabelIsNoButton", "press frmWork.lblNote", 2, "1: frmWork.lblNote cannot be pressed"},
    {"LabelTakesNoText", "set frmWork.lblNote x", 2, "1: frmWork.lblNote cannot take \"x\""},
    {"GridTakesNoText", "set frmWork.Grid1 x", 2, "1: frmWork.Grid1 cannot take \"x\""},
    {"CheckBoxIsOneOrZero", "set frmWork.chkWrap yes", 2, "1: frmWork.chkWrap cannot take \"yes\""},
    {"NoSuchEntry", "set frmWork.cmbTable Gone", 2, "1: frmWork.cmbTable has no entry \"Gone\""},
    {"NoSuchNumber", "set frmWork.List1 #3", 2, "1: frmWork.List1 has no entry \"#3\""},
    {"SliderOutOfRange", "set frmWork.Slider1 11", 2, "1: frmWork.Slider1 has no entry \"11\""},
    {"NoDate", "set frmWork.dtpFrom 2/30/2024", 2, "1: frmWork.dtpFrom cannot take \"2/30/2024\""},
    {"NoRow", "row frmWork.Grid1 4", 2, "1: frmWork.Grid1 has no row 4: it has 3"},
    {"RowZero", "select frmWork.Grid1 1 0", 2, "1: frmWork.Grid1 has no row 0: it has 3"},
    {"NoRowNumber", "row frmWork.Grid1 last", 2, "1: \"last\" is no row number"},
    {"NoGrid", "row frmWork.List1 1", 2, "1: frmWork.List1 is no grid"},
    {"NothingChosen", "press frmWork.lbxRules edit", 2, "1: frmWork.lbxRules: no entry is chosen"},
    {"NoListButton", "press frmWork.lbxRules copy", 2,
     "1: frmWork.lbxRules has no button \"copy\""},
    {"NoTool", "tool frmWork Copy", 2, "1: frmWork has no tool \"Copy\""},
    {"DisabledTool", "tool frmWork Sort", 2, "1: frmWork: \"Sort\" is disabled"},
    {"NoCommand", "command Dance", 2, "1: the main window has no tool \"Dance\""},
    {"DisabledCommand", "command Disabled", 2, "1: the main window: \"Disabled\" is disabled"},
    {"CloseOfAHiddenForm", "close frmWork", 2, "1: frmWork is not open"},
    {"NoSuchButton", "answer maybe", 2, "1: no message box has a button \"maybe\""},
    {"NothingToCount", "expect-count frmWork.lblNote 1", 2,
     "1: frmWork.lblNote has no entries to count"},
    {"NoSeconds", "wait soon", 2, "1: \"soon\" is no number of seconds"},
};

const auto NameOf = [](const auto& row) { return std::string(row.param.name); };
INSTANTIATE_TEST_SUITE_P(Working, Script, testing::ValuesIn(Working), NameOf);
INSTANTIATE_TEST_SUITE_P(Failing, Script, testing::ValuesIn(Failing), NameOf);
INSTANTIATE_TEST_SUITE_P(Wrong, Script, testing::ValuesIn(Wrong), NameOf);

using ScriptFile = Script;

TEST_F(ScriptFile, ThatCannotBeRead) {
    std::ostringstream out, errors;
    ScriptRunner runner(windows, forms, windows.prompts, {}, out, errors);
    const auto end = runner.finished.Observe([this](int told) { status = told; });
    runner.Start("/nowhere/test.script");
    windows.Run();
    EXPECT_EQ(status, 2);
    EXPECT_EQ(errors.str(), "/nowhere/test.script:0: the script cannot be read\n");
}

TEST_F(ScriptFile, SelectsRowsInTheirOrder) {
    Play("select frmWork.Grid1 3 1");
    EXPECT_EQ(work.Grid1.SelBookmarks().All(), (std::vector<std::int64_t>{2, 0}));
}

TEST_F(ScriptFile, SelectsAllRows) {
    Play("select frmWork.Grid1 2\nselect frmWork.Grid1 none\nselect frmWork.Grid1 all");
    EXPECT_EQ(work.Grid1.SelBookmarks().All(), (std::vector<std::int64_t>{0, 1, 2}));
}

TEST_F(ScriptFile, TakesNoTimeBetweenLines) {
    Play("set frmWork.txtWrap a\nexpect frmWork.txtWrap a\nwait 3\nexpect frmWork.txtWrap a");
    EXPECT_EQ(status, 0);
    EXPECT_EQ(clock.Monotonic(), std::chrono::seconds(3));
}

}  // namespace
}  // namespace mailvane
