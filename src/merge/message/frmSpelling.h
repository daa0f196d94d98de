#pragma once

#include <optional>

#include "core/Workbench.h"
#include "merge/message/SpellingRun.h"

namespace mailvane {

/// Asks what to do with each unknown word of a text, one after another.
class frmSpelling final : public WorkbenchForm {
public:
    explicit frmSpelling(Workbench& wb);

    Label lblWord{*this, "lblWord"};
    TextBox txtChange{*this, "txtChange"};
    ListBox lstSuggestions{*this, "lstSuggestions"};
    Button cmdIgnore{*this, "cmdIgnore", [this] { ShowNext(); }};
    Button cmdIgnoreAll{*this, "cmdIgnoreAll", [this] { IgnoreAll(); }};
    Button cmdAdd{*this, "cmdAdd", [this] { AddWord(); }};
    Button cmdChange{*this, "cmdChange", [this] { Change(false); }};
    Button cmdChangeAll{*this, "cmdChangeAll", [this] { Change(true); }};
    Button cmdCancel{*this, "cmdCancel", [this] { Hide(); }};

    /// Goes through the text of `body`, where the word in question is selected, and returns the
    /// text with the changes made; empty when the user gave up with none made. Shows itself only
    /// when there is something to ask.
    std::optional<std::string> Check(RichTextBox& body, SpellChecker& checker);
    void OnCloseBox() override { Hide(); }

private:
    void ShowNext();
    void Change(bool all);
    void IgnoreAll();
    void AddWord();
    RichTextBox* body_ = nullptr;
    SpellChecker* checker_ = nullptr;
    std::optional<SpellingRun> run_;
    bool finished_ = false;
};

/// Checks the spelling of a message's text: the command of that name. Messages to the user
/// included.
void CheckSpelling(Workbench& wb, RichTextBox& body);

}  // namespace mailvane
