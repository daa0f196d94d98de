#include "database/frmViewDatabase.h"

#include <algorithm>

#include "core/Paths.h"
#include "core/Progress.h"
#include "core/Settings.h"
#include "core/Text.h"
#include "core/ToolTable.h"
#include "core/frmSettings.h"
#include "database/frmDataWizard.h"
#include "platform/os/Files.h"

namespace mailvane {

namespace {

constexpr const char* AccessingRecords = "Accessing records, please wait...";

/// The view's commands. Those whose work is not built yet are shown and disabled.
constexpr ToolRow ViewTools[] = {
    {"New Database", "Ne&w Database...", "Make a new database", "document-new", "Alt+W"},
    {"Import", "I&mport...", "Import a text file into a table", "document-import", "Alt+M"},
    {"Export", "E&xport...", "Export the table to a text file", "document-export", "",
     ToolState::Later},
    {"Print", "&Print...", "Print the table", "document-print", "", ToolState::Later},
    {"Refresh", "R&efresh", "Read the table again", "view-refresh", "Alt+E"},
    {"First", "&First", "Go to the first record", "go-first", ""},
    {"Previous", "P&revious", "Go to the previous record", "go-previous", ""},
    {"Next", "&Next", "Go to the next record", "go-next", ""},
    {"Last", "&Last", "Go to the last record", "go-last", ""},
    {"Insert", "&Insert", "Add an empty record", "list-add", "", ToolState::Later},
    {"Delete", "&Delete", "Delete the selected records", "list-remove", "", ToolState::Later},
    {"Select All", "Select &All", "Select all records", "edit-select-all", "", ToolState::Later},
    {"Sort Ascending", "Sort A&scending", "Sort by this column", "view-sort-ascending", "",
     ToolState::Later},
    {"Sort Descending", "Sort Des&cending", "Sort by this column, backwards",
     "view-sort-descending", "", ToolState::Later},
    {"Find", "Fin&d...", "Find a record", "edit-find", "", ToolState::Later},
    {"Filter", "Fil&ter...", "Filter the records", "view-filter", "", ToolState::Later},
    {"New Table", "New Ta&ble...", "Make a new table", "table", "", ToolState::Later},
    {"Edit Table", "Edit Tab&le...", "Change the columns of the table", "document-edit", "",
     ToolState::Later},
};

void BuildBars(ActiveBar& bar) {
    AddTools(bar, ViewTools);
    bar.AddBand(
        {Band::Kind::ToolBar,
         "Table",
         "Table",
         {"New Database", "Import", "-", "Refresh", "-", "First", "Previous", "Next", "Last", "-",
          "Insert", "Delete", "-", "Sort Ascending", "Sort Descending", "Find", "Filter"}});
    bar.AddBand({Band::Kind::Popup,
                 "Edit",
                 "Edit",
                 {"Insert", "Delete", "Select All", "-", "Sort Ascending", "Sort Descending"}});
}

}  // namespace

frmViewDatabase::frmViewDatabase(Workbench& wb)
    : WorkbenchForm(wb, "frmViewDatabase", "Database", FormStyle::Child), Data1(wb) {
    BuildBars(ActiveBar1);
    ActiveBar1.onTool = [this](const Tool& tool) { RunViewCommand(tool.name); };
    cmdRefresh.onClick = [this] { Refresh(); };
    cmbTable.onClick = [this] {
        if (!filling_) SwitchTable();
    };
    Grid1.onSelectionChange = [this] { ShowRecordCount(); };
    Timer1.onTimer = [this] { FollowState(); };
}

bool frmViewDatabase::Connected() const {
    return connected_;
}

void frmViewDatabase::OnLoad() {
    Data1.Bind(Grid1);
    ConnectDatabase();
    FillTableLists();
    RestoreWindowPlace(wb_, *this, "DataMain", "DataWindowState");
    LoadGridLayoutIn(Grid1, LayoutPath(), Data1.CurrentTable());
    Timer1.Start();
}

void frmViewDatabase::OnActivate() {
    ShowRecordCount();
}

void frmViewDatabase::OnUnload() {
    Timer1.Stop();
    if (connected_) {
        IniWrite("Database", "LastTable", Data1.CurrentTable(), IniPath());
        IniWrite("Database", "LastCell", std::to_string(Grid1.CurrentColumn()), IniPath());
        SaveGridLayoutIn(Grid1, LayoutPath(), Data1.CurrentTable());
    }
    StoreWindowPlace(wb_, *this, "DataMain", "DataWindowState");
    Data1.Close();
    if (wb_.shell) wb_.shell->SetRecordPanel("");
}

std::string frmViewDatabase::IniPath() const {
    return wb_.state.ProjectFolder + "/project.ini";
}
std::string frmViewDatabase::LayoutPath() const {
    return wb_.state.ProjectFolder + "/dbgd.lyt";
}

void frmViewDatabase::ConnectDatabase() {
    frmSettings& settings = wb_.forms.Get<frmSettings>();
    const std::string path = settings.txtAccessDBPath.Text();
    if (path.empty() || !FileExists(path)) {
        if (wb_.forms.IsFormLoaded("frmProjectWizard") || wb_.state.UnattendedRun) return;
        if (AskYesNo(wb_,
                     "You must enter local file name for your database. \r\n\r\n"
                     "Do you want to do that now?"))
            settings.ShowPage(frmSettings::DatabasePage, settings.txtAccessDBPath);
        return;
    }
    Data1.DatabaseName = path;
    const std::string lastTable = IniRead("Database", "LastTable", IniPath());
    if (!lastTable.empty() && ShowTable(lastTable).Ok()) return;
    const DaoError shown = ShowTable(settings.cmbAccessTable.Text());
    // A database without tables is connected all the same: its first table is still to come.
    if (shown.Failed() && !Data1.Database()) Tell(wb_, shown.description, BoxIcon::Exclamation);
}

DaoError frmViewDatabase::ShowTable(const std::string& recordSource) {
    Data1.RecordSource = recordSource;
    if (wb_.shell) wb_.shell->SetPanel(AccessingRecords);
    const DaoError outcome = Data1.Refresh();
    if (wb_.shell) wb_.shell->SetPanel("");
    connected_ = Data1.Database() != nullptr;
    return outcome;
}

void frmViewDatabase::FillTableLists() {
    filling_ = true;
    ComboBox& settingsTable = wb_.forms.Get<frmSettings>().cmbAccessTable;
    cmbTable.Clear();
    if (Data1.Database()) {
        FillWithUserTables(*Data1.Database(), cmbTable);
        settingsTable.SetItems(cmbTable.Items());
        settingsTable.SetText(Data1.CurrentTable());
    }
    cmbTable.SetText(Data1.CurrentTable());
    filling_ = false;
    lblEmpty.SetVisible(Data1.Recordset() == nullptr);
    ShowRecordCount();
}

void frmViewDatabase::SwitchTable() {
    const std::string table = cmbTable.Text();
    if (table.empty()) return;
    if (!EqualText(table, Data1.CurrentTable())) {
        SaveGridLayoutIn(Grid1, LayoutPath(), Data1.CurrentTable());
        const DaoError shown = ShowTable(table);
        if (shown.Failed()) Tell(wb_, shown.description, BoxIcon::Exclamation);
        LoadGridLayoutIn(Grid1, LayoutPath(), table);
        DeleteFile(wb_.state.ProjectFolder + "/tbkm.dat");
        tableShown.Tell();
    }
    ShowRecordCount();
}

void frmViewDatabase::Refresh() {
    frmSettings& settings = wb_.forms.Get<frmSettings>();
    std::string source = Data1.RecordSource;
    if (Data1.CurrentTable().empty() && !settings.txtAccessDBPath.Text().empty())
        source = settings.cmbAccessTable.Text();
    if (Data1.DatabaseName.empty()) Data1.DatabaseName = settings.txtAccessDBPath.Text();
    // A table that has gone leaves the view on the project's table.
    if (ShowTable(source).Failed() && Data1.Database())
        ShowTable(settings.cmbAccessTable.Text()).Ignore();
    LoadGridLayoutIn(Grid1, LayoutPath(), Data1.CurrentTable());
    FillTableLists();
    tableShown.Tell();
}

void frmViewDatabase::Reconnect() {
    Data1.Close();
    connected_ = false;
    DeleteFile(wb_.state.ProjectFolder + "/tbkm.dat");
    frmSettings& settings = wb_.forms.Get<frmSettings>();
    Data1.DatabaseName = settings.txtAccessDBPath.Text();
    Data1.RecordSource = settings.cmbAccessTable.Text();
    if (!Data1.DatabaseName.empty()) ShowTable(Data1.RecordSource).Ignore();
    FillTableLists();
    tableShown.Tell();
}

void frmViewDatabase::ShowRecordCount() {
    if (!wb_.shell || !Visible()) return;
    const std::string text = RecordCountText();
    if (text != shownCount_) wb_.shell->SetRecordPanel(text);
    shownCount_ = text;
}

std::string frmViewDatabase::RecordCountText() const {
    if (!Data1.Recordset() || !Data1.Recordset()->IsOpen()) return {};
    const std::string total = std::to_string(Data1.Recordset()->RecordCount());
    const std::size_t selected = Grid1.SelBookmarks().Count();
    if (selected == 0) return total + " records.";
    return " Selected " + std::to_string(selected) + "/" + total + " records  ";
}

void frmViewDatabase::FollowState() {
    ShowRecordCount();
    if (cmbTable.ListIndex() < 0 || EqualText(cmbTable.Text(), Data1.CurrentTable())) return;
    filling_ = true;
    cmbTable.SetText(Data1.CurrentTable());
    filling_ = false;
}

void frmViewDatabase::RunViewCommand(const std::string& toolName) {
    if (toolName == "Refresh") {
        cmdRefresh.Press();
    } else if (toolName == "New Database") {
        StartDataWizard(wb_, DataWizardMode::NewDatabase);
    } else if (toolName == "Import") {
        StartDataWizard(wb_, DataWizardMode::Import);
    } else if (Grid1.RowCount() > 0) {
        const std::size_t last = Grid1.RowCount() - 1;
        const std::size_t row = Grid1.CurrentRow().value_or(0);
        if (toolName == "First") Grid1.SetCurrentRow(0);
        if (toolName == "Last") Grid1.SetCurrentRow(last);
        if (toolName == "Next") Grid1.SetCurrentRow(std::min(row + 1, last));
        if (toolName == "Previous") Grid1.SetCurrentRow(row > 0 ? row - 1 : 0);
    }
}

std::string CurrentDatabaseTable(const Workbench& wb) {
    const frmViewDatabase* view = wb.forms.Find<frmViewDatabase>();
    return view ? view->Data1.CurrentTable() : std::string();
}

}  // namespace mailvane
