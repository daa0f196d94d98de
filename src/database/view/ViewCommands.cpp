#include "core/text/Text.h"
#include "database/exchange/frmDataWizard.h"
#include "database/view/ViewTools.h"
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
    ActiveBar1.onTool = [this](const Tool& tool) { RunViewCommand(tool.name); };
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
    DisableToolsWithoutWork(*this);
}

void frmViewDatabase::RunViewCommand(const std::string& toolName) {
    if (Held() || suspended_ > 0) return;
    if (const std::string tool = ToolOfKey(toolName); !tool.empty()) {
        if (tool == "Previous Table")
            StepTable(-1);
        else if (tool == "Next Table")
            StepTable(1);
        else
            ActiveBar1.Press(tool);
    } else if (Button* button = ButtonOfTool(*this, toolName)) {
        button->Press();
    } else if (toolName == "New Database") {
        RunWizard(DataWizardMode::NewDatabase);
    } else if (toolName == "Import") {
        RunWizard(DataWizardMode::Import);
    } else if (toolName == "Export") {
        RunWizard(DataWizardMode::Export);
    } else if (Data1.Recordset()) {
        RunRecordCommand(toolName);
    }
}

void frmViewDatabase::RunWizard(DataWizardMode mode) {
    StartDataWizard(wb_, mode);
    if (IsLoaded()) cmdRefresh.Press();
}

void frmViewDatabase::RunRecordCommand(const std::string& toolName) {
    const std::size_t rows = Grid1.RowCount();
    const std::size_t row = Grid1.CurrentRow().value_or(0);
    if (toolName == "Sort Ascending")
        SortAs("ASC");
    else if (toolName == "Sort Descending")
        SortAs("DESC");
    else if (toolName == "Select All")
        SelectAllRows();
    else if (toolName == "Insert")
        InsertRow();
    else if (toolName == "Copy to clipboard")
        Grid1.CopyToClipboard();
    else if (toolName == "Paste from clipboard")
        Grid1.PasteFromClipboard();
    else if (toolName == "Find")
        ShowFind();
    else if (rows == 0)
        return;
    else if (toolName == "First")
        Grid1.SetCurrentRow(0);
    else if (toolName == "Last")
        Grid1.SetCurrentRow(rows - 1);
    else if (toolName == "Next" && row + 1 < rows)
        Grid1.SetCurrentRow(row + 1);
    else if (toolName == "Previous" && row > 0)
        Grid1.SetCurrentRow(row - 1);
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
