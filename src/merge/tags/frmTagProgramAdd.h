#pragma once

#include "merge/tags/ProgramTag.h"
#include "merge/tags/TagEditor.h"
#include "merge/tags/frmTagProgram.h"

namespace mailvane {

/// Edits one tag of frmTagProgram.
class frmTagProgramAdd final : public TagEditor<ProgramTagRecord, frmTagProgram> {
public:
    explicit frmTagProgramAdd(Workbench& wb);

    TextBox txtProgram{*this, "txtProgram"};
    Button cmdBrowseProgram{*this, "cmdBrowseProgram", [this] { BrowseFor(txtProgram, false); }};
    TextBox txtCommand{*this, "txtCommand"};
    OptionButton optWaitExit{*this, "optWaitExit", true};
    OptionButton optWaitSec{*this, "optWaitSec"};
    TextBox txtSeconds{*this, "txtSeconds", "1"};
    Slider UpDown1{*this, "UpDown1", 0, 600, 1};
    CheckBox chkInclude{*this, "chkInclude"};
    TextBox txtResult{*this, "txtResult"};
    Button cmdBrowse{*this, "cmdBrowse", [this] { BrowseFor(txtResult, true); }};
    CheckBox chkDelete{*this, "chkDelete"};
    Button cmdOk{*this, "cmdOk", [this] { Store(); }};
    Button cmdCancel{*this, "cmdCancel", [this] { Unload(); }};

protected:
    void ShowValues(const Record& tag) override;
    bool Check() override;
    void TakeValues(Record& tag) override;

private:
    void SetTips();
    void EnableFields();
    void FollowSeconds();
};

}  // namespace mailvane
