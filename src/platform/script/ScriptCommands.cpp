#include "platform/script/ScriptCommands.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <ostream>

#include "platform/forms/FormRegistry.h"
#include "platform/forms/WindowSystem.h"

namespace mailvane {

namespace {

ScriptOutcome Wrong(std::string reason) {
    return ScriptFailure{ScriptRunner::ScriptWrong, std::move(reason)};
}

ScriptOutcome Unexpected(const std::string& what, const std::string& expected,
                         const std::string& found) {
    return ScriptFailure{ScriptRunner::ExpectationFailed,
                         what + ": expected " + expected + ", found " + found};
}

std::string Quoted(const std::string& text) {
    return '"' + OneLine(text) + '"';
}

/// What a control's answer means to a script.
ScriptOutcome Explain(ControlAnswer answer, const std::string& object, const std::string& value) {
    switch (answer) {
        case ControlAnswer::Done:
            return std::nullopt;
        case ControlAnswer::Disabled:
            return Wrong(object + " is disabled");
        case ControlAnswer::Impossible:
            return Wrong(object + " cannot take " + Quoted(value));
        case ControlAnswer::NoSuchEntry:
            return Wrong(object + " has no entry " + Quoted(value));
    }
    return std::nullopt;
}

/// The same for a tool.
ScriptOutcome ExplainTool(ControlAnswer answer, const std::string& owner, const std::string& tool) {
    switch (answer) {
        case ControlAnswer::Done:
            return std::nullopt;
        case ControlAnswer::Disabled:
            return Wrong(owner + ": " + Quoted(tool) + " is disabled");
        case ControlAnswer::Impossible:
        case ControlAnswer::NoSuchEntry:
            return Wrong(owner + " has no tool " + Quoted(tool));
    }
    return std::nullopt;
}

template <class Number>
std::optional<Number> NumberIn(const std::string& word) {
    Number number{};
    const char* end = word.data() + word.size();
    const auto result = std::from_chars(word.data(), end, number);
    if (result.ec != std::errc() || result.ptr != end) return std::nullopt;
    return number;
}

std::optional<BoxAnswer> ButtonNamed(const std::string& name) {
    if (name == "ok") return BoxAnswer::Ok;
    if (name == "cancel") return BoxAnswer::Cancel;
    if (name == "yes") return BoxAnswer::Yes;
    if (name == "no") return BoxAnswer::No;
    return std::nullopt;
}

/// The buttons of a list that keeps its own file.
ScriptOutcome PressListButton(ListBoks& list, const std::string& object,
                              const std::string& button) {
    struct Row {
        const char* name;
        void (ListBoks::*press)();
        bool needsEntry;
    };
    static constexpr Row rows[] = {{"add", &ListBoks::PressAdd, false},
                                   {"edit", &ListBoks::PressEdit, true},
                                   {"delete", &ListBoks::PressDelete, true},
                                   {"up", &ListBoks::MoveUp, true},
                                   {"down", &ListBoks::MoveDown, true}};
    for (const Row& row : rows) {
        if (button != row.name) continue;
        if (!list.Enabled()) return Wrong(object + " is disabled");
        if (row.needsEntry && list.ListIndex() < 0) return Wrong(object + ": no entry is chosen");
        (list.*row.press)();
        return std::nullopt;
    }
    return Wrong(object + " has no button " + Quoted(button));
}

/// Row numbers count from 1. Says what is wrong with one.
ScriptOutcome RowNamed(const Grid& grid, const std::string& object, const std::string& word,
                       std::size_t& row) {
    const auto number = NumberIn<std::size_t>(word);
    if (!number) return Wrong(Quoted(word) + " is no row number");
    if (*number < 1 || *number > grid.RowCount())
        return Wrong(object + " has no row " + word + ": it has " +
                     std::to_string(grid.RowCount()));
    row = *number - 1;
    return std::nullopt;
}

}  // namespace

struct ScriptCommands::Row {
    const char* name;
    std::size_t least;  ///< words, the name among them
    std::size_t most;
    ScriptOutcome (ScriptCommands::*carryOut)(const ScriptWords&);
};

const ScriptCommands::Row* ScriptCommands::FindRow(const std::string& name) {
    constexpr std::size_t Any = std::numeric_limits<std::size_t>::max();
    static constexpr Row rows[] = {
        {"open", 2, 2, &ScriptCommands::Open},
        {"command", 2, 3, &ScriptCommands::Command},
        {"tool", 3, 3, &ScriptCommands::UseTool},
        {"press", 2, 3, &ScriptCommands::Press},
        {"set", 3, 3, &ScriptCommands::Set},
        {"row", 3, 3, &ScriptCommands::MakeRowCurrent},
        {"select", 3, Any, &ScriptCommands::Select},
        {"close", 2, 2, &ScriptCommands::Close},
        {"answer", 2, 3, &ScriptCommands::AnswerBox},
        {"answers", 2, 2, &ScriptCommands::UseDefaultAnswers},
        {"input", 2, 2, &ScriptCommands::AnswerInput},
        {"input-cancel", 1, 1, &ScriptCommands::CancelInput},
        {"file", 2, 2, &ScriptCommands::AnswerFile},
        {"file-cancel", 1, 1, &ScriptCommands::CancelFile},
        {"expect", 3, 3, &ScriptCommands::Expect},
        {"expect-contains", 3, 3, &ScriptCommands::ExpectContains},
        {"expect-count", 3, 3, &ScriptCommands::ExpectCount},
        {"expect-enabled", 3, 3, &ScriptCommands::ExpectEnabled},
        {"expect-open", 2, 2, &ScriptCommands::ExpectOpen},
        {"expect-closed", 2, 2, &ScriptCommands::ExpectClosed},
        {"expect-box", 2, 2, &ScriptCommands::ExpectBox},
        {"print", 2, 2, &ScriptCommands::Print},
        {"when", 5, Any, nullptr},
        {"wait", 2, 2, &ScriptCommands::Wait},
    };
    const auto row = std::find_if(std::begin(rows), std::end(rows),
                                  [&](const Row& r) { return name == r.name; });
    return row == std::end(rows) ? nullptr : row;
}

std::optional<std::string> WhatIsWrong(const ScriptWords& words) {
    // The command behind "when" is looked at in its place: the chain of them has no limit.
    for (std::size_t at = 0;; at += 4) {
        const std::string& name = words[at];
        const ScriptCommands::Row* row = ScriptCommands::FindRow(name);
        const std::size_t count = words.size() - at;
        if (!row) return "unknown command " + Quoted(name);
        if (count < row->least) return Quoted(name) + " needs more words";
        if (count > row->most) return Quoted(name) + " takes fewer words";
        if (name != "when") return std::nullopt;
        if (words[at + 2] != "contains") return "\"when\" needs \"contains\" behind the control";
    }
}

ScriptCommands::ScriptCommands(WindowSystem& windows, FormRegistry& forms, PromptScript& prompts,
                               ScriptRunner::Program program, std::ostream& output)
    : windows_(windows),
      forms_(forms),
      prompts_(prompts),
      program_(std::move(program)),
      output_(output) {}

ScriptOutcome ScriptCommands::CarryOut(const ScriptWords& words) {
    const Row* row = FindRow(words.front());
    return row == nullptr ? Wrong("unknown command " + Quoted(words.front()))
                          : (this->*row->carryOut)(words);
}

bool ScriptCommands::Holds(const std::string& object, const std::string& text,
                           ScriptOutcome& failure) const {
    if (!forms_.IsFormLoaded(object.substr(0, object.find('.')))) return false;
    const Target target = FindControl(object);
    failure = target.failure;
    return target.control && target.control->ShownText().find(text) != std::string::npos;
}

ScriptCommands::Target ScriptCommands::FindControl(const std::string& object) const {
    const std::size_t point = object.find('.');
    if (point == std::string::npos) return {nullptr, Wrong(Quoted(object) + " names no control")};
    const std::string name = object.substr(0, point);
    const Form* form = forms_.FindByName(name);
    if (!form) return {nullptr, Wrong("no form " + name + " is loaded")};
    Control* control = form->FindControl(object.substr(point + 1));
    if (control) return {control, std::nullopt};
    return {nullptr, Wrong(form->Name() + " has no control " + object.substr(point + 1))};
}

ScriptOutcome ScriptCommands::FindGrid(const std::string& object, Grid*& grid) const {
    const Target target = FindControl(object);
    if (target.failure) return target.failure;
    if (target.control->Kind() != ControlKind::Grid) return Wrong(object + " is no grid");
    if (!target.control->Enabled()) return Wrong(object + " is disabled");
    grid = static_cast<Grid*>(target.control);
    return std::nullopt;
}

ScriptOutcome ScriptCommands::Open(const ScriptWords& words) {
    prompts_.QueueFileFirst(words[1]);
    return Command({"command", "Open"});
}

ScriptOutcome ScriptCommands::Command(const ScriptWords& words) {
    const std::string caption = words.size() > 2 ? words[2] : std::string();
    const ControlAnswer answer =
        program_.command ? program_.command(words[1], caption) : ControlAnswer::NoSuchEntry;
    return ExplainTool(answer, "the main window", words[1]);
}

ScriptOutcome ScriptCommands::UseTool(const ScriptWords& words) {
    const Form* form = forms_.FindByName(words[1]);
    if (!form) return Wrong("no form " + words[1] + " is loaded");
    for (Control* control : form->Controls()) {
        if (control->Kind() != ControlKind::ActiveBar) continue;
        auto* bar = static_cast<ActiveBar*>(control);
        if (bar->FindTool(words[2])) return ExplainTool(bar->Press(words[2]), words[1], words[2]);
    }
    return ExplainTool(ControlAnswer::NoSuchEntry, words[1], words[2]);
}

ScriptOutcome ScriptCommands::Press(const ScriptWords& words) {
    const Target target = FindControl(words[1]);
    if (target.failure) return target.failure;
    const ControlKind kind = target.control->Kind();
    if (kind == ControlKind::Button && words.size() == 2)
        return Explain(static_cast<Button*>(target.control)->Press(), words[1], {});
    if (kind == ControlKind::ListBoks && words.size() == 3)
        return PressListButton(*static_cast<ListBoks*>(target.control), words[1], words[2]);
    if (kind == ControlKind::ListBoks) return Wrong(words[1] + ": which of its buttons?");
    return Wrong(words[1] + " cannot be pressed" + (words.size() > 2 ? " like that" : ""));
}

ScriptOutcome ScriptCommands::Set(const ScriptWords& words) {
    const Target target = FindControl(words[1]);
    if (target.failure) return target.failure;
    return Explain(target.control->SetByUser(words[2]), words[1], words[2]);
}

ScriptOutcome ScriptCommands::MakeRowCurrent(const ScriptWords& words) {
    Grid* grid = nullptr;
    if (auto failure = FindGrid(words[1], grid)) return failure;
    std::size_t row = 0;
    if (auto failure = RowNamed(*grid, words[1], words[2], row)) return failure;
    grid->SetCurrentRow(row);
    return std::nullopt;
}

ScriptOutcome ScriptCommands::Select(const ScriptWords& words) {
    Grid* grid = nullptr;
    if (auto failure = FindGrid(words[1], grid)) return failure;
    std::vector<std::int64_t> bookmarks;
    if (words.size() == 3 && words[2] == "all") {
        for (std::size_t row = 0; row < grid->RowCount(); ++row)
            bookmarks.push_back(grid->Rows()->BookmarkAt(row));
    } else if (words.size() != 3 || words[2] != "none") {
        for (std::size_t i = 2; i < words.size(); ++i) {
            std::size_t row = 0;
            if (auto failure = RowNamed(*grid, words[1], words[i], row)) return failure;
            bookmarks.push_back(grid->Rows()->BookmarkAt(row));
        }
    }
    grid->SetSelected(std::move(bookmarks));
    return std::nullopt;
}

ScriptOutcome ScriptCommands::Close(const ScriptWords& words) {
    Form* form = forms_.FindByName(words[1]);
    if (!form) return Wrong("no form " + words[1] + " is loaded");
    if (!form->Visible()) return Wrong(words[1] + " is not open");
    form->OnCloseBox();
    return std::nullopt;
}

ScriptOutcome ScriptCommands::AnswerBox(const ScriptWords& words) {
    const auto button = ButtonNamed(words[1]);
    if (!button) return Wrong("no message box has a button " + Quoted(words[1]));
    prompts_.QueueBox(*button, words.size() > 2 ? words[2] : std::string());
    return std::nullopt;
}

ScriptOutcome ScriptCommands::UseDefaultAnswers(const ScriptWords& words) {
    if (words[1] != "default") return Wrong("\"answers\" knows \"default\" only");
    prompts_.UseDefaults();
    return std::nullopt;
}

ScriptOutcome ScriptCommands::AnswerInput(const ScriptWords& words) {
    prompts_.QueueInput(words[1]);
    return std::nullopt;
}

ScriptOutcome ScriptCommands::CancelInput(const ScriptWords&) {
    prompts_.QueueInput(std::nullopt);
    return std::nullopt;
}

ScriptOutcome ScriptCommands::AnswerFile(const ScriptWords& words) {
    prompts_.QueueFile(words[1]);
    return std::nullopt;
}

ScriptOutcome ScriptCommands::CancelFile(const ScriptWords&) {
    prompts_.QueueFile(std::nullopt);
    return std::nullopt;
}

ScriptOutcome ScriptCommands::Expect(const ScriptWords& words) {
    const Target target = FindControl(words[1]);
    if (target.failure) return target.failure;
    const std::string found = target.control->ShownText();
    if (found == words[2]) return std::nullopt;
    return Unexpected(words[1], Quoted(words[2]), Quoted(found));
}

ScriptOutcome ScriptCommands::ExpectContains(const ScriptWords& words) {
    const Target target = FindControl(words[1]);
    if (target.failure) return target.failure;
    const std::string found = target.control->ShownText();
    if (found.find(words[2]) != std::string::npos) return std::nullopt;
    return Unexpected(words[1], "a text with " + Quoted(words[2]), Quoted(found));
}

ScriptOutcome ScriptCommands::ExpectCount(const ScriptWords& words) {
    const Target target = FindControl(words[1]);
    if (target.failure) return target.failure;
    const auto number = NumberIn<int>(words[2]);
    if (!number) return Wrong(Quoted(words[2]) + " is no number");
    const int found = target.control->EntryCount();
    if (found < 0) return Wrong(words[1] + " has no entries to count");
    if (found == *number) return std::nullopt;
    return Unexpected(words[1], words[2] + " entries", std::to_string(found));
}

ScriptOutcome ScriptCommands::ExpectEnabled(const ScriptWords& words) {
    const Target target = FindControl(words[1]);
    if (target.failure) return target.failure;
    if (words[2] != "yes" && words[2] != "no") return Wrong("\"yes\" or \"no\" is missing");
    const bool wanted = words[2] == "yes";
    if (target.control->Enabled() == wanted) return std::nullopt;
    return Unexpected(words[1], wanted ? "enabled" : "disabled", wanted ? "disabled" : "enabled");
}

ScriptOutcome ScriptCommands::ExpectOpen(const ScriptWords& words) {
    const Form* form = forms_.FindByName(words[1]);
    if (form && form->Visible()) return std::nullopt;
    return Unexpected(words[1], "open", form ? "hidden" : "not loaded");
}

ScriptOutcome ScriptCommands::ExpectClosed(const ScriptWords& words) {
    const Form* form = forms_.FindByName(words[1]);
    if (!form || !form->Visible()) return std::nullopt;
    return Unexpected(words[1], "closed", "open");
}

ScriptOutcome ScriptCommands::ExpectBox(const ScriptWords& words) {
    if (prompts_.ExpectBox(words[1])) return std::nullopt;
    const auto& shown = prompts_.Shown();
    const auto last = std::find_if(shown.rbegin(), shown.rend(), [](const ShownPrompt& prompt) {
        return prompt.kind == ShownPrompt::Kind::MessageBox;
    });
    return Unexpected("message box", Quoted(words[1]),
                      last == shown.rend() ? "none" : Quoted(last->text) + " as the last one");
}

ScriptOutcome ScriptCommands::Print(const ScriptWords& words) {
    if (words[1] == "boxes") {
        for (const ShownPrompt& prompt : prompts_.Shown())
            output_ << prompt.Line() << '\n';
        output_.flush();
        return std::nullopt;
    }
    const Target target = FindControl(words[1]);
    if (target.failure) return target.failure;
    output_ << OneLine(target.control->ShownText()) << std::endl;
    return std::nullopt;
}

ScriptOutcome ScriptCommands::Wait(const ScriptWords& words) {
    const auto seconds = NumberIn<double>(words[1]);
    if (!seconds || !(*seconds >= 0)) return Wrong(Quoted(words[1]) + " is no number of seconds");
    windows_.WaitSeconds(*seconds);
    return std::nullopt;
}

}  // namespace mailvane
