#pragma once

#include <string>

#include "core/Workbench.h"

namespace mailvane {

/// Chooses a table of the recipients database, and lets the user make, rename and delete tables on
/// the way. Stays loaded, so that the choice is offered again.
class frmDatabaseCopy final : public WorkbenchForm {
public:
    explicit frmDatabaseCopy(Workbench& wb);

    ListBox List1{*this, "List1"};
    Button cmdOk{*this, "cmdOk", [this] { Accept(); }};
    Button cmdCancel{*this, "cmdCancel", [this] { Cancel(); }};
    Button cmdNew{*this, "cmdNew", [this] { NewTable(); }};
    Button cmdDelete{*this, "cmdDelete"};
    Button cmdRename{*this, "cmdRename"};

    void OnCloseBox() override { Cancel(); }

    /// Shows it and waits for the choice; "" when the user cancels.
    std::string Choose();

private:
    void FillList();
    bool ShowChosen();
    void Accept();
    void Cancel();
    void NewTable();
    void ChangeChosen(bool remove);
    std::string chosen_;
};

}  // namespace mailvane
