#pragma once

#include <string>

#include "core/Workbench.h"

namespace mailvane {

/// A small message that the user need not see again: its check box is kept in the user settings,
/// and ticked there it closes at once when it is opened.
class NoticeForm : public WorkbenchForm {
protected:
    /// `key` in section Messages keeps `again`, the form's own check box.
    NoticeForm(Workbench& wb, std::string name, std::string caption, const char* key,
               CheckBox& again);
    void OnLoad() override;
    void OnUnload() override;
    /// What happens instead of showing it.
    virtual void Skip() { Unload(); }

private:
    const char* key_;
    CheckBox& again_;
};

/// A notice that asks; the answer is left in DialogAnswer. The close box says No.
class NoticeQuestion : public NoticeForm {
public:
    Label lblText{*this, "lblText"};
    CheckBox Check1{*this, "Check1"};
    Button cmdYes{*this, "cmdYes", [this] { Answer(true); }};
    Button cmdNo{*this, "cmdNo", [this] { Answer(false); }};

    void OnCloseBox() override { Answer(false); }

protected:
    /// `skipped` is the answer of a user who does not want to be asked.
    NoticeQuestion(Workbench& wb, std::string name, std::string caption, const char* key,
                   bool skipped);
    void Skip() override { Answer(skipped_); }

private:
    void Answer(bool yes);
    bool skipped_;
};

}  // namespace mailvane
