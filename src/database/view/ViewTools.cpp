#include "core/commands/ToolTable.h"
#include "database/exchange/frmDataWizard.h"
#include "database/view/frmViewDatabase.h"

namespace mailvane {

namespace {

using Kind = Band::Kind;

/// The tools that work on the table come from where that work is done.
const Band Bands[] = {
    {Kind::SubMenu,
     "CopyRecords",
     "Copy and move",
     {"Clone selected records", "Copy selected records to existing table",
      "Copy selected records to new table", "-", "Move selected records to existing table",
      "Move selected records to new table"}},
    {Kind::Menu,
     "TableMenu",
     "Table",
     {"New Table", "Edit Table", "Rename Table", "Delete Table", "-", "New Column", "Rename Column",
      "Delete Column", "-", "Backup table", "Clone entire table", "-", "Repair", "Compact"}},
    {Kind::Menu,
     "RecordsMenu",
     "Records",
     {"Insert", "Delete", "Select All", "-", "Copy to clipboard", "Paste from clipboard", "-",
      ">CopyRecords", "-", "Sort Ascending", "Sort Descending", "Find"}},
    {Kind::Menu,
     "ToolsMenu",
     "Tools",
     {"Filter", "Filter through text file", "Compare tables", "Clean up table", "-",
      "Remove duplicates", "Remove duplicate recipients", "Remove domains", "-", "Mailing lists"}},
    {Kind::Popup,
     "Edit",
     "Edit",
     {"Copy to clipboard", "Paste from clipboard", "-", "Insert", "Delete", "Select All", "-",
      ">CopyRecords", "-", "Sort Ascending", "Sort Descending", "Find"}},
    {Kind::ToolBar,
     "Table",
     "Table",
     {"New Database", "Import", "Export", "Print", "-", "Refresh", "-", "First", "Previous", "Next",
      "Last", "-", "Insert", "Delete", "-", "Sort Ascending", "Sort Descending", "Find", "Filter"}},
};

}  // namespace

void frmViewDatabase::AddViewTools() {
    using View = frmViewDatabase;
    const ToolRow<View> tools[] = {
        {"New Database", "Ne&w Database...", "Make a new database", "document-new", "Alt+W",
         [](View& view) { view.RunWizard(DataWizardMode::NewDatabase); }},
        {"Import", "I&mport...", "Import a file into a table", "document-import", "Alt+M",
         [](View& view) { view.RunWizard(DataWizardMode::Import); }},
        {"Export", "E&xport...", "Export the table to a file", "document-export", "Alt+X",
         [](View& view) { view.RunWizard(DataWizardMode::Export); }},
        {"Refresh", "R&efresh", "Read the table again", "view-refresh", "Alt+E",
         [](View& view) { view.cmdRefresh.Press(); }},
        {"First", "&First", "Go to the first record", "go-first", "",
         [](View& view) { view.GoTo(0); }},
        {"Previous", "P&revious", "Go to the previous record", "go-previous", "",
         [](View& view) { view.GoTo(view.CurrentRow() - 1); }},
        {"Next", "&Next", "Go to the next record", "go-next", "",
         [](View& view) { view.GoTo(view.CurrentRow() + 1); }},
        {"Last", "&Last", "Go to the last record", "go-last", "",
         [](View& view) { view.GoTo(view.Grid1.EntryCount() - 1); }},
        {"Insert", "&Insert", "Add an empty record", "list-add", "Ins",
         [](View& view) { view.InsertRow(); }},
        {"Delete", "&Delete", "Delete the selected records", "list-remove", "",
         [](View& view) { view.cmdDeleteSelected.Press(); }},
        {"Select All", "Select &All", "Select all records", "edit-select-all", "",
         [](View& view) { view.SelectAllRows(); }},
        {"Copy to clipboard", "&Copy", "Copy the selected records", "edit-copy", "",
         [](View& view) { view.Grid1.CopyToClipboard(); }},
        {"Paste from clipboard", "&Paste", "Paste from the current cell on", "edit-paste", "",
         [](View& view) { view.Grid1.PasteFromClipboard(); }},
        {"Sort Ascending", "Sort A&scending", "Sort by this column", "view-sort-ascending", "",
         [](View& view) { view.SortAs("ASC"); }},
        {"Sort Descending", "Sort Des&cending", "Sort by this column, backwards",
         "view-sort-descending", "", [](View& view) { view.SortAs("DESC"); }},
        {"Find", "Fin&d...", "Find a record that holds a text", "edit-find", "Ctrl+F",
         [](View& view) { view.ShowFind(); }},
    };
    AddTools(*this, tools);
    for (const Band& band : Bands)
        ActiveBar1.AddBand(band);
}

/// Keys of the window besides the shortcuts that the tools show.
void frmViewDatabase::AddKeys() {
    const auto add = [this](const char* key, std::function<void()> work) {
        ActiveBar1.AddTool({.name = key, .shortcut = key, .onClick = std::move(work)});
    };
    constexpr std::pair<const char*, const char*> tools[] = {
        {"Alt+D", "Find"}, {"Alt+L", "Filter"}, {"Alt+P", "Print"}};
    for (const auto& [key, tool] : tools)
        add(key, [this, name = tool] { ActiveBar1.Press(name); });
    constexpr std::pair<const char*, int> steps[] = {
        {"Alt+Up", -1}, {"Alt+Left", -1}, {"Alt+Down", 1}, {"Alt+Right", 1}};
    for (const auto& [key, step] : steps)
        add(key, [this, step = step] { StepTable(step); });
}

}  // namespace mailvane
