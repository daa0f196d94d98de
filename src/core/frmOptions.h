#pragma once

#include "core/Workbench.h"

namespace mailvane {

/// The program's live options: its controls hold them as long as the program runs.
class frmOptions final : public WorkbenchForm {
public:
    explicit frmOptions(Workbench& wb);

    CheckBox chkLoad{*this, "chkLoad"};
    CheckBox chkSave{*this, "chkSave"};
    CheckBox chkUpgrade{*this, "chkUpgrade"};
    CheckBox chkWelcome{*this, "chkWelcome"};
    CheckBox chkCompactMessages{*this, "chkCompactMessages"};
    CheckBox chkCompactDatabase{*this, "chkCompactDatabase"};
    CheckBox chkPopUp{*this, "chkPopUp"};

protected:
    void OnLoad() override;
};

}  // namespace mailvane
