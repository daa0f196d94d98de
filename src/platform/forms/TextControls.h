#pragma once

#include <cstddef>
#include <functional>
#include <string>

#include "platform/forms/Control.h"

namespace mailvane {

/// Whatever carries one text. Positions in it count bytes of UTF-8.
class TextControl : public Control {
public:
    const std::string& Text() const { return text_; }
    /// Sets the text and runs onChange when it differs.
    void SetText(std::string text);
    std::string ShownText() const override { return text_; }

    std::function<void()> onChange;

protected:
    TextControl(Form& form, std::string name, ControlKind kind, std::string text)
        : Control(form, std::move(name), kind), text_(std::move(text)) {}

    virtual void TextStored() {}  ///< before anybody is told of a new text

private:
    std::string text_;
};

/// What only a widget can do: the clipboard, and the looks of a rich text.
enum class EditCommand { Undo, Cut, Copy, Paste, Bold, Italic, Underline, ChooseFont };

/// A text that the user edits. Line ends are CR LF, whatever the widget uses.
class EditControl : public TextControl {
public:
    std::size_t SelectionStart() const { return selectionStart_; }
    std::size_t SelectionLength() const { return selectionLength_; }
    void Select(std::size_t start, std::size_t length);
    /// Puts `text` in place of the selection and the caret behind it.
    void ReplaceSelection(const std::string& text);

    void Do(EditCommand command) { commanded.Tell(command); }
    Event<EditCommand> commanded;

    std::function<void()> onEnter;  ///< the Enter key
    /// A key was let go. Letters and digits have the code of their capital in ASCII, backspace 8,
    /// keys that write nothing and the blank codes below 48, all others codes above the letters.
    std::function<void(int keyCode)> onKeyUp;

protected:
    using TextControl::TextControl;
    ControlAnswer DoSetByUser(const std::string& value) override;
    void TextStored() override;

private:
    std::size_t selectionStart_ = 0;
    std::size_t selectionLength_ = 0;
};

class TextBox final : public EditControl {
public:
    TextBox(Form& form, std::string name, std::string text = {})
        : EditControl(form, std::move(name), ControlKind::TextBox, std::move(text)) {}
};

/// Edits formatted text; only its plain text is ever stored or sent.
class RichTextBox final : public EditControl {
public:
    RichTextBox(Form& form, std::string name, std::string text = {})
        : EditControl(form, std::move(name), ControlKind::RichTextBox, std::move(text)) {}

    void SetFontSize(int points) { fontSized.Tell(points); }  ///< of what is selected
    Event<int> fontSized;
};

/// Shows HTML that came from anywhere: no script runs, nothing is loaded from the network or the
/// disk, and links lead nowhere. Its text is the code.
class HtmlView final : public TextControl {
public:
    HtmlView(Form& form, std::string name)
        : TextControl(form, std::move(name), ControlKind::HtmlView, {}) {}
};

class Label final : public TextControl {
public:
    Label(Form& form, std::string name, std::string caption = {})
        : TextControl(form, std::move(name), ControlKind::Label, std::move(caption)) {}
};

/// A frame or a caption strip. An empty caption leaves the one of the window's design.
class Panel final : public TextControl {
public:
    Panel(Form& form, std::string name, std::string caption = {})
        : TextControl(form, std::move(name), ControlKind::Panel, std::move(caption)) {}
};

/// What pressing a button does. Who shows the button is told when that comes or goes.
class PressHandler {
public:
    PressHandler(Control& button, std::function<void()> work)
        : button_(button), work_(std::move(work)) {}
    PressHandler& operator=(std::function<void()> work);
    PressHandler(const PressHandler&) = delete;
    PressHandler& operator=(const PressHandler&) = delete;

    explicit operator bool() const { return static_cast<bool>(work_); }
    void operator()() const { RunHandler(work_); }

private:
    Control& button_;
    std::function<void()> work_;
};

/// A push button; off, with a tip that says why, while it has no handler. An empty caption leaves
/// the one of the window's design. A hidden one has no widget: other forms press it.
class Button final : public TextControl {
public:
    enum Hidden { HiddenButton };
    Button(Form& form, std::string name, std::function<void()> onClick = {},
           std::string caption = {});
    Button(Form& form, std::string name, Hidden, std::function<void()> onClick = {});

    /// Runs onClick; does nothing when the button is disabled.
    ControlAnswer Press();
    bool HasWidget() const { return hasWidget_; }

    bool Enabled() const override { return TextControl::Enabled() && onClick; }
    std::string Tip() const override;

    PressHandler onClick;

private:
    bool hasWidget_ = true;
};

}  // namespace mailvane
