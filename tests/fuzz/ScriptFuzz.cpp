// Automation scripts: any text is split into commands or refused with the line that is wrong, and
// any commands can be played on a form without harm.

#include <algorithm>
#include <cstdint>
#include <sstream>
#include <variant>

#include "fuzz/FuzzTarget.h"
#include "platform/forms/HeadlessWindows.h"
#include "platform/script/ScriptCommands.h"
#include "platform/script/ScriptParser.h"
#include "platform/script/ScriptRunner.h"
#include "support/ScriptForms.h"
#include "support/TempFolder.h"

namespace mailvane::fuzz {
namespace {

using test::frmWork;

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
    auto& form = static_cast<frmWork&>(
        forms.LoadAs(typeid(frmWork), [&] { return std::make_unique<frmWork>(windows, forms); }));
    form.steps = 5;
    form.Show();
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

void TryInput(const std::string& text) {
    if (TryParser(text)) Play(text);
}

}  // namespace mailvane::fuzz
