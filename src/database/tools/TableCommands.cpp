#include "database/tools/TableCommands.h"

#include "database/design/TableStructure.h"
#include "database/exchange/TablePrint.h"
#include "database/tools/RowCopies.h"
#include "database/tools/TableCopies.h"
#include "database/upkeep/DatabaseUpkeep.h"
#include "database/view/frmViewDatabase.h"

namespace mailvane {

namespace {

void AttachCopies(Workbench& wb, frmViewDatabase& view) {
    view.cmdBackup.onClick = [&] {
        MakeTableCopy(wb, view, "Make backup", view.Data1.CurrentTable() + "_Backup");
    };
    view.cmdCloneTable.onClick = [&] { MakeTableCopy(wb, view, "Clone entire table", ""); };
    view.cmdCloneRecords.onClick =
        view.cmdCopyToNew.onClick = [&] { CopyRowsToTable(wb, view, CopyTarget::NewTable); };
    view.cmdCopyToExisting.onClick = [&] { CopyRowsToTable(wb, view, CopyTarget::ExistingTable); };
    view.cmdMoveToNew.onClick = [&] { MoveRowsToTable(wb, view, CopyTarget::NewTable); };
    view.cmdMoveToExisting.onClick = [&] { MoveRowsToTable(wb, view, CopyTarget::ExistingTable); };
}

}  // namespace

void AttachTableCommands(Workbench& wb, frmViewDatabase& view) {
    RemoveUpkeepLeftovers(wb);
    AttachCopies(wb, view);
    const std::pair<Button*, StructureAction> structure[] = {
        {&view.cmdNewColumn, StructureAction::NewColumn},
        {&view.cmdNewFolder, StructureAction::NewTable},
        {&view.cmdRenameColumn, StructureAction::RenameColumn},
        {&view.cmdRenameFolder, StructureAction::RenameTable},
        {&view.cmdDeleteColumn, StructureAction::DeleteColumn},
        {&view.cmdDeleteFolder, StructureAction::DeleteTable},
        {&view.cmdEditTable, StructureAction::EditTable}};
    for (const auto& [button, action] : structure)
        button->onClick = [&wb, &view, action = action] { EditTableStructure(wb, view, action); };
    view.cmdRepair.onClick = [&] { MaintainDatabase(wb, view, MaintainAction::Repair); };
    view.cmdCompact.onClick = [&] { MaintainDatabase(wb, view, MaintainAction::Compact); };
    view.cmdPrint.onClick = [&] { PrintTable(wb, view); };
}

}  // namespace mailvane
