#pragma once

#include <functional>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/forms/Control.h"
#include "platform/forms/Event.h"
#include "platform/forms/Prompts.h"

namespace mailvane {

class FormRegistry;
class WindowSystem;

/// Plays an automation script: one line after another while the program is idle.
class ScriptRunner {
public:
    /// What the program does for a script beyond its forms.
    struct Program {
        /// A tool of the main window; `NoSuchEntry` and `Disabled` end the script.
        std::function<ControlAnswer(const std::string& name, const std::string& caption)> command;
    };
    enum ExitStatus { RanToEnd = 0, ExpectationFailed = 1, ScriptWrong = 2 };

    ScriptRunner(WindowSystem& windows, FormRegistry& forms, PromptScript& prompts, Program program,
                 std::ostream& output, std::ostream& errors);
    ~ScriptRunner();

    /// Reads the file and starts to play when the program is idle next. A file that cannot be read
    /// or parsed ends at once. When the script ends, `finished` is told its exit status and the
    /// program is quit; a program that is quit by others ends the script.
    void Start(const std::string& path);
    Event<int> finished;

private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace mailvane
