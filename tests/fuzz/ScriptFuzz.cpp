// Automation scripts: any text is split into commands or refused with the line that is wrong, and
// any commands can be played on a form without harm.

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "fuzz/Require.h"
#include "platform/forms/FormRegistry.h"
#include "platform/forms/HeadlessWindows.h"
#include "platform/script/ScriptCommands.h"
#include "platform/script/ScriptParser.h"
#include "platform/script/ScriptRunner.h"
#include "support/TempFolder.h"

namespace mailvane::fuzz {
namespace {

/// A clock on which the longest wait is over after a few sleeps.
class LeapingClock final : public Clock {
public:
    DateTime Now() const override { return *DateTime::FromParts(2024, 3, 15, 10, 30); }
    std::chrono::milliseconds Monotonic() const override { return passed_; }
    void Sleep(std::chrono::milliseconds duration) override {
        constexpr std::chrono::milliseconds Longest = std::chrono::hours(300'000);
        passed_ += std::max(duration, std::min(passed_, Longest));
    }

private:
    std::chrono::milliseconds passed_{0};
};

class frmDialog final : public Form {
public:
    explicit frmDialog(WindowSystem& windows) : Form(windows, "frmDialog", "Dialog") {}
    TextBox txtName{*this, "txtName"};
    Button cmdOK{*this, "cmdOK", [this] { Hide(); }};
};

/// One control of each kind, and buttons that ask, run, open and close.
class frmWork final : public Form {
public:
    frmWork(WindowSystem& windows, FormRegistry& forms) : Form(windows, "frmWork", "Work") {
        cmbTable.SetItems({"Customers", "Orders"});
        List1.SetItems({"a", "b", "c"});
        rows->rows = {{"Ann", "a@x"}, {"Bob", "b@x"}, {"Cid", "c@x"}};
        Grid1.SetRows(rows);
        cmdOff.SetEnabled(false);
        ActiveBar1.AddTool({.name = "Print", .caption = "&Print"});
        ActiveBar1.AddTool({.name = "Sort", .caption = "&Sort", .enabled = false});
        lbxRules.onAdd = [this] { lbxRules.AddItem("rule"); };
        lbxRules.onBeforeDelete = [this] { return chkWrap.Checked(); };
        cmdModal.onClick = [this, &forms] {
            auto& dialog = static_cast<frmDialog&>(forms.LoadAs(
                typeid(frmDialog), [this] { return std::make_unique<frmDialog>(Windows()); }));
            if (!dialog.Visible()) dialog.ShowModal();
        };
    }

