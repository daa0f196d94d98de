#include "merge/message/frmViewMerge.h"

#include "core/Machine.h"
#include "core/MessageBoxes.h"
#include "core/Paths.h"
#include "core/Waiting.h"
#include "core/notices/frmMSGResources.h"
#include "core/run/frmStatus.h"
#include "core/settings/Settings.h"
#include "core/settings/frmSettings.h"
#include "core/text/Text.h"
#include "database/view/frmFind.h"
#include "merge/message/AddressBook.h"
#include "merge/message/MergeBars.h"
#include "merge/run/frmMerge.h"

namespace mailvane {

namespace {

constexpr int MostScarceResources = 15;  // per cent free

std::string TagOf(const std::string& column) {
    return "[" + column + "]";
}

bool NamesAnAddress(const std::string& column) {
    return ContainsText(column, "email") || ContainsText(column, "e-mail");
}

}  // namespace

frmViewMerge::frmViewMerge(Workbench& wb)
    : WorkbenchForm(wb, "frmViewMerge", "E-mail Merge", FormStyle::Child),
      Data1(wb),
      RecentFile1(wb, "Mailvane Merge") {
    AddOwnTools();
    AddMergeBands(ActiveBar1);
    lstFields.SetTip(
        "Click the field name and without releasing the left mouse key, drag it to the point where "
        "you would like to define the field from the table.");
    WireLists();
    cmbTable.onClick = [this] {
        if (!filling_) SwitchTable();
    };
    cmdRefresh.onClick = [this] { Refresh(); };
    cmdSCHSend.onClick = [this] { SendScheduled(); };
    txtFrom.onLeave = [this] { LearnAddress(txtFrom.Text()); };
    Timer1.onTimer = [this] { KeepInLine(); };
    RecentFile1.onChange = [this](const auto& paths) { ShowRecentFiles(paths); };
}

void frmViewMerge::WireLists() {
    lstFields.dragText = [this](int index) {
        return TagOf(lstFields.Items().at(static_cast<std::size_t>(index)));
    };
    lstFields.onDoubleClick = [this] {
        if (lstFields.ListIndex() >= 0) txtBody.ReplaceSelection(TagOf(lstFields.Text()));
    };
    for (ListBox* list : {&lstAttach, &lstHTML})
        list->onDropText = [list](const std::string& text) { list->SetItems({text}); };
    lstAttach.onContextMenu = [this] { Windows().PopupMenu(*this, AttachmentBand); };
    lstHTML.onContextMenu = [this] { Windows().PopupMenu(*this, HtmlFileBand); };
}

void frmViewMerge::OnLoad() {
    WarnOfScarceResources();
    addressList_ = ReadAddressList(wb_);
    completion_.SearchList = addressList_;
    completion_.Delimeter = AddressDelimiter;
    completion_.SetCompleteTextbox(txtFrom);
    RestoreWindowPlace(wb_, *this, "MergeMain", "MergeWindowState");
    Data1.Bind(Grid1);
    viewMade_ = wb_.forms.created.Observe([this](Form& form) {
        if (auto* view = dynamic_cast<frmViewDatabase*>(&form)) ObserveView(*view);
    });
    databaseCreated_ =
        wb_.forms.Get<frmSettings>().databaseCreated.Observe([this] { FollowNewDatabase(); });
    if (DatabaseNamed()) {
        ObserveView(wb_.forms.Get<frmViewDatabase>());
        FollowView();
        KeepInLine();
    }
    if (!IsLoaded()) return;
    PresetSender();
    RecentFile1.Load();
    const std::string last = RecentFile1.Paths().front();
    if (FileExists(last)) OpenMergeDocument(last);
    Timer1.Start();
}

void frmViewMerge::OnActivate() {
    ShowRecordCount();
}

/// A run that works on the message is ended first.
bool frmViewMerge::OnQueryUnload() {
    return MayUnload(wb_, *this, Holds::Message);
}

void frmViewMerge::OnUnload() {
    viewMade_.End();
    databaseCreated_.End();
    tableShown_.End();
    viewCloses_.End();
    StoreWindowPlace(wb_, *this, "MergeMain", "MergeWindowState");
    WriteAddressList(wb_, addressList_);
    Data1.Close();
    if (auto* find = wb_.forms.Find<frmFind>()) find->CloseFor(*this);
    // The dialog works on this form's message.
    if (auto* dialog = wb_.forms.Find<frmMerge>()) dialog->Unload();
}

void frmViewMerge::WarnOfScarceResources() {
    const int free = FreeResourcesPercent();
    if (free >= 1 && free <= MostScarceResources)
        ShowModalDialog(wb_, wb_.forms.Get<frmMSGResources>());
}

void frmViewMerge::LearnAddress(const std::string& text) {
    if (AppendAddress(addressList_, text)) completion_.SearchList = addressList_;
}

/// True when the project names a database file that is there. The user may choose to name one
/// instead of seeing this form.
bool frmViewMerge::DatabaseNamed() {
    frmSettings& settings = wb_.forms.Get<frmSettings>();
    if (FileExists(settings.txtAccessDBPath.Text())) return true;
    if (wb_.state.UnattendedRun) return false;
    if (AskYesNo(wb_,
                 "You must enter local file name for your database. \r\n\r\n"
                 "Do you want to do that now?")) {
        settings.ShowPage(frmSettings::DatabasePage, settings.txtAccessDBPath);
        Unload();
    }
    return false;
}

void frmViewMerge::ObserveView(frmViewDatabase& view) {
    tableShown_ = view.tableShown.Observe([this] { FollowView(); });
    viewCloses_ = view.Data1.aboutToClose.Observe([this] { Data1.Close(); });
}

/// Shows the table of the database view, over an opening of its file of this form's own.
void frmViewMerge::FollowView() {
    const auto* view = wb_.forms.Find<frmViewDatabase>();
    if (!view) return;
    Data1.DatabaseName = view->Data1.DatabaseName;
    Data1.RecordSource = view->Data1.RecordSource;
    if (view->Data1.Database())
        Data1.Refresh().Ignore();  // a table that cannot be read shows no rows and no columns
    else
        Data1.Close();
    std::vector<std::string> columns;
    if (Data1.Recordset())
        for (const Field& field : Data1.Recordset()->Fields())
            columns.push_back(field.name);
    // The same columns keep the user's choice of the address column.
    if (columns != lstFields.Items()) ChooseColumns();
    if (TableNames() != cmbTable.Items()) FillTableList();
}

/// This form follows the database view, so it needs one.
void frmViewMerge::FollowNewDatabase() {
    if (!wb_.forms.Find<frmViewDatabase>())
        UseTable(wb_.forms.Get<frmSettings>().cmbAccessTable.Text());
    cmdRefresh.Press();
}

std::vector<std::string> frmViewMerge::TableNames() const {
    if (!Data1.Database()) return {};
    return Data1.Database()->UserTableNames().ValueOr({});
}

void frmViewMerge::ChooseColumns() {
    FillFieldLists();
    txtTo.SetListIndex(txtTo.Count() > 0 ? 0 : -1);
    SelectEmailField();
}

std::string frmViewMerge::CurrentMergeTable() const {
    return Data1.CurrentTable();
}

void frmViewMerge::SelectEmailField() {
    const auto& columns = txtTo.Items();
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (!NamesAnAddress(columns[i])) continue;
        txtTo.SetListIndex(static_cast<int>(i));
        return;
    }
}

