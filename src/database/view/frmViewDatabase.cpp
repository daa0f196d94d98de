#include "database/view/frmViewDatabase.h"

#include "core/MessageBoxes.h"
#include "core/Paths.h"
#include "core/project/frmProjectWizard.h"
#include "core/settings/Settings.h"
#include "core/settings/frmSettings.h"
#include "core/text/Text.h"
#include "database/view/frmFind.h"
#include "platform/os/Files.h"

namespace mailvane {

namespace {

constexpr const char* AccessingRecords = "Accessing records, please wait...";

}  // namespace

frmViewDatabase::frmViewDatabase(Workbench& wb)
    : WorkbenchForm(wb, "frmViewDatabase", "Database", FormStyle::Child), Data1(wb) {
    AttachCommands();
    cmbTable.onClick = [this] {
        if (!filling_) SwitchTable();
    };
    Timer1.onTimer = [this] { FollowState(); };
    runsChanged_ = wb.runs.changed.Observe([this] { FollowRuns(); });
    FollowRuns();
}

/// A run works on the connection: what it goes through stays as it is.
bool frmViewDatabase::Held() const {
    return wb_.runs.Holder(Holds::Recipients) != nullptr;
}

void frmViewDatabase::FollowRuns() {
    ActiveBar1.SetEnabled(!Held());
    cmbTable.SetEnabled(!Held());
}

bool frmViewDatabase::Connected() const {
    return connected_;
}

void frmViewDatabase::OnLoad() {
    Data1.Bind(Grid1);
    ConnectDatabase();
    FillTableLists();
    RestoreWindowPlace(wb_, *this, "DataMain", "DataWindowState");
    LoadLayout();
    LoadBookmark(IniRead("Database", "LastTable", InProjectFolder("project.ini")));
    ShowStates();
    Timer1.Start();
}

void frmViewDatabase::OnActivate() {
    shownCount_.clear();  // another window may have written there
    ShowRecordCount();
}

bool frmViewDatabase::OnQueryUnload() {
    return MayUnload(wb_, *this, Holds::Recipients);
}

void frmViewDatabase::OnUnload() {
    Timer1.Stop();
    if (connected_) {
        StorePlace();
        SaveLayout();
    }
    StoreWindowPlace(wb_, *this, "DataMain", "DataWindowState");
    if (auto* find = wb_.forms.Find<frmFind>()) find->CloseFor(*this);
    Data1.Close();
    if (wb_.shell) wb_.shell->SetRecordPanel("");
}

std::string frmViewDatabase::InProjectFolder(const std::string& name) const {
    return wb_.state.ProjectFolder + PathSeparator + name;
}

void frmViewDatabase::SetPanel(const std::string& text) {
    if (wb_.shell) wb_.shell->SetPanel(text);
}

void frmViewDatabase::ConnectDatabase() {
    frmSettings& settings = wb_.forms.Get<frmSettings>();
    const std::string path = settings.txtAccessDBPath.Text();
    if (path.empty() || !FileExists(path)) {
        if (wb_.forms.Find<frmProjectWizard>() || wb_.state.UnattendedRun) return;
        if (AskYesNo(wb_,
                     "You must enter local file name for your database. \r\n\r\n"
                     "Do you want to do that now?"))
            settings.ShowPage(frmSettings::DatabasePage, settings.txtAccessDBPath);
        return;
    }
    Data1.DatabaseName = path;
    const std::string lastTable = IniRead("Database", "LastTable", InProjectFolder("project.ini"));
    if (!lastTable.empty() && ShowTable(lastTable).Ok()) return;
    const DaoError shown = ShowTable(settings.cmbAccessTable.Text());
    // A database without tables is connected all the same: its first table is still to come.
    if (shown.Failed() && !Data1.Database()) Tell(wb_, shown.description, BoxIcon::Exclamation);
}

DaoError frmViewDatabase::ShowTable(const std::string& recordSource) {
    Data1.RecordSource = recordSource;
    if (suspended_ > 0) return {};  // shown when the connection is back
    SetPanel(AccessingRecords);
    const DaoError outcome = Data1.Refresh();
    SetPanel("");
    connected_ = Data1.Database() != nullptr;
    return outcome;
}

void frmViewDatabase::ShowFirstTable() {
    const auto tables = Data1.Database()->UserTableNames().ValueOr({});
    if (!tables.empty()) ShowTable(tables.front()).Ignore();
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
    ShowRecordCount();
}

void frmViewDatabase::SwitchTable() {
    const std::string table = cmbTable.Text();
    if (table.empty() || Held()) return;
    if (!EqualText(table, Data1.CurrentTable())) {
        SaveLayout();
        const DaoError shown = ShowTable(table);
        if (shown.Failed()) Tell(wb_, shown.description, BoxIcon::Exclamation);
        LoadLayout();
        DeleteFile(InProjectFolder(BookmarkFile));
        ShowStates();
        tableShown.Tell();
    }
    ShowRecordCount();
}

void frmViewDatabase::Refresh() {
    if (suspended_ > 0) return;
    SaveLayout();
    frmSettings& settings = wb_.forms.Get<frmSettings>();
    std::string source = Data1.RecordSource;
    if (Data1.CurrentTable().empty() && !settings.txtAccessDBPath.Text().empty())
        source = settings.cmbAccessTable.Text();
    if (Data1.DatabaseName.empty()) Data1.DatabaseName = settings.txtAccessDBPath.Text();
    // A table that has gone leaves the view on the project's table, or the first one.
    DaoError shown = ShowTable(source);
    if (shown.Failed() && Data1.Database()) shown = ShowTable(settings.cmbAccessTable.Text());
    if (shown.Failed() && Data1.Database()) ShowFirstTable();
    ShowTableAnew();
}

/// Brings everything that names the table or its rows in line with what Data1 shows now.
void frmViewDatabase::ShowTableAnew() {
    LoadLayout();
    FillTableLists();
    ShowStates();
    tableShown.Tell();
}

void frmViewDatabase::Reconnect() {
    Data1.Close();
    connected_ = false;
    DeleteFile(InProjectFolder(BookmarkFile));
    frmSettings& settings = wb_.forms.Get<frmSettings>();
    Data1.DatabaseName = settings.txtAccessDBPath.Text();
    Data1.RecordSource = settings.cmbAccessTable.Text();
    if (!Data1.DatabaseName.empty()) ShowTable(Data1.RecordSource).Ignore();
    ShowTableAnew();
}

void frmViewDatabase::Suspend() {
    if (suspended_++ > 0) return;
    SaveLayout();
    Data1.Close();
}

void frmViewDatabase::Resume() {
    if (suspended_ == 0 || --suspended_ > 0 || Data1.DatabaseName.empty()) return;
    const std::string table = Data1.CurrentTable();
    DaoError shown = ShowTable(Data1.RecordSource);
    // The order may have been by a column that has gone.
    if (shown.Failed() && Data1.Database()) shown = ShowTable(table);
    if (shown.Failed() && Data1.Database()) ShowFirstTable();
    if (!Data1.Database()) Tell(wb_, shown.description, BoxIcon::Exclamation);
    ShowTableAnew();
}

void frmViewDatabase::ForgetPlace() {
    forgetPlace_ = true;
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

std::string CurrentDatabaseTable(const Workbench& wb) {
    const frmViewDatabase* view = wb.forms.Find<frmViewDatabase>();
    return view ? view->Data1.CurrentTable() : std::string();
}

}  // namespace mailvane
