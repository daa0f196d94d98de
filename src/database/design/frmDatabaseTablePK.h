#pragma once

#include <string>
#include <vector>

#include "core/Workbench.h"

namespace mailvane {

/// Asks for the primary key of a new table: a column of it, a numbered column more, or none. Stays
/// loaded after its answer, for the designer to read.
class frmDatabaseTablePK final : public WorkbenchForm {
public:
    explicit frmDatabaseTablePK(Workbench& wb);

    OptionButton Option1{*this, "Option1", true};
    ComboBox txtPrimaryKey{*this, "txtPrimaryKey", ComboBox::Style::Editable};
    OptionButton optNoPrimaryKey{*this, "optNoPrimaryKey"};
    Grid Grid1{*this, "Grid"};
    Button Command1{*this, "Command1", [this] { Answer(true); }};
    Button Command2{*this, "Command2", [this] { Answer(false); }};

    void OnCloseBox() override { Answer(false); }

    /// The columns that the new table has so far.
    void Offer(const std::vector<std::string>& columns);
    bool Accepted() const { return accepted_; }
    /// The column that becomes the key; "" for none.
    std::string PrimaryKey() const;

private:
    void Answer(bool accepted);
    bool accepted_ = false;
};

}  // namespace mailvane