void frmViewMerge::FillFieldLists() {
    pnlTable.SetText(" Current table: " + CurrentMergeTable() + "      ");
    std::vector<std::string> columns;
    if (Data1.Recordset())
        for (const Field& field : Data1.Recordset()->Fields())
            columns.push_back(field.name);
    lstFields.SetItems(columns);
    txtTo.SetItems(std::move(columns));
}

void frmViewMerge::FillTableList() {
    filling_ = true;
    ComboBox& settingsTable = wb_.forms.Get<frmSettings>().cmbAccessTable;
    cmbTable.SetItems(TableNames());
    settingsTable.SetItems(cmbTable.Items());
    const std::string table =
        CurrentMergeTable().empty() ? CurrentDatabaseTable(wb_) : CurrentMergeTable();
    cmbTable.SetText(table);
    settingsTable.SetText(table);
    filling_ = false;
}

void frmViewMerge::SwitchTable() {
    const std::string table = cmbTable.Text();
    const BusyPointer busy(wb_);
    if (table != Data1.RecordSource) UseTable(table);
    ChooseColumns();
    ShowRecordCount();
}

/// The table in this form and in the database view.
void frmViewMerge::UseTable(const std::string& table) {
    ShowPanel(AccessingRecords);
    frmViewDatabase& view = wb_.forms.Get<frmViewDatabase>();
    view.Data1.RecordSource = table;
    view.cmdRefresh.Press();
    ShowPanel("");
}

void frmViewMerge::Refresh() {
    Grid1.SetRedraw(false);
    Data1.RecordSource = CurrentMergeTable();
    Data1.Refresh().Ignore();
    ChooseColumns();
    FillTableList();
    Grid1.SetRedraw(true);
}

/// Brings what names the table into line with the database view.
void frmViewMerge::KeepInLine() {
    const auto* view = wb_.forms.Find<frmViewDatabase>();
    if (loading_ || !view) return;
    if (!Data1.Database() && view->Data1.Database()) FollowView();
    const std::string table = view->Data1.CurrentTable();
    lblTable.SetText(table);
    pnlTable.SetText(" Current table: " + CurrentMergeTable() + "      ");
    filling_ = true;
    cmbTable.SetText(table);
    filling_ = false;
    const auto* status = wb_.forms.Find<frmStatus>();
    // A visible database view counts the same records, and its selection with them.
    if (!view->Visible() && !(status && status->Window.IsOpen())) ShowRecordCount();
}

void frmViewMerge::ShowRecordCount() {
    if (!wb_.shell || !Visible() || !Data1.Recordset() || !Data1.Recordset()->IsOpen()) return;
    wb_.shell->SetRecordPanel(std::to_string(Data1.Recordset()->RecordCount()) + " records.");
}

void frmViewMerge::ShowPanel(const std::string& text) {
    if (wb_.shell) wb_.shell->SetPanel(text);
}

void frmViewMerge::PresetSender() {
    const std::string sender = SenderLine(wb_);
    if (!sender.empty()) txtFrom.SetText(sender);
}

std::vector<Control*> frmViewMerge::MessageControls() {
    return {&txtFrom, &txtSubject, &txtBody, &txtTo, &lstAttach, &lstHTML, &cmbTable, &ActiveBar1};
}

std::string SenderLine(Workbench& wb) {
    const frmSettings& settings = wb.forms.Get<frmSettings>();
    const std::string name = settings.txtName.Text();
    const std::string address = settings.txtEmail.Text();
    if (name.empty() || address.empty()) return {};
    const std::string& quote = wb.state.QuoteChar;
    return quote + name + quote + " <" + address + ">";
}

}  // namespace mailvane
