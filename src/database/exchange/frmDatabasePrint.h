#pragma once

#include <array>

#include "core/Workbench.h"

namespace mailvane {

/// What is to be printed of the view's table, and how.
class frmDatabasePrint final : public WorkbenchForm {
public:
    explicit frmDatabasePrint(Workbench& wb);

    OptionButton optPrint0{*this, "optPrint0"};        ///< the current row
    OptionButton optPrint1{*this, "optPrint1", true};  ///< all rows
    OptionButton optPrint2{*this, "optPrint2"};        ///< the rows that are not selected
    OptionButton optPrint3{*this, "optPrint3"};        ///< the selected rows
    CheckBox chkHeader{*this, "chkHeader", true};
    ComboBox cmbHeader{*this, "cmbHeader"};
    CheckBox chkFooter{*this, "chkFooter", true};
    ComboBox cmbFooter{*this, "cmbFooter"};
    CheckBox chkGrid{*this, "chkGrid", true};
    ComboBox cmbGrid{*this, "cmbGrid"};
    CheckBox chkColors{*this, "chkColors"};
    CheckBox chkSetup{*this, "chkSetup"};
    CheckBox chkPrint{*this, "chkPrint", true};
    Button cmdPreview{*this, "cmdPreview", [this] { Print(true); }};
    Button cmdAdd{*this, "cmdAdd", [this] { Print(false); }};
    Button cmdCancel{*this, "cmdCancel", [this] { Unload(); }};

private:
    void Print(bool preview);
    std::string LineText(const CheckBox& shown, const ComboBox& kind) const;
};

}  // namespace mailvane
