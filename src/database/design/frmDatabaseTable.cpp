#include "database/design/frmDatabaseTable.h"

#include <algorithm>

#include "core/MessageBoxes.h"
#include "core/Paths.h"
#include "core/Running.h"
#include "core/Waiting.h"
#include "core/run/LongRun.h"
#include "core/settings/frmSettings.h"
#include "core/text/Text.h"
#include "database/design/frmDatabaseTablePK.h"
#include "database/view/frmViewDatabase.h"
#include "platform/dao/StatementHandler.h"

namespace mailvane {

namespace {

constexpr const char* ProceedQuestion = "\r\nDo you want to proceed anyway?";
constexpr const char* InvalidFile = "Invalid database file. ";
constexpr const char* InvalidNameTitle = "Invalid name";
constexpr const char* HowToAdd =
    "Enter the name of each field in the 'Field Name' textbox and click the 'Add' button. ";

struct FieldDataType {
    const char* name;
    FieldType type;
};

constexpr FieldDataType FieldDataTypeTable[] = {
    {"Byte", FieldType::Byte},
    {"Currency", FieldType::Currency},
    {"Date/Time", FieldType::Date},
    {"Double", FieldType::Double},
    {"Integer", FieldType::Integer},
    {"Long Integer", FieldType::Long},
    {"Memo (extended text)", FieldType::Memo},
    {"Single", FieldType::Single},
    {"Text", FieldType::Text},
    {"Yes/No", FieldType::Boolean},
    {"Memo", FieldType::Memo},
};
constexpr std::size_t OfferedTypes = 10;  ///< the last is only read

std::string NameOfType(FieldType type) {
    for (const FieldDataType& one : FieldDataTypeTable)
        if (one.type == type) return one.name;
    return {};
}

std::string ListItem(const std::string& name, const std::string& typeName) {
    return name + "\t" + typeName;
}

std::string NameInItem(const std::string& item) {
    return item.substr(0, item.find('\t'));
}

std::string TypeInItem(const std::string& item) {
    const std::size_t tab = item.find('\t');
    return tab == std::string::npos ? std::string() : item.substr(tab + 1);
}

/// Nothing for a name that stands for no type.
std::optional<Field> MakeField(const std::string& name, const std::string& typeName) {
    for (const FieldDataType& one : FieldDataTypeTable) {
        if (typeName != one.name) continue;
        Field field;
        field.name = name;
        field.type = one.type;
        field.allowZeroLength = field.IsText();
        return field;
    }
    return std::nullopt;
}

bool IsMissing(const std::string& name) {
    return name.empty() || name == " ";
}

}  // namespace

frmDatabaseTable::frmDatabaseTable(Workbench& wb)
    : WorkbenchForm(wb, "frmDatabaseTable", "Table designer") {
    for (std::size_t i = 0; i < OfferedTypes; ++i)
        cmbFieldDataType.AddItem(FieldDataTypeTable[i].name);
    lstFields.onClick = [this] { ShowSelected(); };
    txtTableName.onLeave = [this] { FollowTableName(); };
    cmdHelp.onClick = [this] { ShowHelpContext(wb_); };
}

void frmDatabaseTable::OnLoad() {
    suspended_.emplace(wb_);
    if (OpenDesignDatabase().Ok()) return;
    Tell(wb_, InvalidFile);
    Unload();
}

void frmDatabaseTable::OnUnload() {
    CloseDesignDatabase();
    suspended_.reset();
    if (auto* key = wb_.forms.Find<frmDatabaseTablePK>()) key->Unload();
}

DaoError frmDatabaseTable::OpenDesignDatabase() {
    workspace_ = Workspace::Create();
    const auto opened = workspace_->OpenDatabase(suspended_->Path());
    if (opened.Failed()) return opened.Error();
    database_ = *opened;
    return {};
}

void frmDatabaseTable::CloseDesignDatabase() {
    if (workspace_) workspace_->Close();
    database_ = nullptr;
    workspace_ = nullptr;
}

// --- The table ------------------------------------------------------------------------------

void frmDatabaseTable::NameTable(const std::string& name) {
    if (!database_) return;
    FillWithUserTables(*database_, txtTableName);
    txtTableName.SetText(name);
}

void frmDatabaseTable::LoadTableFields() {
    if (!database_) return;
    loadedTable_.clear();
    lstFields.Clear();
    for (const std::string& table : database_->UserTableNames().ValueOr({}))
        if (EqualText(table, Trim(txtTableName.Text()))) loadedTable_ = table;
    if (loadedTable_.empty()) return;
    for (const Field& field : database_->GetTableDef(loadedTable_).ValueOr({}).fields)
        lstFields.AddItem(ListItem(field.name, NameOfType(field.type)));
}

/// Another table that was chosen shows its columns, unless the ones of a new table would be lost.
void frmDatabaseTable::FollowTableName() {
    const bool listsNewTable = loadedTable_.empty() && lstFields.Count() > 0;
    if (listsNewTable || IsExisting() || txtTableName.ListIndex() < 0) return;
    LoadTableFields();
}

bool frmDatabaseTable::IsExisting() const {
    return database_ && !loadedTable_.empty() && EqualText(loadedTable_, Trim(txtTableName.Text()));
}

std::vector<std::string> frmDatabaseTable::FieldNames() const {
    std::vector<std::string> names;
    for (const std::string& item : lstFields.Items())
        names.push_back(NameInItem(item));
    return names;
}

/// The one where the keyboard stands, when it is selected, else the first.
std::optional<int> frmDatabaseTable::SelectedField() const {
    const std::vector<int> selected = lstFields.SelectedItems();
    if (selected.empty()) return std::nullopt;
    return lstFields.IsSelected(lstFields.ListIndex()) ? lstFields.ListIndex() : selected.front();
}

void frmDatabaseTable::ShowSelected() {
    const std::optional<int> selected = SelectedField();
    if (!selected) return;
    const std::string& item = lstFields.Items()[static_cast<std::size_t>(*selected)];
    txtFieldName.SetText(NameInItem(item));
    const std::optional<Field> field = MakeField("", TypeInItem(item));
    if (!field || !cmbFieldDataType.SetText(NameOfType(field->type)))
        cmbFieldDataType.SetListIndex(-1);
}

// --- Its columns ----------------------------------------------------------------------------

bool frmDatabaseTable::CheckFieldName() {
    if (IsMissing(txtFieldName.Text())) {
        Tell(wb_, "Please enter field name. ");
        txtFieldName.Focus();
        return false;
    }
    return true;
}

bool frmDatabaseTable::CheckFieldType() {
    if (cmbFieldDataType.ListIndex() >= 0) return true;
    Tell(wb_, "Please select data type for the '" + txtFieldName.Text() + "' column. ");
    return false;
}

std::optional<Field> frmDatabaseTable::TypedField() const {
    return MakeField(txtFieldName.Text(), cmbFieldDataType.Text());
}

void frmDatabaseTable::AddField() {
    if (!CheckFieldName() || !CheckFieldType()) return;
    const std::string name = txtFieldName.Text();
    if (!IsValidTableName(name))
        return Tell(wb_, InvalidNameText("Field", name), BoxIcon::None, InvalidNameTitle);
    const std::vector<std::string> names = FieldNames();
    if (std::find(names.begin(), names.end(), name) != names.end())
        return Tell(wb_, "Duplicate field. Please change name of your field. ", BoxIcon::Critical,
                    "Error");
    if (IsExisting()) {
        const BusyPointer busy(wb_);
        database_->AppendField(loadedTable_, *TypedField()).Ignore();
    }
    lstFields.AddItem(ListItem(name, cmbFieldDataType.Text()));
    txtFieldName.SetText("");
    txtFieldName.Focus();
}

void frmDatabaseTable::Modify() {
    if (!CheckFieldName()) return;
    const std::string name = txtFieldName.Text();
    if (!IsValidTableName(name))
        return Tell(wb_, InvalidNameText("Field", name), BoxIcon::None, InvalidNameTitle);
    if (lstFields.Count() == 0)
        return Tell(wb_, std::string("Please define fields. \r\n\r\n") + HowToAdd);
    const std::optional<int> selected = SelectedField();
    if (!selected)
        return Tell(wb_, "Please select the field you want to modify. Just click on it's name. ");
    if (!CheckFieldType()) return;
    if (IsExisting()) {
        const std::string old = NameInItem(lstFields.Items()[static_cast<std::size_t>(*selected)]);
        if (!ConfirmLoss(old)) return;
        ChangeField(old, *TypedField());
    }
    lstFields.SetItem(*selected, ListItem(name, cmbFieldDataType.Text()));
}

/// The old column goes and the new one comes as one unit. It goes under a name that is nobody's, so
/// that the new one may have its name, and a table its only column changed.
void frmDatabaseTable::ChangeField(const std::string& oldName, const Field& field) {
    const BusyPointer busy(wb_);
    const std::string going = "MSysChanged";
    database_
        ->Transaction([&] {
            DaoError outcome = database_->RenameField(loadedTable_, oldName, going);
            if (outcome.Ok()) outcome = database_->AppendField(loadedTable_, field);
            if (outcome.Ok()) outcome = database_->DeleteField(loadedTable_, going);
            return outcome;
        })
        .Ignore();
}

void frmDatabaseTable::Delete() {
    if (lstFields.Count() == 0)
        return Tell(wb_,
                    std::string("Please define some columns for this table. \r\n\r\n") + HowToAdd);
    const std::vector<int> selected = lstFields.SelectedItems();
    if (selected.empty())
        return Tell(wb_, "Please select the field you want to delete. Just click on it's name. ");
    const bool existing = IsExisting();
    for (auto index = selected.rbegin(); index != selected.rend(); ++index) {
        if (existing) {
            const std::string name =
                NameInItem(lstFields.Items()[static_cast<std::size_t>(*index)]);
            if (!ConfirmLoss(name)) continue;
            const BusyPointer busy(wb_);
            database_->DeleteField(loadedTable_, name).Ignore();
        }
        lstFields.RemoveItem(*index);
    }
}

bool frmDatabaseTable::ConfirmLoss(const std::string& field) {
    return AskYesNo(wb_, "The contents of field `" + field + "` will be deleted." + ProceedQuestion,
                    BoxIcon::Exclamation);
}

// --- Building -------------------------------------------------------------------------------

bool frmDatabaseTable::CheckTable() {
    if (IsMissing(txtTableName.Text())) {
        Tell(wb_, "Please enter Table name. ");
        txtTableName.Focus();
        return false;
    }
    const std::string name = Trim(txtTableName.Text());
    txtTableName.SetText(name);
    if (!IsValidTableName(name)) {
        Tell(wb_, InvalidNameText("Table", name), BoxIcon::None, InvalidNameTitle);
        txtTableName.Focus();
        return false;
    }
    if (lstFields.Count() == 0) {
        Tell(wb_,
             "Please define some columns for this table. \r\n\r\nEnter the name of each field in "
             "the 'Field Name' text box and click the 'Add' button. ");
        txtFieldName.Focus();
        return false;
    }
    return true;
}

bool frmDatabaseTable::AskPrimaryKey() {
    auto& key = wb_.forms.Get<frmDatabaseTablePK>();
    key.Offer(FieldNames());
    ShowModalDialog(wb_, key);
    return key.Accepted();
}

/// False when it was stopped: what was defined is still there.
bool frmDatabaseTable::Build() {
    if (!CheckTable()) return false;
    if (!database_) {
        Tell(wb_, InvalidFile);
        return false;
    }
    const std::string name = txtTableName.Text();
    const bool isNew = !IsExisting();
    if (isNew && (!AskPrimaryKey() || !BuildTable(name))) return false;
    NameTable(name);
    LoadTableFields();
    if (isNew) Tell(wb_, "Your new '" + name + "' table has been successfully created. ");
    txtTableName.Focus();
    return true;
}

bool frmDatabaseTable::CheckFieldNames() {
    for (const std::string& name : FieldNames()) {
        if (IsValidTableName(name)) continue;
        const BoxRequest request{InvalidNameText("Field", name), InvalidNameTitle, BoxIcon::None,
                                 BoxButtons::OkCancel};
        if (wb_.platform.windows.MessageBox(request) == BoxAnswer::Cancel) return false;
    }
    return true;
}

/// The table comes with its key in one step. True when it is there.
bool frmDatabaseTable::BuildTable(const std::string& name) {
    if (!CheckFieldNames()) return false;
    StatementHandler handler({}, [this](const DaoError& error) {
        return AskYesNo(wb_, error.description + ProceedQuestion, BoxIcon::Exclamation);
    });
    TableDef table;
    table.name = name;
    for (const std::string& item : lstFields.Items()) {
        const std::optional<Field> field = MakeField(NameInItem(item), TypeInItem(item));
        const DaoError added =
            field ? table.AppendField(*field) : MakeDaoError(dao_error::DataConversion);
        if (!handler.GoOn(added)) return false;
    }
    const std::string key = wb_.forms.Get<frmDatabaseTablePK>().PrimaryKey();
    if (!key.empty() && table.FindField(key) == nullptr) {
        Field number;
        number.name = key;
        number.type = FieldType::Long;
        number.attributes = AutoIncrementAttribute;
        if (!handler.GoOn(table.AppendField(number))) return false;
    }
    if (!key.empty() && table.FindField(key) != nullptr)
        table.indexes.push_back({"Index1", {key}, true, false});
    const DaoError built = database_->AppendTable(table);
    return handler.GoOn(built) && built.Ok();
}

void frmDatabaseTable::Finish() {
    cmdOk.SetEnabled(false);
    const bool done = Build();
    cmdOk.SetEnabled(true);
    if (!done) return;
    const DaoError failed = Reconnect();
    if (failed.Ok() || AskYesNo(wb_, failed.description + "\r\n\r\nDo you want to continue?",
                                BoxIcon::None, "Error")) {
        Unload();
        return;
    }
    suspended_.emplace(wb_);
    OpenDesignDatabase().Ignore();  // the next build says that it is closed
}

/// The view has its connection again, and the table that it showed.
DaoError frmDatabaseTable::Reconnect() {
    const BusyPointer busy(wb_);
    if (auto* key = wb_.forms.Find<frmDatabaseTablePK>()) key->Unload();
    auto* view = wb_.forms.Find<frmViewDatabase>();
    if (!view) ShowTablesInSettings();
    CloseDesignDatabase();
    suspended_.reset();
    if (!view) return {};
    const DaoError failed = view->Data1.Database() ? DaoError() : view->Data1.Refresh();
    view->cmdRefresh.Press();
    return failed;
}

/// The settings know the new table even when the view is not there to tell them.
void frmDatabaseTable::ShowTablesInSettings() {
    ComboBox& tables = wb_.forms.Get<frmSettings>().cmbAccessTable;
    const std::string chosen = tables.Text();
    FillWithUserTables(*database_, tables);
    if (!tables.SetText(chosen)) tables.SetListIndex(0);
    tables.SetEnabled(true);
}

// --- Opening --------------------------------------------------------------------------------

namespace {

/// The designer has the file to itself while it is open.
void ShowDesigner(Workbench& wb, const std::function<void(frmDatabaseTable&)>& prepare) {
    LongRun run(wb, {"Designing a table", Holds::Recipients});
    if (!run.Began()) return;
    auto& designer = wb.forms.Get<frmDatabaseTable>();
    run.onEndAsked = [&designer] { designer.Unload(); };
    prepare(designer);
    ShowModalDialog(wb, designer);
}

}  // namespace

void DesignNewTable(Workbench& wb) {
    if (wb.forms.Get<frmSettings>().txtAccessDBPath.Text().empty())
        return Tell(wb, "Please create new database or open existing database first.");
    const std::string name =
        Trim(wb.platform.windows.InputBox({"Please enter new table name: ", "New table", ""})
                 .value_or(""));
    if (name.empty()) return;
    if (!IsValidTableName(name))
        return Tell(wb, InvalidNameText("Table", name), BoxIcon::None, InvalidNameTitle);
    ShowDesigner(wb, [&](frmDatabaseTable& designer) {
        designer.NameTable(name);
        designer.cmbFieldDataType.SetText("Text");
    });
}

void DesignTable(Workbench& wb, const std::string& table) {
    ShowDesigner(wb, [&](frmDatabaseTable& designer) {
        designer.NameTable(table);
        designer.cmdNapuniPolja.Press();
    });
}

}  // namespace mailvane
