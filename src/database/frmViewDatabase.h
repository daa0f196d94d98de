#pragma once

#include <string>

#include "core/DataControl.h"
#include "core/Workbench.h"

namespace mailvane {

/// The database view: the recipients database, one table at a time. Owns the shared connection to
/// that file; merging and the database tools work on it.
class frmViewDatabase final : public WorkbenchForm {
public:
    explicit frmViewDatabase(Workbench& wb);

    ActiveBar ActiveBar1{*this, "ActiveBar1"};
    ComboBox cmbTable{*this, "cmbTable"};
    Grid Grid1{*this, "Grid1"};
    Label lblEmpty{*this, "lblEmpty"};
    Button cmdRefresh{*this, "cmdRefresh", Button::HiddenButton};
    Timer Timer1{*this, "Timer1", std::chrono::milliseconds(500)};

    DataControl Data1;

    /// The view shows another table, or the same one anew: other bindings on the file follow.
    Event<> tableShown;
    /// False when the project names no database file that could be opened.
    bool Connected() const;

    /// The project names another database file: takes that one and its table.
    void Reconnect();

protected:
    void OnLoad() override;
    void OnActivate() override;
    void OnUnload() override;

private:
    std::string IniPath() const;
    std::string LayoutPath() const;
    DaoError ShowTable(const std::string& recordSource);
    void ConnectDatabase();
    void FillTableLists();
    void SwitchTable();
    void ShowRecordCount();
    std::string RecordCountText() const;
    void FollowState();
    void Refresh();
    void RunViewCommand(const std::string& toolName);
    bool connected_ = false;
    bool filling_ = false;
    std::string shownCount_;
};

/// The table that the database view shows; "" when the view is not loaded or shows none.
std::string CurrentDatabaseTable(const Workbench& wb);

}  // namespace mailvane
