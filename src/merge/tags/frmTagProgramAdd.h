#pragma once

#include "core/Workbench.h"
#include "merge/tags/ProgramTag.h"

namespace mailvane {

/// Edits one tag of frmTagProgram.
class frmTagProgramAdd final : public WorkbenchForm {
public:
    explicit frmTagProgramAdd(Workbench& wb);

    TextBox txtProgram{*this, "txtProgram"};
    Button cmdBrowseProgram{*this, "cmdBrowseProgram", [this] { Browse(txtProgram, false); }};
    TextBox txtCommand{*this, "txtCommand"};
    OptionButton optWaitExit{*this, "optWaitExit", true};
    OptionButton optWaitSec{*this, "optWaitSec"};
    TextBox txtSeconds{*this, "txtSeconds", "1"};
    Slider UpDown1{*this, "UpDown1", 0, 600, 1};
    CheckBox chkInclude{*this, "chkInclude"};
    TextBox txtResult{*this, "txtResult"};
    Button cmdBrowse{*this, "cmdBrowse", [this] { Browse(txtResult, true); }};
    CheckBox chkDelete{*this, "chkDelete"};
    Button cmdOk{*this, "cmdOk", [this] { Store(); }};
    Button cmdCancel{*this, "cmdCancel", [this] { Unload(); }};

    /// A new tag keeps the values of an empty dialog.
    void Begin(const ProgramTagRecord& tag);

private:
    void SetTips();
    void EnableFields();
    void FollowSeconds();
    void Browse(TextBox& field, bool save);
    bool Check();
    void TakeValues();
    void Store();
    ProgramTagRecord tag_;
};

}  // namespace mailvane
