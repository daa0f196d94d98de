#pragma once

#include "core/Workbench.h"
#include "merge/tags/CgiTag.h"

namespace mailvane {

/// Edits one tag of frmTagCGI.
class frmTagCGIAdd final : public WorkbenchForm {
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
    Button cmdBrowse{*this, "cmdBrowse", [this] { Browse(); }};
    Button cmdOk{*this, "cmdOk", [this] { Store(); }};
    Button cmdCancel{*this, "cmdCancel", [this] { Unload(); }};

    /// A new tag keeps the values of an empty dialog.
    void Begin(const CgiTagRecord& tag);

private:
    void SetTips();
    void EnableFields();
    void ChooseMethod(const std::string& method);
    void Browse();
    bool Check();
    void TakeValues();
    void Store();
    CgiTagRecord tag_;
};

}  // namespace mailvane
