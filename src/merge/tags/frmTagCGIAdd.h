#pragma once

#include "merge/tags/CgiTag.h"
#include "merge/tags/TagEditor.h"
#include "merge/tags/frmTagCGI.h"

namespace mailvane {

/// Edits one tag of frmTagCGI.
class frmTagCGIAdd final : public TagEditor<CgiTagRecord, frmTagCGI> {
public:
    explicit frmTagCGIAdd(Workbench& wb);

    TextBox txtCGI{*this, "txtCGI", "http://"};
    TextBox txtQuery{*this, "txtQuery"};
    TextBox txtReferer{*this, "txtReferer"};
    OptionButton optGET{*this, "optGET", true};
    OptionButton optPOST{*this, "optPOST"};
    OptionButton optHEAD{*this, "optHEAD"};
    CheckBox chkInclude{*this, "chkInclude"};
    CheckBox chkSave{*this, "chkSave"};
    TextBox txtResult{*this, "txtResult"};
    Button cmdBrowse{*this, "cmdBrowse", [this] { BrowseFor(txtResult, true); }};
    Button cmdOk{*this, "cmdOk", [this] { Store(); }};
    Button cmdCancel{*this, "cmdCancel", [this] { Unload(); }};

protected:
    void ShowValues(const Record& tag) override;
    bool Check() override;
    void TakeValues(Record& tag) override;

private:
    void SetTips();
    void EnableFields();
    void ChooseMethod(const std::string& method);
};

}  // namespace mailvane
