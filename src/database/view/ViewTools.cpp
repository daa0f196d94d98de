#include "database/view/ViewTools.h"

#include <algorithm>
#include <iterator>

#include "core/commands/ToolTable.h"

namespace mailvane {

namespace {

constexpr ToolRow Tools[] = {
    {"New Database", "Ne&w Database...", "Make a new database", "document-new", "Alt+W"},
    {"Import", "I&mport...", "Import a file into a table", "document-import", "Alt+M"},
    {"Export", "E&xport...", "Export the table to a file", "document-export", "Alt+X"},
    {"Print", "&Print...", "Print the table", "document-print", "Ctrl+P"},
    {"Refresh", "R&efresh", "Read the table again", "view-refresh", "Alt+E"},
    {"First", "&First", "Go to the first record", "go-first"},
    {"Previous", "P&revious", "Go to the previous record", "go-previous"},
    {"Next", "&Next", "Go to the next record", "go-next"},
    {"Last", "&Last", "Go to the last record", "go-last"},
    {"Insert", "&Insert", "Add an empty record", "list-add", "Ins"},
    {"Delete", "&Delete", "Delete the selected records", "list-remove"},
    {"Select All", "Select &All", "Select all records", "edit-select-all"},
    {"Copy to clipboard", "&Copy", "Copy the selected records", "edit-copy"},
    {"Paste from clipboard", "&Paste", "Paste from the current cell on", "edit-paste"},
    {"Sort Ascending", "Sort A&scending", "Sort by this column", "view-sort-ascending"},
    {"Sort Descending", "Sort Des&cending", "Sort by this column, backwards",
     "view-sort-descending"},
    {"Find", "Fin&d...", "Find a record that holds a text", "edit-find", "Ctrl+F"},
    {"Filter", "Fil&ter...", "Filter the records", "view-filter", "Ctrl+L"},
    {"Filter through text file", "Filter through text &file...", "Remove addresses named in a file",
     "view-filter"},
    {"Compare tables", "&Compare tables...", "Compare two tables", "view-split-left-right"},
    {"Clean up table", "C&lean up table...", "Repair e-mail addresses", "edit-clear"},
    {"Remove duplicates", "Remove &duplicates...", "Remove records that repeat", "edit-delete"},
    {"Remove duplicate recipients", "Remove duplicate &recipients...",
     "Remove addresses that repeat", "edit-delete"},
    {"Remove domains", "Remove d&omains...", "Remove the addresses of domains", "edit-delete"},
    {"Mailing lists", "&Mailing lists...", "Mailing lists with autoresponders", "contact-new"},
    {"New Table", "&New Table...", "Make a new table", "table", "Alt+N"},
    {"Edit Table", "&Edit Table...", "Change the columns of the table", "document-edit"},
    {"Rename Table", "&Rename Table...", "Give the table another name", "edit-rename"},
    {"Delete Table", "&Delete Table...", "Delete the table with its records", "edit-delete"},
    {"New Column", "New &Column...", "Add a column to the table", "edit-table-insert-column-right"},
    {"Rename Column", "Rena&me Column...", "Give the column another name", "edit-rename"},
    {"Delete Column", "De&lete Column...", "Delete the column with its values",
     "edit-table-delete-column"},
    {"Backup table", "&Backup table...", "Copy the table as a back-up", "edit-copy"},
    {"Clone entire table", "Clone entire &table...", "Copy the table", "edit-copy"},
    {"Clone selected records", "Clone &selected records...", "Copy the selected records",
     "edit-copy"},
    {"Copy selected records to existing table", "Copy selected records to &existing table...",
     "Copy the selected records", "edit-copy"},
    {"Copy selected records to new table", "Copy selected records to &new table...",
     "Copy the selected records", "edit-copy"},
    {"Move selected records to existing table", "Move selected records to e&xisting table...",
     "Move the selected records", "edit-cut"},
    {"Move selected records to new table", "Move selected records to ne&w table...",
     "Move the selected records", "edit-cut"},
    {"Repair", "Re&pair Database", "Repair the database file", "tools-report-bug"},
    {"Compact", "C&ompact Database", "Compact the database file", "archive-insert"},
};

struct ToolButton {
    const char* tool;
    Button frmViewDatabase::*button;
};

constexpr ToolButton Buttons[] = {
    {"Refresh", &frmViewDatabase::cmdRefresh},
    {"Print", &frmViewDatabase::cmdPrint},
    {"Delete", &frmViewDatabase::cmdDeleteSelected},
    {"Filter", &frmViewDatabase::cmdFilter},
    {"Filter through text file", &frmViewDatabase::cmdFilterText},
    {"Compare tables", &frmViewDatabase::cmdCompare},
    {"Clean up table", &frmViewDatabase::cmdCleanUp},
    {"Remove duplicates", &frmViewDatabase::cmdRemoveDuplicates},
    {"Remove duplicate recipients", &frmViewDatabase::cmdRemoveRecipients},
    {"Remove domains", &frmViewDatabase::cmdRemoveDomains},
    {"Mailing lists", &frmViewDatabase::cmdMailingLists},
    {"New Table", &frmViewDatabase::cmdNewFolder},
    {"Edit Table", &frmViewDatabase::cmdEditTable},
    {"Rename Table", &frmViewDatabase::cmdRenameFolder},
    {"Delete Table", &frmViewDatabase::cmdDeleteFolder},
    {"New Column", &frmViewDatabase::cmdNewColumn},
    {"Rename Column", &frmViewDatabase::cmdRenameColumn},
    {"Delete Column", &frmViewDatabase::cmdDeleteColumn},
    {"Backup table", &frmViewDatabase::cmdBackup},
    {"Clone entire table", &frmViewDatabase::cmdCloneTable},
    {"Clone selected records", &frmViewDatabase::cmdCloneRecords},
    {"Copy selected records to existing table", &frmViewDatabase::cmdCopyToExisting},
    {"Copy selected records to new table", &frmViewDatabase::cmdCopyToNew},
    {"Move selected records to existing table", &frmViewDatabase::cmdMoveToExisting},
    {"Move selected records to new table", &frmViewDatabase::cmdMoveToNew},
    {"Repair", &frmViewDatabase::cmdRepair},
    {"Compact", &frmViewDatabase::cmdCompact},
};

/// Keys of the window besides the shortcuts that the tools show.
struct WindowKey {
    const char* key;
    const char* tool;
};

constexpr WindowKey Keys[] = {
    {"Alt+D", "Find"},
    {"Alt+L", "Filter"},
    {"Alt+P", "Print"},
    {"Alt+Up", "Previous Table"},
    {"Alt+Left", "Previous Table"},
    {"Alt+Down", "Next Table"},
    {"Alt+Right", "Next Table"},
};

void AddMenus(ActiveBar& bar) {
    using Kind = Band::Kind;
    const Band bands[] = {
        {Kind::SubMenu,
         "CopyRecords",
         "Copy and move",
         {"Clone selected records", "Copy selected records to existing table",
          "Copy selected records to new table", "-", "Move selected records to existing table",
          "Move selected records to new table"}},
        {Kind::Menu,
         "TableMenu",
         "Table",
         {"New Table", "Edit Table", "Rename Table", "Delete Table", "-", "New Column",
          "Rename Column", "Delete Column", "-", "Backup table", "Clone entire table", "-",
          "Repair", "Compact"}},
        {Kind::Menu,
         "RecordsMenu",
         "Records",
         {"Insert", "Delete", "Select All", "-", "Copy to clipboard", "Paste from clipboard", "-",
          ">CopyRecords", "-", "Sort Ascending", "Sort Descending", "Find"}},
        {Kind::Menu,
         "ToolsMenu",
         "Tools",
         {"Filter", "Filter through text file", "Compare tables", "Clean up table", "-",
          "Remove duplicates", "Remove duplicate recipients", "Remove domains", "-",
          "Mailing lists"}},
        {Kind::Popup,
         "Edit",
         "Edit",
         {"Copy to clipboard", "Paste from clipboard", "-", "Insert", "Delete", "Select All", "-",
          ">CopyRecords", "-", "Sort Ascending", "Sort Descending", "Find"}},
    };
    for (const Band& band : bands)
        bar.AddBand(band);
}

}  // namespace

void AddViewTools(ActiveBar& bar) {
    AddTools(bar, Tools);
    for (const WindowKey& key : Keys)
        bar.AddTool({.name = key.key, .caption = key.tool, .shortcut = key.key});
    AddMenus(bar);
    bar.AddBand({Band::Kind::ToolBar,
                 "Table",
                 "Table",
                 {"New Database", "Import", "Export", "Print", "-", "Refresh", "-", "First",
                  "Previous", "Next", "Last", "-", "Insert", "Delete", "-", "Sort Ascending",
                  "Sort Descending", "Find", "Filter"}});
}

Button* ButtonOfTool(frmViewDatabase& view, const std::string& toolName) {
    const auto row = std::find_if(std::begin(Buttons), std::end(Buttons),
                                  [&](const ToolButton& one) { return one.tool == toolName; });
    return row == std::end(Buttons) ? nullptr : &(view.*row->button);
}

void DisableToolsWithoutWork(frmViewDatabase& view) {
    for (const ToolButton& row : Buttons) {
        const Tool* tool = view.ActiveBar1.FindTool(row.tool);
        if ((view.*row.button).onClick || !tool || !tool->enabled) continue;
        view.ActiveBar1.SetToolEnabled(row.tool, false);
        view.ActiveBar1.SetToolTip(row.tool, tool->tip + ". " + LaterTip);
    }
}

std::string ToolOfKey(const std::string& key) {
    const auto row = std::find_if(std::begin(Keys), std::end(Keys),
                                  [&](const WindowKey& one) { return one.key == key; });
    return row == std::end(Keys) ? std::string() : row->tool;
}

}  // namespace mailvane
