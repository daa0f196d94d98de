#include "core/text/Text.h"
#include "database/exchange/frmDataWizard.h"
#include "database/view/frmViewDatabase.h"

namespace mailvane {

namespace {

/// Tools that need rows or columns on the screen.
constexpr const char* TableTools[] = {"First",
                                      "Previous",
                                      "Next",
                                      "Last",
                                      "Insert",
                                      "Select All",
                                      "Find",
                                      "Sort Ascending",
                                      "Sort Descending",
                                      "Delete",
                                      "Copy to clipboard",
                                      "Paste from clipboard"};

}  // namespace

void frmViewDatabase::AttachCommands() {
    AddViewTools();
    AddKeys();
    ActiveBar1.takesClicks = [this] { return !Held() && suspended_ == 0; };
    cmdRefresh.onClick = [this] { Refresh(); };
    cmdDeleteSelected.onClick = [this] { DeleteSelectedRows(false); };
    cmdDeleteSelectedNoStatus.onClick = [this] { DeleteSelectedRows(true); };
    Grid1.onSelectionChange = [this] { ShowRecordCount(); };
    Grid1.onKey = [this](const std::string& key) { return RunGridKey(key); };
    Grid1.onContextMenu = [this] { Windows().PopupMenu(*this, "Edit"); };
    Grid1.onCellEdit = [this](std::size_t row, std::size_t column, const std::string& text) {
        return EditCell(row, column, text);
    };
    Grid1.onCopy = [this] { return CopyRows(); };
    Grid1.onPaste = [this](const std::string& text) { PasteBlock(text); };
    Grid1.onHeadClick = [this](std::size_t column) { SortGridByColumn(column); };
}

/// What there is to see and to press, with a table and without one.
void frmViewDatabase::ShowStates() {
    const bool shown = Data1.Recordset() != nullptr;
    lblEmpty.SetVisible(!shown);
    Grid1.SetVisible(shown);
    for (const char* tool : TableTools)
        ActiveBar1.SetToolEnabled(tool, shown);
}

void frmViewDatabase::RunViewCommand(const std::string& toolName) {
    ActiveBar1.Press(toolName);
}

void frmViewDatabase::RunWizard(DataWizardMode mode) {
    StartDataWizard(wb_, mode);
    if (IsLoaded()) cmdRefresh.Press();
}

int frmViewDatabase::CurrentRow() const {
    return static_cast<int>(Grid1.CurrentRow().value_or(0));
}

/// Nothing when there is no such row.
void frmViewDatabase::GoTo(int row) {
    if (row >= 0 && row < Grid1.EntryCount()) Grid1.SetCurrentRow(static_cast<std::size_t>(row));
}

bool frmViewDatabase::RunGridKey(const std::string& key) {
    if (key == "Del")
        RunViewCommand("Delete");
    else if (key == "Ctrl+A")
        RunViewCommand("Select All");
    else
        return false;
    return true;
}

/// The table before or behind the current one in the list; nothing at its ends.
void frmViewDatabase::StepTable(int step) {
    const int place = cmbTable.ListIndex() + step;
    if (place < 0 || place >= cmbTable.Count()) return;
    cmbTable.SetListIndex(place);
}

}  // namespace mailvane
