#include "merge/message/clsAutoComplete.h"

#include "core/text/Text.h"

namespace mailvane {

namespace {

constexpr int FirstCode = 49;  // the digit 1
constexpr int BackspaceCode = 8;

bool IsContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

/// The begin of `text` that has `count` characters.
std::string FirstCharacters(const std::string& text, std::size_t count) {
    std::size_t end = 0;
    for (; end < text.size(); ++end)
        if (!IsContinuation(text[end]) && count-- == 0) break;
    return text.substr(0, end);
}

std::size_t CharacterCount(const std::string& text) {
    std::size_t count = 0;
    for (const char byte : text)
        if (!IsContinuation(byte)) ++count;
    return count;
}

}  // namespace

void clsAutoComplete::SetCompleteTextbox(TextBox& textBox) {
    textBox_ = &textBox;
    textBox.onKeyUp = [this](int keyCode) { KeyReleased(keyCode); };
}

void clsAutoComplete::KeyReleased(int keyCode) {
    if (keyCode < FirstCode || keyCode == BackspaceCode) return;
    const std::string text = textBox_->Text();
    if (!ContainsText(SearchList, text)) return;
    for (const std::string& piece : Split(SearchList, Delimeter)) {
        const std::string entry = Trim(piece);
        if (Matches(entry, text)) return Offer(entry, text);
    }
}

/// The text may stand anywhere in the entry, as long as both begin with the same letter.
bool clsAutoComplete::Matches(const std::string& entry, const std::string& text) const {
    return !text.empty() && ContainsText(entry, text) &&
           EqualText(FirstCharacters(entry, 1), FirstCharacters(text, 1));
}

/// The letters typed stay as they were typed.
void clsAutoComplete::Offer(const std::string& entry, const std::string& text) {
    const std::size_t typed = FirstCharacters(entry, CharacterCount(text)).size();
    const std::string rest = entry.substr(typed);
    textBox_->SetText(text + rest);
    textBox_->Select(text.size(), rest.size());
}

}  // namespace mailvane
