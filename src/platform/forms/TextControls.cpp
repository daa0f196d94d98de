#include "platform/forms/TextControls.h"

#include <algorithm>

namespace mailvane {

namespace {

/// `position` itself, or the begin of the character that it is inside of, within the text.
std::size_t CharacterStart(const std::string& text, std::size_t position) {
    position = std::min(position, text.size());
    while (position > 0 && position < text.size() &&
           (static_cast<unsigned char>(text[position]) & 0xC0) == 0x80)
        --position;
    return position;
}

}  // namespace

void TextControl::SetText(std::string text) {
    if (text == text_) return;
    text_ = std::move(text);
    TextStored();
    Changed(Property::Text);
    RunHandler(onChange);
}

void EditControl::Select(std::size_t start, std::size_t length) {
    const std::size_t first = CharacterStart(Text(), start);
    const std::size_t end = CharacterStart(Text(), first + std::min(length, Text().size() - first));
    if (first == selectionStart_ && end - first == selectionLength_) return;
    selectionStart_ = first;
    selectionLength_ = end - first;
    Changed(Property::TextSelection);
}

void EditControl::ReplaceSelection(const std::string& text) {
    std::string whole = Text();
    whole.replace(selectionStart_, selectionLength_, text);
    const std::size_t caret = selectionStart_ + text.size();
    const bool moves = caret != selectionStart_ || selectionLength_ != 0;
    // The new place is stored first, so that onChange finds the caret behind the new text.
    selectionStart_ = caret;
    selectionLength_ = 0;
    SetText(std::move(whole));
    if (moves) Changed(Property::TextSelection);
}

ControlAnswer EditControl::DoSetByUser(const std::string& value) {
    SetText(value);
    return ControlAnswer::Done;
}

void EditControl::TextStored() {
    const std::size_t end = CharacterStart(Text(), selectionStart_ + selectionLength_);
    selectionStart_ = CharacterStart(Text(), selectionStart_);
    selectionLength_ = end - selectionStart_;
}

PressHandler& PressHandler::operator=(std::function<void()> work) {
    work_ = std::move(work);
    for (const Property property : {Property::Enabled, Property::Tip})
        button_.changed.Tell(property);
    return *this;
}

Button::Button(Form& form, std::string name, std::function<void()> handler, std::string caption)
    : TextControl(form, std::move(name), ControlKind::Button, std::move(caption)),
      onClick(*this, std::move(handler)) {}

Button::Button(Form& form, std::string name, Hidden, std::function<void()> handler)
    : TextControl(form, std::move(name), ControlKind::Button, {}),
      onClick(*this, std::move(handler)),
      hasWidget_(false) {}

std::string Button::Tip() const {
    return onClick ? TextControl::Tip() : WithLaterTip(TextControl::Tip());
}

ControlAnswer Button::Press() {
    if (!Enabled()) return ControlAnswer::Disabled;
    onClick();
    return ControlAnswer::Done;
}

}  // namespace mailvane
