#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "core/Workbench.h"
#include "core/records/DataControl.h"
#include "database/view/ViewCells.h"

namespace mailvane {

enum class DataWizardMode;

/// The opaque place of the current row, beside the project's other files.
inline constexpr const char* BookmarkFile = "tbkm.dat";

/// The database view: the recipients database, one table at a time. Owns the shared connection to
/// that file; merging and the database tools work on it. The selection of Grid1 is the only
/// representation of selected rows.
class frmViewDatabase final : public WorkbenchForm {
public:
    explicit frmViewDatabase(Workbench& wb);

    ActiveBar ActiveBar1{*this, "ActiveBar1"};
    ComboBox cmbTable{*this, "cmbTable"};
    Grid Grid1{*this, "Grid1"};
    Label lblEmpty{*this, "lblEmpty"};

    // Commands of the view for other windows, which press them.
    Button cmdRefresh{*this, "cmdRefresh", Button::HiddenButton};
    Button cmdDeleteSelected{*this, "cmdDeleteSelected", Button::HiddenButton};
    Button cmdDeleteSelectedNoStatus{*this, "cmdDeleteSelectedNoStatus", Button::HiddenButton};
    Button cmdBackup{*this, "cmdBackup", Button::HiddenButton};
    Button cmdCloneTable{*this, "cmdCloneTable", Button::HiddenButton};
    Button cmdCloneRecords{*this, "cmdCloneRecords", Button::HiddenButton};
    Button cmdCompact{*this, "cmdCompact", Button::HiddenButton};
    Button cmdRepair{*this, "cmdRepair", Button::HiddenButton};
    Button cmdCleanUp{*this, "cmdCleanUp", Button::HiddenButton};
    Button cmdCompare{*this, "cmdCompare", Button::HiddenButton};
    Button cmdFilter{*this, "cmdFilter", Button::HiddenButton};
    Button cmdRemoveDuplicates{*this, "cmdRemoveDuplicates", Button::HiddenButton};
    Button cmdRemoveRecipients{*this, "cmdRemoveRecipients", Button::HiddenButton};
    Button cmdRemoveDomains{*this, "cmdRemoveDomains", Button::HiddenButton};
    Button cmdMailingLists{*this, "cmdMailingLists", Button::HiddenButton};
    Button cmdNewColumn{*this, "cmdNewColumn", Button::HiddenButton};
    Button cmdDeleteColumn{*this, "cmdDeleteColumn", Button::HiddenButton};
    Button cmdRenameColumn{*this, "cmdRenameColumn", Button::HiddenButton};
    Button cmdNewFolder{*this, "cmdNewFolder", Button::HiddenButton};        ///< a table
    Button cmdRenameFolder{*this, "cmdRenameFolder", Button::HiddenButton};  ///< the table
    Button cmdDeleteFolder{*this, "cmdDeleteFolder", Button::HiddenButton};  ///< the table
    Button cmdEditTable{*this, "cmdEditTable", Button::HiddenButton};
    Button cmdFilterText{*this, "cmdFilterText", Button::HiddenButton};
    Button cmdCopyToExisting{*this, "cmdCopyToExisting", Button::HiddenButton};
    Button cmdCopyToNew{*this, "cmdCopyToNew", Button::HiddenButton};
    Button cmdMoveToExisting{*this, "cmdMoveToExisting", Button::HiddenButton};
    Button cmdMoveToNew{*this, "cmdMoveToNew", Button::HiddenButton};
    Button cmdPrint{*this, "cmdPrint", Button::HiddenButton};

    Timer Timer1{*this, "Timer1", std::chrono::milliseconds(500)};

    DataControl Data1;

    /// The view shows another table, or the same one anew: other bindings on the file follow.
    Event<> tableShown;
    /// False when the project names no database file that could be opened.
    bool Connected() const;

    /// The project names another database file: takes that one and its table.
    void Reconnect();
    /// Closes the connection until Resume, which shows Data1.RecordSource, or the first table when
    /// that has gone. They nest. For SuspendedConnection alone.
    void Suspend();
    void Resume();
    /// The place in the table is not remembered when the view closes.
    void ForgetPlace();

    /// Carries out the command of a tool of that name; nothing while a loop over rows is under way.
    void RunViewCommand(const std::string& toolName);
    /// Sorts by a column of Grid1, in the direction other than the last one.
    void SortGridByColumn(std::size_t column);
    void SelectAllRows();
    /// Deletes the rows selected; `silent` asks nothing and tells nothing.
    void DeleteSelectedRows(bool silent);

protected:
    void OnLoad() override;
    void OnActivate() override;
    bool OnQueryUnload() override;
    void OnUnload() override;

private:
    // Connection and table: frmViewDatabase.cpp
    std::string InProjectFolder(const std::string& name) const;
    DaoError ShowTable(const std::string& recordSource);
    void ShowFirstTable();
    void ConnectDatabase();
    void FillTableLists();
    void SwitchTable();
    void Refresh();
    void ShowTableAnew();
    void SetPanel(const std::string& text);
    void ShowRecordCount();
    std::string RecordCountText() const;
    void FollowState();
    void FollowRuns();
    bool Held() const;

    // Layout and place: ViewLayout.cpp
    void SaveLayout();
    void LoadLayout();
    void SaveBookmark();
    void LoadBookmark(const std::string& table);
    void StorePlace();

    // Tools: ViewTools.cpp
    void AddViewTools();
    void AddKeys();

    // Commands: ViewCommands.cpp
    void AttachCommands();
    void ShowStates();
    void RunWizard(DataWizardMode mode);
    int CurrentRow() const;
    void GoTo(int row);
    bool RunGridKey(const std::string& key);
    void StepTable(int step);

    // Order: ViewSort.cpp
    void SortAs(const std::string& state);
    void ClearSortMarks(std::size_t column);

    // Selection: ViewSelection.cpp
    DaoError DeleteAllRows();
    DaoError DeleteRows(std::vector<Bookmark> bookmarks);
    void StandOnRow(std::size_t row);
    void TellDeleted(std::int64_t count, const std::string& table);

    // Values: ViewEditing.cpp
    bool EditCell(std::size_t row, std::size_t column, const std::string& text);
    void InsertRow();
    std::string CopyRows();
    void PasteBlock(const std::string& text);
    DaoError PasteRows(const TextBlock& block, const std::vector<std::size_t>& columns,
                       std::size_t first, std::string& refusal);

    // Search: ViewFind.cpp
    void ShowFind();
    void FindNext(const std::string& text, bool matchCase);
    bool FindInRows(std::size_t first, std::size_t end, const CellMatch& matches);

    bool connected_ = false;
    bool filling_ = false;
    bool forgetPlace_ = false;
    int suspended_ = 0;
    Subscription runsChanged_;
    std::string sortState_;  ///< "ASC" or "DESC": the order last used; "" before the first
    std::string shownCount_;
    std::vector<GridColumn> storedLayout_;  ///< what the layout file has for the table
};

/// The table that the database view shows; "" when the view is not loaded or shows none.
std::string CurrentDatabaseTable(const Workbench& wb);

}  // namespace mailvane
