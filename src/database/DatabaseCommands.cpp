#include "database/DatabaseCommands.h"

#include "database/design/TableStructure.h"
#include "database/exchange/TablePrint.h"
#include "database/exchange/frmDataWizard.h"
#include "database/tools/RowCopies.h"
#include "database/tools/TableCopies.h"
#include "database/upkeep/DatabaseUpkeep.h"
#include "database/view/frmViewDatabase.h"

namespace mailvane {

namespace {

using View = frmViewDatabase;

template <StructureAction action>
void Structure(Workbench& wb, View& view) {
    EditTableStructure(wb, view, action);
}

template <MaintainAction action>
void Maintain(Workbench& wb, View&) {
    MaintainDatabase(wb, action);
}

template <CopyTarget target>
void CopyRows(Workbench& wb, View& view) {
    CopyRowsToTable(wb, view, target);
}

template <CopyTarget target>
void MoveRows(Workbench& wb, View& view) {
    MoveRowsToTable(wb, view, target);
}

void BackUp(Workbench& wb, View& view) {
    MakeTableCopy(wb, view, "Make backup", view.Data1.CurrentTable() + "_Backup");
}

void Clone(Workbench& wb, View& view) {
    MakeTableCopy(wb, view, "Clone entire table", "");
}

/// A tool of the database view, the hidden button that other windows press for it, and what that
/// does. A tool without work is off, with its command in the main window and its button.
struct TableTool {
    const char* name;
    const char* caption;
    const char* tip;
    const char* icon;
    const char* shortcut;
    Button View::*button;
    void (*work)(Workbench&, View&) = nullptr;
    Button View::*command = nullptr;  ///< pressed by the main window's command of that name
};

constexpr TableTool TableTools[] = {
    {"Print", "&Print...", "Print the table", "document-print", "Ctrl+P", &View::cmdPrint,
     PrintTable},
    {"Filter", "Fil&ter...", "Filter the records", "view-filter", "Ctrl+L", &View::cmdFilter},
    {"Filter through text file", "Filter through te&xt file...", "Remove addresses named in a file",
     "view-filter", "", &View::cmdFilterText, nullptr, &View::cmdFilterText},
    {"Compare tables", "&Compare tables...", "Compare two tables", "view-split-left-right", "",
     &View::cmdCompare, nullptr, &View::cmdCompare},
    {"Clean up table", "C&lean up table...", "Repair e-mail addresses", "edit-clear", "",
     &View::cmdCleanUp, nullptr, &View::cmdCleanUp},
    {"Remove duplicates", "Remove &duplicates...", "Remove records that repeat", "edit-delete", "",
     &View::cmdRemoveDuplicates, nullptr, &View::cmdRemoveDuplicates},
    {"Remove duplicate recipients", "Remove duplicate r&ecipients...",
     "Remove addresses that repeat", "edit-delete", "", &View::cmdRemoveRecipients, nullptr,
     &View::cmdRemoveRecipients},
    {"Remove domains", "Remove d&omains...", "Remove the addresses of domains", "edit-delete", "",
     &View::cmdRemoveDomains, nullptr, &View::cmdRemoveDomains},
    {"Mailing lists", "&Mailing lists...", "Mailing lists with autoresponders", "contact-new", "",
     &View::cmdMailingLists},
    {"New Table", "&New Table...", "Make a new table", "table", "Alt+N", &View::cmdNewFolder,
     Structure<StructureAction::NewTable>},
    {"Edit Table", "&Edit Table...", "Change the columns of the table", "document-edit", "",
     &View::cmdEditTable, Structure<StructureAction::EditTable>},
    {"Rename Table", "&Rename Table...", "Give the table another name", "edit-rename", "",
     &View::cmdRenameFolder, Structure<StructureAction::RenameTable>},
    {"Delete Table", "&Delete Table...", "Delete the table with its records", "edit-delete", "",
     &View::cmdDeleteFolder, Structure<StructureAction::DeleteTable>},
    {"New Column", "New &Column...", "Add a column to the table", "edit-table-insert-column-right",
     "", &View::cmdNewColumn, Structure<StructureAction::NewColumn>},
    {"Rename Column", "Rena&me Column...", "Give the column another name", "edit-rename", "",
     &View::cmdRenameColumn, Structure<StructureAction::RenameColumn>},
    {"Delete Column", "De&lete Column...", "Delete the column with its values",
     "edit-table-delete-column", "", &View::cmdDeleteColumn,
     Structure<StructureAction::DeleteColumn>},
    {"Backup table", "&Backup table...", "Copy the table as a back-up", "edit-copy", "",
     &View::cmdBackup, BackUp, &View::cmdBackup},
    {"Clone entire table", "Clone entire &table...", "Copy the table", "edit-copy", "",
     &View::cmdCloneTable, Clone, &View::cmdCloneTable},
    {"Clone selected records", "Clone &selected records...", "Copy the selected records",
     "edit-copy", "", &View::cmdCloneRecords, CopyRows<CopyTarget::NewTable>,
     &View::cmdCloneRecords},
    {"Copy selected records to existing table", "Copy selected records to &existing table...",
     "Copy the selected records", "edit-copy", "", &View::cmdCopyToExisting,
     CopyRows<CopyTarget::ExistingTable>, &View::cmdCloneRecords},
    {"Copy selected records to new table", "Copy selected records to &new table...",
     "Copy the selected records", "edit-copy", "", &View::cmdCopyToNew,
     CopyRows<CopyTarget::NewTable>, &View::cmdCloneRecords},
    {"Move selected records to existing table", "Move selected records to e&xisting table...",
     "Move the selected records", "edit-cut", "", &View::cmdMoveToExisting,
     MoveRows<CopyTarget::ExistingTable>},
    {"Move selected records to new table", "Move selected records to ne&w table...",
     "Move the selected records", "edit-cut", "", &View::cmdMoveToNew,
     MoveRows<CopyTarget::NewTable>},
    {"Repair", "Re&pair Database", "Repair the database file", "tools-report-bug", "",
     &View::cmdRepair, Maintain<MaintainAction::Repair>, &View::cmdRepair},
    {"Compact", "C&ompact Database", "Compact the database file", "archive-insert", "",
     &View::cmdCompact, Maintain<MaintainAction::Compact>, &View::cmdCompact},
};

Tool ToolOf(const TableTool& row) {
    return {.name = row.name,
            .caption = row.caption,
            .tip = row.tip,
            .shortcut = row.shortcut,
            .icon = row.icon};
}

/// The view with its table; null when it found none to show, which it has said.
View* ConnectedView(Workbench& wb) {
    View& view = wb.forms.Get<View>();
    return view.IsLoaded() && view.Connected() ? &view : nullptr;
}

void ShowDatabase(Workbench& wb) {
    if (View* view = ConnectedView(wb))
        ShowView(*view);
    else
        wb.forms.Get<View>().Unload();
}

template <DataWizardMode mode>
void Wizard(Workbench& wb) {
    StartDataWizard(wb, mode);
}

constexpr ToolRow<Workbench> Rows[] = {
    {"Database", "&Database", "Show the recipients database", "table", "F5", ShowDatabase},
    {"NewDatabase", "New &Database...", "Make a recipients database", "document-new", "",
     Wizard<DataWizardMode::NewDatabase>},
    {"ImportData", "I&mport Data...", "Import text, a spreadsheet or another database",
     "document-import", "", Wizard<DataWizardMode::Import>},
    {"ExportData", "E&xport Data...", "Export a table to a text file or spreadsheet",
     "document-export", "", Wizard<DataWizardMode::Export>},
};

}  // namespace

void RegisterDatabaseCommands(Workbench& wb) {
    wb.commands.Register(wb, Rows);
    for (const TableTool& row : TableTools) {
        if (!row.command) continue;
        Tool command = ToolOf(row);
        if (row.work)
            command.onClick = [&wb, button = row.command] {
                if (View* view = ConnectedView(wb)) (view->*button).Press();
            };
        wb.commands.Register(std::move(command));
    }
}

void AttachTableTools(Workbench& wb, frmViewDatabase& view) {
    RemoveUpkeepLeftovers(wb);
    for (const TableTool& row : TableTools) {
        Button& button = view.*row.button;
        if (row.work) button.onClick = [&wb, &view, work = row.work] { work(wb, view); };
        Tool tool = ToolOf(row);
        tool.button = &button;
        view.ActiveBar1.AddTool(std::move(tool));
    }
}

}  // namespace mailvane
