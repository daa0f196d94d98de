#pragma once

#include "core/Workbench.h"
#include "core/records/DataControl.h"

namespace mailvane {

/// The mail view: the folders and their messages. Loaded hidden at start; holds the store open.
class frmViewEmail final : public WorkbenchForm {
public:
    explicit frmViewEmail(Workbench& wb);

    ActiveBar ActiveBar1{*this, "ActiveBar1"};
    ComboBox cmbFolder{*this, "cmbFolder"};
    Panel pnlTable{*this, "pnlTable"};
    Grid EmailGrid{*this, "EmailGrid"};
    TextBox txtPreview{*this, "txtPreview"};
    Button cmdRefresh{*this, "cmdRefresh", Button::HiddenButton};

    DataControl DataEmail;

    void OnCloseBox() override { Hide(); }

protected:
    void OnLoad() override;
    bool OnQueryUnload() override { return MayUnload(wb_, *this, Holds::Store); }
    void OnUnload() override;

private:
    void BuildBar();
    void OpenStore(const DaoError& made);
    void FillFolders();
    void ShowFolder();
    void Refresh();
    void ChooseColumns(const std::vector<GridColumn>& before);
    void Preview();
    bool filling_ = false;
};

}  // namespace mailvane
