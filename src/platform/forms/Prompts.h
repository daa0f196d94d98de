#pragma once

#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace mailvane {

enum class BoxIcon { None, Information, Question, Exclamation, Critical };
enum class BoxButtons { Ok, OkCancel, YesNo, YesNoCancel };
enum class BoxAnswer { Ok, Cancel, Yes, No };

struct BoxRequest {
    std::string text;
    std::string title = "Mailvane";
    BoxIcon icon = BoxIcon::None;
    BoxButtons buttons = BoxButtons::Ok;

    bool Offers(BoxAnswer answer) const;
    BoxAnswer DefaultAnswer() const;  ///< the button that Enter presses: Ok or Yes
    BoxAnswer CloseAnswer() const;    ///< what closing the box means: Cancel or No, else Ok
};

struct InputRequest {
    std::string prompt;
    std::string title = "Mailvane";
    std::string text;  ///< offered answer
};

struct FileFilter {
    std::string description;
    std::string pattern;  ///< "*.poc"
};

struct FileRequest {
    bool save = false;
    std::string title;
    std::vector<FileFilter> filters;
    int filterIndex = 0;  ///< chosen at first, from 0
    std::string startFolder;
    std::string defaultExtension;  ///< added to a name without one when saving; no point
};

/// The text with each line end as "\n" and each tab as "\t".
std::string OneLine(std::string_view text);

/// A prompt that was shown, for scripts and tests.
struct ShownPrompt {
    enum class Kind { MessageBox, InputBox, FileDialog };
    Kind kind = Kind::MessageBox;
    std::string title;
    BoxIcon icon = BoxIcon::None;
    std::string text;
    BoxButtons buttons = BoxButtons::Ok;
    std::string answer;

    /// Kind, title, icon, text, buttons, answer, separated by tabs, line ends as "\n". The text of
    /// a file dialog is "open" or "save".
    std::string Line() const;
};

/// Answers prompts from a queue in place of a person, and remembers what was shown. A prompt that
/// nothing answers is a failure: it gets the answer of closing it, and `Failure` says what came up.
class PromptScript {
public:
    /// Answers the next box, or the next one whose text holds `part`.
    void QueueBox(BoxAnswer answer, std::string part = {});
    void QueueInput(std::optional<std::string> text);  ///< empty: cancelled
    void QueueFile(std::optional<std::string> path);   ///< empty: cancelled
    void QueueFileFirst(std::string path);             ///< before those that wait
    void UseDefaults() { defaults_ = true; }  ///< unanswered boxes get their default button

    BoxAnswer Answer(const BoxRequest& request);
    std::optional<std::string> Answer(const InputRequest& request);
    std::optional<std::string> Answer(const FileRequest& request);

    const std::vector<ShownPrompt>& Shown() const { return shown_; }
    /// What came up without an answer; empty while all is well.
    const std::optional<std::string>& Failure() const { return failure_; }
    std::function<void()> onFailure;  ///< told once, while the prompt is still answered
    /// True when a message box with exactly this text was shown after the one that the last call
    /// that held has found.
    bool ExpectBox(const std::string& text);

private:
    struct QueuedBox {
        BoxAnswer answer;
        std::string part;
    };
    std::optional<BoxAnswer> TakeBoxAnswer(const BoxRequest& request);
    void Fail(std::string reason);
    std::deque<QueuedBox> boxes_;
    std::deque<std::optional<std::string>> inputs_;
    std::deque<std::optional<std::string>> files_;
    bool defaults_ = false;
    std::vector<ShownPrompt> shown_;
    std::size_t expectedFrom_ = 0;
    std::optional<std::string> failure_;
};

}  // namespace mailvane
