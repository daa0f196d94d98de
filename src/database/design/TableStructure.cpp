#include "database/design/TableStructure.h"

#include "core/MessageBoxes.h"
#include "core/Paths.h"
#include "core/Waiting.h"
#include "core/run/LongRun.h"
#include "core/text/Text.h"
#include "database/design/frmDatabaseTable.h"
#include "database/upkeep/SuspendedConnection.h"
#include "database/view/frmViewDatabase.h"

namespace mailvane {

namespace {

/// One action on the structure of the file, on a connection of its own.
class StructureChange {
public:
    StructureChange(Workbench& wb, std::string table, std::string column)
        : wb_(wb), table_(std::move(table)), column_(std::move(column)) {}

    DaoError Run(StructureAction action);

private:
    DaoError Change(Database& database, StructureAction action);
    DaoError NewColumn(Database& database);
    DaoError RenameColumn(Database& database);
    DaoError RenameTable(Database& database);
    DaoError DeleteTable(Database& database);
    std::string AskName(const std::string& title, const std::string& kind);

    Workbench& wb_;
    std::string table_;
    std::string column_;
    std::string shownTable_;  ///< that the view shows afterwards; "" for the same one
};

DaoError StructureChange::Run(StructureAction action) {
    SuspendedConnection suspended(wb_);
    const auto workspace = Workspace::Create();
    const auto database = workspace->OpenDatabase(suspended.Path());
    const DaoError outcome = database.Failed() ? database.Error() : Change(**database, action);
    if (outcome.Failed() && outcome.number != dao_error::ObjectInvalid &&
        outcome.number != dao_error::TableNotFound && outcome.number != dao_error::ObjectNotSet)
        Tell(wb_, outcome.description, BoxIcon::Exclamation);
    workspace->Close();
    if (!shownTable_.empty()) suspended.ShowTable(shownTable_);
    return outcome;
}

DaoError StructureChange::Change(Database& database, StructureAction action) {
    switch (action) {
        case StructureAction::NewColumn:
            return NewColumn(database);
        case StructureAction::RenameColumn:
            return RenameColumn(database);
        case StructureAction::RenameTable:
            return RenameTable(database);
        case StructureAction::DeleteColumn: {
            const BusyPointer busy(wb_);
            return database.DeleteField(table_, column_);
        }
        case StructureAction::DeleteTable:
            return DeleteTable(database);
        case StructureAction::NewTable:
        case StructureAction::EditTable:
            break;  // the designer's
    }
    return {};
}

/// "" when there is none, or a bad one, which has been told.
std::string StructureChange::AskName(const std::string& title, const std::string& kind) {
    const std::string prompt = "Please enter new " + ToLower(kind) + " name: ";
    const std::string name = Trim(wb_.platform.windows.InputBox({prompt, title, ""}).value_or(""));
    if (name.empty() || IsValidTableName(name)) return name;
    Tell(wb_, InvalidNameText(kind, name), BoxIcon::None, "Invalid name");
    return {};
}

DaoError StructureChange::NewColumn(Database& database) {
    Field field;
    field.name = AskName("New column", "Column");
    field.allowZeroLength = true;
    return field.name.empty() ? DaoError() : database.AppendField(table_, field);
}

DaoError StructureChange::RenameColumn(Database& database) {
    const std::string name = AskName("Rename column", "Column");
    return name.empty() ? DaoError() : database.RenameField(table_, column_, name);
}

DaoError StructureChange::RenameTable(Database& database) {
    const std::string name = AskName("Rename table", "Table");
    if (name.empty()) return {};
    const DaoError renamed = database.RenameTable(table_, name);
    if (renamed.Ok()) shownTable_ = name;
    return renamed;
}

DaoError StructureChange::DeleteTable(Database& database) {
    const BusyPointer busy(wb_);
    if (DaoError failed = database.DeleteTable(table_); failed.Failed()) return failed;
    const auto names = database.UserTableNames().ValueOr({});
    if (!names.empty()) shownTable_ = names.front();
    return {};
}

bool NeedsColumn(StructureAction action) {
    return action == StructureAction::RenameColumn || action == StructureAction::DeleteColumn;
}

/// The grid's current column; "" when it shows none.
std::string CurrentColumn(const Grid& grid) {
    const std::size_t column = grid.CurrentColumn();
    return column < grid.Columns().size() ? grid.Columns()[column].name : std::string();
}

bool Confirm(Workbench& wb, StructureAction action, const std::string& table,
             const std::string& column) {
    if (action == StructureAction::DeleteColumn)
        return AskYesNo(wb, "Are you sure you want to delete `" + column + "` column?");
    if (action == StructureAction::DeleteTable)
        return AskYesNo(wb, "Are you sure you want to delete `" + table + "` table?");
    return true;
}

}  // namespace

void EditTableStructure(Workbench& wb, frmViewDatabase& view, StructureAction action) {
    const std::string table = view.Data1.CurrentTable();
    if (action == StructureAction::NewTable) return DesignNewTable(wb);
    if (action == StructureAction::EditTable) return DesignTable(wb, table);
    const std::string column = CurrentColumn(view.Grid1);
    if (NeedsColumn(action) && column.empty())
        return Tell(wb, "Please select the column you want to delete.");
    if (!Confirm(wb, action, table, column)) return;
    const LongRun run(wb, {"Changing a table", Holds::Recipients});
    if (!run.Began()) return;
    StructureChange change(wb, table, column);
    change.Run(action).Ignore();  // which has been told
    if (view.IsLoaded()) view.cmdRefresh.Press();
}

}  // namespace mailvane
