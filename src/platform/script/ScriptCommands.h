#pragma once

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "platform/script/ScriptRunner.h"

namespace mailvane {

class Control;
class Form;
class Grid;

using ScriptWords = std::vector<std::string>;

/// Why a command ends the script.
struct ScriptFailure {
    ScriptRunner::ExitStatus status;
    std::string reason;
};
using ScriptOutcome = std::optional<ScriptFailure>;  ///< empty: the script goes on

/// What is wrong with a command before it is carried out: its name or the number of its words.
std::optional<std::string> WhatIsWrong(const ScriptWords& words);

/// Carries out the commands of automation scripts, all but "when", which the runner keeps.
class ScriptCommands {
public:
    ScriptCommands(WindowSystem& windows, FormRegistry& forms, PromptScript& prompts,
                   ScriptRunner::Program program, std::ostream& output);

    /// The words are free of what `WhatIsWrong` finds.
    ScriptOutcome CarryOut(const ScriptWords& words);

    /// True when the control's text holds `text`; a form that is not loaded has no texts. An
    /// unknown control is told in `failure`.
    bool Holds(const std::string& object, const std::string& text, ScriptOutcome& failure) const;

private:
    friend std::optional<std::string> WhatIsWrong(const ScriptWords& words);
    struct Row;
    struct Target {
        Control* control = nullptr;
        ScriptOutcome failure;
    };
    static const Row* FindRow(const std::string& name);
    Target FindControl(const std::string& object) const;
    ScriptOutcome FindGrid(const std::string& object, Grid*& grid) const;

    ScriptOutcome Open(const ScriptWords& words);
    ScriptOutcome Command(const ScriptWords& words);
    ScriptOutcome UseTool(const ScriptWords& words);
    ScriptOutcome Press(const ScriptWords& words);
    ScriptOutcome Set(const ScriptWords& words);
    ScriptOutcome MakeRowCurrent(const ScriptWords& words);
    ScriptOutcome Select(const ScriptWords& words);
    ScriptOutcome Close(const ScriptWords& words);
    ScriptOutcome AnswerBox(const ScriptWords& words);
    ScriptOutcome UseDefaultAnswers(const ScriptWords& words);
    ScriptOutcome AnswerInput(const ScriptWords& words);
    ScriptOutcome CancelInput(const ScriptWords& words);
    ScriptOutcome AnswerFile(const ScriptWords& words);
    ScriptOutcome CancelFile(const ScriptWords& words);
    ScriptOutcome Expect(const ScriptWords& words);
    ScriptOutcome ExpectContains(const ScriptWords& words);
    ScriptOutcome ExpectCount(const ScriptWords& words);
    ScriptOutcome ExpectEnabled(const ScriptWords& words);
    ScriptOutcome ExpectOpen(const ScriptWords& words);
    ScriptOutcome ExpectClosed(const ScriptWords& words);
    ScriptOutcome ExpectBox(const ScriptWords& words);
    ScriptOutcome Print(const ScriptWords& words);
    ScriptOutcome Wait(const ScriptWords& words);

    WindowSystem& windows_;
    FormRegistry& forms_;
    PromptScript& prompts_;
    ScriptRunner::Program program_;
    std::ostream& output_;
};

}  // namespace mailvane
