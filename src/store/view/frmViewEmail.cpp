#include "store/view/frmViewEmail.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "core/MessageBoxes.h"
#include "core/commands/ToolTable.h"
#include "core/settings/Settings.h"
#include "store/MessageStore.h"

namespace mailvane {

namespace {

/// The columns that say most about a message, and their width in twips.
constexpr std::pair<const char*, double> UsualColumns[] = {
    {"From", 2500}, {"To", 2500},    {"Subject", 3300}, {"Date", 2200},
    {"Size", 900},  {"Status", 900}, {"Retries", 800}};

bool IsUsual(const std::string& name) {
    return std::any_of(std::begin(UsualColumns), std::end(UsualColumns),
                       [&](const auto& usual) { return name == usual.first; });
}

/// As the user has chosen.
bool IsColumnShown(const Workbench& wb, const std::string& name) {
    const std::string stored = GetUserSetting(wb, "Columns", name);
    return stored == "0" || stored == "1" ? stored == "1" : IsUsual(name);
}

double ColumnWidth(const GridColumn& column, const std::vector<GridColumn>& before) {
    for (const GridColumn& old : before)
        if (old.name == column.name) return old.width;
    for (const auto& [name, width] : UsualColumns)
        if (column.name == name) return width;
    return column.width;
}

}  // namespace

frmViewEmail::frmViewEmail(Workbench& wb)
    : WorkbenchForm(wb, "frmViewEmail", "E-mail", FormStyle::Child), DataEmail(wb) {
    BuildBar();
    cmbFolder.onClick = [this] {
        if (!filling_) ShowFolder();
    };
    EmailGrid.onRowChange = [this] { Preview(); };
    cmdRefresh.onClick = [this] { Refresh(); };
}

void frmViewEmail::BuildBar() {
    constexpr ToolRow<frmViewEmail> tools[] = {
        {"Refresh", "R&efresh", "Read the folder again", "view-refresh", "Alt+E",
         [](frmViewEmail& view) { view.cmdRefresh.Press(); }},
        {"Send All", "&Send All", "Send the messages in the Outbox", "mail-send", "",
         [](frmViewEmail& view) {
             if (view.wb_.shell) view.wb_.shell->ExecuteCommand("Send All", "Send All");
         }},
        {"Close", "&Close", "Close the mail view", "window-close", "",
         [](frmViewEmail& view) { view.Hide(); }},
    };
    AddTools(*this, tools);
    ActiveBar1.AddBand(
        {Band::Kind::ToolBar, "Messages", "Messages", {"Refresh", "-", "Send All", "-", "Close"}});
}

void frmViewEmail::OnLoad() {
    const DaoError made = EnsureMessageStore(wb_);
    AddMissingColumn(wb_, "Status", FieldType::Text, "");
    AddMissingColumn(wb_, "Retries", FieldType::Integer, "0");
    AddMissingIndex(wb_);
    DataEmail.Bind(EmailGrid);
    OpenStore(made);
    FillFolders();
    RestoreWindowPlace(wb_, *this, "EmailMain", "EmailWindowState");
}

void frmViewEmail::OnUnload() {
    StoreWindowPlace(wb_, *this, "EmailMain", "EmailWindowState");
    DataEmail.Close();
    CloseMessageStore(wb_);
}

/// `made` is the outcome of making a store where there was none.
void frmViewEmail::OpenStore(const DaoError& made) {
    DataEmail.DatabaseName = MessageStorePath(wb_);
    const DaoError outcome = made.Failed() ? made : OpenMessageStore(wb_);
    if (outcome.Failed() && !wb_.state.UnattendedRun)
        Tell(wb_, outcome.description, BoxIcon::Critical);
}

void frmViewEmail::FillFolders() {
    filling_ = true;
    if (wb_.state.MessageStore)
        FillWithUserTables(*wb_.state.MessageStore, cmbFolder);
    else
        cmbFolder.Clear();
    cmbFolder.SetText(InboxFolder);
    filling_ = false;
    ShowFolder();
}

void frmViewEmail::ShowFolder() {
    const std::string folder = cmbFolder.Text();
    pnlTable.SetText("      " + folder + " ");
    if (folder.empty()) return;
    const std::vector<GridColumn> before = EmailGrid.Columns();
    DataEmail.RecordSource = folder;
    if (const DaoError failed = DataEmail.Refresh(); failed.Failed())
        Tell(wb_, failed.description, BoxIcon::Exclamation);
    ChooseColumns(before);
    Preview();
}

/// The folder anew, with the same message current if it is still there.
void frmViewEmail::Refresh() {
    const std::shared_ptr<Recordset> shown = DataEmail.Recordset();
    const auto current = shown ? shown->GetBookmark() : DaoResult<Bookmark>(Bookmark{0});
    ShowFolder();
    if (current.Failed() || !DataEmail.Recordset()) return;
    const auto row = DataEmail.Recordset()->PositionOf(*current);
    if (row.Ok()) EmailGrid.SetCurrentRow(*row);
}

/// Reading a folder makes all columns anew: the chosen ones are shown, as wide as they were.
void frmViewEmail::ChooseColumns(const std::vector<GridColumn>& before) {
    std::vector<GridColumn> columns = EmailGrid.Columns();
    for (GridColumn& column : columns) {
        column.visible = IsColumnShown(wb_, column.name);
        column.width = ColumnWidth(column, before);
    }
    EmailGrid.SetColumns(std::move(columns));
}

void frmViewEmail::Preview() {
    const std::shared_ptr<Recordset> folder = DataEmail.Recordset();
    const bool current = folder && EmailGrid.CurrentRow();
    const auto body = current ? folder->Get("Body") : DaoResult<DaoValue>(DaoValue());
    txtPreview.SetText(body.Ok() ? body->TextOrEmpty() : std::string());
}

}  // namespace mailvane
