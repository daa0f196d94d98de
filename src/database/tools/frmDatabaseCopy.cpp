#include "database/tools/frmDatabaseCopy.h"

#include "core/MessageBoxes.h"
#include "database/view/frmViewDatabase.h"

namespace mailvane {

frmDatabaseCopy::frmDatabaseCopy(Workbench& wb)
    : WorkbenchForm(wb, "frmDatabaseCopy", "Select table") {
    cmdDelete.onClick = [this] { ChangeChosen(true); };
    cmdRename.onClick = [this] { ChangeChosen(false); };
    List1.onDoubleClick = [this] { Accept(); };
}

std::string frmDatabaseCopy::Choose() {
    FillList();
    List1.SetListIndex(chosen_.empty() ? -1 : List1.IndexOf(chosen_));
    ShowModalDialog(wb_, *this);
    return chosen_;
}

void frmDatabaseCopy::FillList() {
    List1.SetItems(wb_.forms.Get<frmViewDatabase>().cmbTable.Items());
}

void frmDatabaseCopy::Accept() {
    if (List1.ListIndex() < 0) return Tell(wb_, "Please select table. Just click on its name.");
    chosen_ = List1.Text();
    Hide();
}

void frmDatabaseCopy::Cancel() {
    chosen_.clear();
    Hide();
}

/// The view shows the chosen table; false when none is chosen.
bool frmDatabaseCopy::ShowChosen() {
    if (List1.ListIndex() < 0) return false;
    auto& view = wb_.forms.Get<frmViewDatabase>();
    view.Data1.RecordSource = List1.Text();
    const DaoError shown = view.Data1.Refresh();
    if (shown.Failed()) Tell(wb_, shown.description, BoxIcon::Exclamation);
    return shown.Ok();
}

void frmDatabaseCopy::NewTable() {
    if (List1.ListIndex() >= 0 && !ShowChosen()) return;
    wb_.forms.Get<frmViewDatabase>().cmdNewFolder.Press();
    FillList();
}

void frmDatabaseCopy::ChangeChosen(bool remove) {
    if (List1.ListIndex() < 0) return Tell(wb_, "Select the table. ", BoxIcon::Critical);
    if (!ShowChosen()) return;
    auto& view = wb_.forms.Get<frmViewDatabase>();
    (remove ? view.cmdDeleteFolder : view.cmdRenameFolder).Press();
    FillList();
}

}  // namespace mailvane
