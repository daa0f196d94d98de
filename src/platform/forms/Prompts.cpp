#include "platform/forms/Prompts.h"

#include <algorithm>

namespace mailvane {

namespace {

const char* NameOf(BoxIcon icon) {
    switch (icon) {
        case BoxIcon::None:
            return "none";
        case BoxIcon::Information:
            return "information";
        case BoxIcon::Question:
            return "question";
        case BoxIcon::Exclamation:
            return "exclamation";
        case BoxIcon::Critical:
            return "critical";
    }
    return "";
}

const char* NameOf(BoxButtons buttons) {
    switch (buttons) {
        case BoxButtons::Ok:
            return "ok";
        case BoxButtons::OkCancel:
            return "ok-cancel";
        case BoxButtons::YesNo:
            return "yes-no";
        case BoxButtons::YesNoCancel:
            return "yes-no-cancel";
    }
    return "";
}

const char* NameOf(BoxAnswer answer) {
    switch (answer) {
        case BoxAnswer::Ok:
            return "ok";
        case BoxAnswer::Cancel:
            return "cancel";
        case BoxAnswer::Yes:
            return "yes";
        case BoxAnswer::No:
            return "no";
    }
    return "";
}

const char* NameOf(ShownPrompt::Kind kind) {
    switch (kind) {
        case ShownPrompt::Kind::MessageBox:
            return "message box";
        case ShownPrompt::Kind::InputBox:
            return "input box";
        case ShownPrompt::Kind::FileDialog:
            return "file dialog";
    }
    return "";
}

const char* const Cancelled = "(cancelled)";

}  // namespace

std::string OneLine(std::string_view text) {
    std::string line;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') continue;
        if (text[i] == '\r' || text[i] == '\n') {
            line += "\\n";
        } else if (text[i] == '\t') {
            line += "\\t";
        } else {
            line += text[i];
        }
    }
    return line;
}

bool BoxRequest::Offers(BoxAnswer answer) const {
    switch (buttons) {
        case BoxButtons::Ok:
            return answer == BoxAnswer::Ok;
        case BoxButtons::OkCancel:
            return answer == BoxAnswer::Ok || answer == BoxAnswer::Cancel;
        case BoxButtons::YesNo:
            return answer == BoxAnswer::Yes || answer == BoxAnswer::No;
        case BoxButtons::YesNoCancel:
            return answer != BoxAnswer::Ok;
    }
    return false;
}

BoxAnswer BoxRequest::DefaultAnswer() const {
    return Offers(BoxAnswer::Ok) ? BoxAnswer::Ok : BoxAnswer::Yes;
}

BoxAnswer BoxRequest::CloseAnswer() const {
    if (Offers(BoxAnswer::Cancel)) return BoxAnswer::Cancel;
    return Offers(BoxAnswer::No) ? BoxAnswer::No : BoxAnswer::Ok;
}

std::string ShownPrompt::Line() const {
    return std::string(NameOf(kind)) + '\t' + OneLine(title) + '\t' + NameOf(icon) + '\t' +
           OneLine(text) + '\t' + NameOf(buttons) + '\t' + OneLine(answer);
}

void PromptScript::QueueBox(BoxAnswer answer, std::string part) {
    boxes_.push_back({answer, std::move(part)});
}

void PromptScript::QueueInput(std::optional<std::string> text) {
    inputs_.push_back(std::move(text));
}

void PromptScript::QueueFile(std::optional<std::string> path) {
    files_.push_back(std::move(path));
}

void PromptScript::QueueFileFirst(std::string path) {
    files_.push_front(std::move(path));
}

std::optional<BoxAnswer> PromptScript::TakeBoxAnswer(const BoxRequest& request) {
    const auto queued = std::find_if(boxes_.begin(), boxes_.end(), [&](const QueuedBox& box) {
        return request.text.find(box.part) != std::string::npos;
    });
    if (queued == boxes_.end())
        return defaults_ ? std::optional(request.DefaultAnswer()) : std::nullopt;
    const BoxAnswer answer = queued->answer;
    boxes_.erase(queued);
    if (request.Offers(answer)) return answer;
    Fail("the message box \"" + OneLine(request.text) + "\" offers no button \"" + NameOf(answer) +
         "\"");
    return request.CloseAnswer();
}

BoxAnswer PromptScript::Answer(const BoxRequest& request) {
    const auto answer = TakeBoxAnswer(request);
    if (!answer)
        Fail("nothing answers the message box \"" + OneLine(request.title) + "\": \"" +
             OneLine(request.text) + "\"");
    const BoxAnswer given = answer.value_or(request.CloseAnswer());
    shown_.push_back({ShownPrompt::Kind::MessageBox, request.title, request.icon, request.text,
                      request.buttons, NameOf(given)});
    return given;
}

std::optional<std::string> PromptScript::Answer(const InputRequest& request) {
    std::optional<std::string> answer;
    if (inputs_.empty()) {
        Fail("nothing answers the input box \"" + OneLine(request.title) + "\": \"" +
             OneLine(request.prompt) + "\"");
    } else {
        answer = std::move(inputs_.front());
        inputs_.pop_front();
    }
    shown_.push_back({ShownPrompt::Kind::InputBox, request.title, BoxIcon::None, request.prompt,
                      BoxButtons::OkCancel, answer.value_or(Cancelled)});
    return answer;
}

std::optional<std::string> PromptScript::Answer(const FileRequest& request) {
    std::optional<std::string> answer;
    if (files_.empty()) {
        Fail("nothing answers the file dialog \"" + OneLine(request.title) + "\"");
    } else {
        answer = std::move(files_.front());
        files_.pop_front();
    }
    shown_.push_back({ShownPrompt::Kind::FileDialog, request.title, BoxIcon::None,
                      request.save ? "save" : "open", BoxButtons::OkCancel,
                      answer.value_or(Cancelled)});
    return answer;
}

bool PromptScript::ExpectBox(const std::string& text) {
    for (std::size_t i = expectedFrom_; i < shown_.size(); ++i) {
        if (shown_[i].kind != ShownPrompt::Kind::MessageBox || shown_[i].text != text) continue;
        expectedFrom_ = i + 1;
        return true;
    }
    return false;
}

void PromptScript::Fail(std::string reason) {
    if (failure_) return;
    failure_ = std::move(reason);
    if (onFailure) onFailure();
}

}  // namespace mailvane