    TextBox txtWrap{*this, "txtWrap"};
    RichTextBox rtfText{*this, "rtfText"};
    Label lblNote{*this, "lblNote", "Note"};
    CheckBox chkWrap{*this, "chkWrap"};
    OptionButton optText{*this, "optText", true};
    OptionButton optFile{*this, "optFile"};
    ComboBox cmbTable{*this, "cmbTable"};
    ComboBox cmbTo{*this, "cmbTo", ComboBox::Style::Editable};
    ListBox List1{*this, "List1", ListBox::Selection::Multiple};
    ListBoks lbxRules{*this, "lbxRules"};
    Slider Slider1{*this, "Slider1", 1, 10, 5};
    DatePicker dtpFrom{*this, "dtpFrom"};
    Tabs Tabs1{*this, "Tabs1"};
    ProgressBar Progress1{*this, "Progress1"};
    StatusBar StatusBar1{*this, "StatusBar1", 2};
    Timer Timer1{*this, "Timer1", std::chrono::milliseconds(500),
                 [this] { lblNote.SetText("timer"); }};
    Grid Grid1{*this, "Grid1"};
    std::shared_ptr<GridTable> rows = std::make_shared<GridTable>();
    ActiveBar ActiveBar1{*this, "ActiveBar1",
                         [this](const Tool& tool) { txtWrap.SetText(tool.name); }};
    Button cmdOff{*this, "cmdOff"};
    Button cmdClose{*this, "cmdClose", [this] { Unload(); }};
    Button cmdAsk{*this, "cmdAsk", [this] {
                      const auto answer = Windows().MessageBox(
                          {"Go\r\non?", "Ask", BoxIcon::Question, BoxButtons::YesNo});
                      chkWrap.SetChecked(answer == BoxAnswer::Yes);
                  }};
    Button cmdInput{*this, "cmdInput", [this] {
                        txtWrap.SetText(Windows().InputBox({"Name?", "Ask", ""}).value_or("none"));
                    }};
    Button cmdFile{*this, "cmdFile", [this] {
                       FileRequest request;
                       request.save = chkWrap.Checked();
                       request.defaultExtension = "poc";
                       txtWrap.SetText(Windows().FileDialog(request).value_or("none"));
                   }};
    Button cmdModal{*this, "cmdModal", Button::HiddenButton};
    Button cmdTimer{*this, "cmdTimer", [this] { Timer1.Start(); }};
    Button cmdRun{*this, "cmdRun", [this] {
                      for (int i = 1; i <= 5 && !cancelled; ++i) {
                          lblNote.SetText(std::to_string(i) + " done");
                          Windows().YieldBriefly();
                      }
                  }};
    Button cmdCancel{*this, "cmdCancel", [this] { cancelled = true; }};
    Button cmdQuit{*this, "cmdQuit", [this] { Windows().Quit(); }};
    bool cancelled = false;
};

std::string Quoted(const std::string& word) {
    std::string quoted = "\"";
    for (std::size_t i = 0; i < word.size(); ++i) {
        const char c = word[i];
        if (word.compare(i, 2, "\r\n") == 0) {
            quoted += "\\n";
            ++i;
        } else if (c == '"' || c == '\\') {
            quoted.append({'\\', c});
        } else {
            quoted += c;
        }
    }
    return quoted + '"';
}

/// The same commands, every word in quotes.
std::string Script(const std::vector<ScriptLine>& lines) {
    std::string text;
    for (const ScriptLine& line : lines) {
        for (const std::string& word : line.words)
            text += Quoted(word) + ' ';
        text += '\n';
    }
    return text;
}

/// True when the text is a script.
bool TryParser(const std::string& text) {
    const auto parsed = ParseScript(text);
    const auto count = static_cast<int>(std::count(text.begin(), text.end(), '\n')) + 1;
    if (const auto* error = std::get_if<ScriptError>(&parsed)) {
        Require(error->number >= 1 && error->number <= count, "an error has its line");
        Require(!error->reason.empty(), "an error has its reason");
        return false;
    }
    const auto& lines = std::get<std::vector<ScriptLine>>(parsed);
    int before = 0;
    for (const ScriptLine& line : lines) {
        Require(line.number > before && line.number <= count, "lines are numbered in order");
        Require(!line.words.empty() && !WhatIsWrong(line.words), "every line is a command");
        before = line.number;
    }
    const auto again = ParseScript(Script(lines));
    Require(std::holds_alternative<std::vector<ScriptLine>>(again), "quoted words are words");
    const auto& same = std::get<std::vector<ScriptLine>>(again);
    Require(std::equal(lines.begin(), lines.end(), same.begin(), same.end(),
                       [](const ScriptLine& a, const ScriptLine& b) { return a.words == b.words; }),
            "quoted words are the same words");
    return true;
}

void Play(const std::string& text) {
    const test::TempFolder folder;
    LeapingClock clock;
    HeadlessWindows windows(clock);
    FormRegistry forms(windows);
    forms.LoadAs(typeid(frmWork), [&] { return std::make_unique<frmWork>(windows, forms); }).Show();
    std::ostringstream output, errors;
    const auto command = [&](const std::string& name, const std::string& caption) {
        if (name == "Disabled") return ControlAnswer::Disabled;
        if (name != "Open") return ControlAnswer::NoSuchEntry;
        if (auto* work = static_cast<frmWork*>(forms.FindAs(typeid(frmWork))))
            work->txtWrap.SetText(caption + windows.FileDialog({}).value_or("none"));
        return ControlAnswer::Done;
    };
    ScriptRunner runner(windows, forms, windows.prompts, {command}, output, errors);
    int ends = 0, status = -1;
    const auto end = runner.finished.Observe([&](int told) {
        ++ends;
        status = told;
    });
    runner.Start(folder.Write("fuzz.script", text));
    windows.Run();
    Require(ends == 1, "a script ends once");
    Require(status >= ScriptRunner::RanToEnd && status <= ScriptRunner::ScriptWrong,
            "its exit status is a known one");
    const std::string told = errors.str();
    Require((status == ScriptRunner::RanToEnd) == told.empty(),
            "a failure is told, success is not");
    Require(std::count(told.begin(), told.end(), '\n') <= 1, "a failure is told in one line");
}

}  // namespace
}  // namespace mailvane::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    if (mailvane::fuzz::TryParser(text)) mailvane::fuzz::Play(text);
    return 0;
}
