#include "platform/script/ScriptRunner.h"

#include <algorithm>
#include <iterator>
#include <ostream>
#include <string_view>
#include <utility>

#include "platform/forms/WindowSystem.h"
#include "platform/os/Files.h"
#include "platform/script/ScriptCommands.h"
#include "platform/script/ScriptParser.h"

namespace mailvane {

struct ScriptRunner::State {
    /// An armed "when" line.
    struct Watch {
        int number;
        std::string object;
        std::string text;
        ScriptWords command;
    };

    State(ScriptRunner& owner, WindowSystem& theWindows, FormRegistry& forms,
          PromptScript& thePrompts, Program program, std::ostream& output, std::ostream& theErrors)
        : runner(owner),
          windows(theWindows),
          prompts(thePrompts),
          errors(theErrors),
          commands(theWindows, forms, thePrompts, std::move(program), output) {}
    ~State() { prompts.onFailure = nullptr; }

    void Begin(std::vector<ScriptLine> parsed);
    void QueueFirstAnswers();
    void NextLine();
    void FollowRuns();
    void CheckRun();
    void ProgramQuit();
    bool CheckPrompts();
    void CheckWatches();
    std::optional<Watch> TakeDueWatch();
    void CarryOut(const ScriptWords& words, int number);
    ScriptOutcome CarryOutOrArm(const ScriptWords& words, int number);
    void End(ExitStatus status, int number = 0, const std::string& reason = {});

    ScriptRunner& runner;
    WindowSystem& windows;
    PromptScript& prompts;
    std::ostream& errors;
    ScriptCommands commands;
    std::string path;
    std::vector<ScriptLine> lines;
    std::size_t next = 0;
    int current = 1;  ///< number of the line begun last
    /// The modal depths at which the commands that are being carried out began.
    std::vector<int> running;
    std::vector<Watch> watches;
    bool ended = false;
    Subscription idle;
    Subscription yielded;
    Subscription quit;
};

void ScriptRunner::State::Begin(std::vector<ScriptLine> parsed) {
    lines = std::move(parsed);
    idle = windows.idle.Observe([this] { NextLine(); });
    prompts.onFailure = [this] { FollowRuns(); };
    quit = windows.quit.Observe([this] { ProgramQuit(); });
    QueueFirstAnswers();
}

/// The answers that a script begins with are there for the boxes of the program's own start.
void ScriptRunner::State::QueueFirstAnswers() {
    static constexpr std::string_view Answers[] = {"answer",       "answers", "input",
                                                   "input-cancel", "file",    "file-cancel"};
    while (!ended && next < lines.size()) {
        const ScriptLine& line = lines[next];
        if (std::ranges::find(Answers, line.words.front()) == std::end(Answers)) return;
        ++next;
        current = line.number;
        CarryOut(line.words, line.number);
    }
}

void ScriptRunner::State::NextLine() {
    // Only a modal dialog that the command has opened lets the next line begin inside of it.
    if (!running.empty() && running.back() >= windows.ModalDepth()) return;
    if (!CheckPrompts()) return;
    CheckWatches();
    if (ended) return;
    if (next == lines.size()) {
        End(RanToEnd);
        return;
    }
    windows.WakeUp();
    const ScriptLine& line = lines[next++];
    current = line.number;
    CarryOut(line.words, line.number);
}

/// From now on every yield of a run is looked at. Without need it is not: an observed yield is
/// always due, and a run that may go on between two yields is faster.
void ScriptRunner::State::FollowRuns() {
    yielded = windows.yielded.Observe([this] { CheckRun(); });
}

void ScriptRunner::State::CheckRun() {
    if (!CheckPrompts()) return;
    CheckWatches();
    if (watches.empty()) yielded.End();
}

void ScriptRunner::State::ProgramQuit() {
    if (!CheckPrompts()) return;
    if (next == lines.size()) {
        End(RanToEnd);
    } else {
        End(ExpectationFailed, lines[next].number, "expected the program to run, found it ended");
    }
}

/// False when the script is over because a prompt came up that nothing answers.
bool ScriptRunner::State::CheckPrompts() {
    if (!ended && prompts.Failure()) End(ExpectationFailed, current, *prompts.Failure());
    return !ended;
}

void ScriptRunner::State::CheckWatches() {
    while (auto watch = TakeDueWatch())
        CarryOut(watch->command, watch->number);
}

std::optional<ScriptRunner::State::Watch> ScriptRunner::State::TakeDueWatch() {
    for (std::size_t i = 0; i < watches.size() && !ended; ++i) {
        ScriptOutcome failure;
        const bool due = commands.Holds(watches[i].object, watches[i].text, failure);
        if (failure) End(failure->status, watches[i].number, failure->reason);
        if (!due) continue;
        Watch watch = std::move(watches[i]);
        watches.erase(watches.begin() + static_cast<std::ptrdiff_t>(i));
        return watch;
    }
    return std::nullopt;
}

void ScriptRunner::State::CarryOut(const ScriptWords& words, int number) {
    running.push_back(windows.ModalDepth());
    const ScriptOutcome outcome = CarryOutOrArm(words, number);
    running.pop_back();
    if (!CheckPrompts()) return;
    if (outcome) End(outcome->status, number, outcome->reason);
}

ScriptOutcome ScriptRunner::State::CarryOutOrArm(const ScriptWords& words, int number) {
    if (words.front() != "when") return commands.CarryOut(words);
    watches.push_back({number, words[1], words[3], {words.begin() + 4, words.end()}});
    FollowRuns();
    return std::nullopt;
}

void ScriptRunner::State::End(ExitStatus status, int number, const std::string& reason) {
    if (ended) return;
    ended = true;
    if (status != RanToEnd) errors << path << ':' << number << ": " << OneLine(reason) << std::endl;
    runner.finished.Tell(status);
    windows.Quit();
}

ScriptRunner::ScriptRunner(WindowSystem& windows, FormRegistry& forms, PromptScript& prompts,
                           Program program, std::ostream& output, std::ostream& errors)
    : state_(std::make_unique<State>(*this, windows, forms, prompts, std::move(program), output,
                                     errors)) {}

ScriptRunner::~ScriptRunner() = default;

void ScriptRunner::Start(const std::string& path) {
    state_->path = path;
    const auto text = ReadToEnd(path);
    if (!text) {
        state_->End(ScriptWrong, 0, "the script cannot be read");
        return;
    }
    auto parsed = ParseScript(*text);
    if (const auto* error = std::get_if<ScriptError>(&parsed)) {
        state_->End(ScriptWrong, error->number, error->reason);
        return;
    }
    state_->Begin(std::get<std::vector<ScriptLine>>(std::move(parsed)));
}

}  // namespace mailvane
