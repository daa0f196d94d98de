#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/Workbench.h"
#include "database/upkeep/SuspendedConnection.h"
#include "platform/dao/file/Workspace.h"

namespace mailvane {

/// Defines a new table of the recipients database, or changes the columns of an existing one. A new
/// table is made whole when it is built; an existing one takes each change at once. Works on a
/// connection of its own, and the view's is closed meanwhile.
class frmDatabaseTable final : public WorkbenchForm {
public:
    explicit frmDatabaseTable(Workbench& wb);

    ComboBox txtTableName{*this, "txtTableName", ComboBox::Style::Editable};
    /// Each item is a column's name, a tab and the name of its type.
    ListBox lstFields{*this, "lstFields", ListBox::Selection::Multiple};
    TextBox txtFieldName{*this, "txtFieldName"};
    ComboBox cmbFieldDataType{*this, "cmbFieldDataType"};
    Button cmdAddField{*this, "cmdAddField", [this] { AddField(); }};
    Button cmdModify{*this, "cmdModify", [this] { Modify(); }};
    Button cmdDelete{*this, "cmdDelete", [this] { Delete(); }};
    Button cmdBuildTable{*this, "cmdBuildTable", [this] { Build(); }};
    Button cmdOk{*this, "cmdOk", [this] { Finish(); }};
    Button cmdCancel{*this, "cmdCancel", [this] { Unload(); }};
    Button cmdHelp{*this, "cmdHelp"};
    /// Loads the columns of the table that txtTableName names.
    Button cmdNapuniPolja{*this, "cmdNapuniPolja", Button::HiddenButton,
                          [this] { LoadTableFields(); }};

    /// Offers the user tables and names one of them, or a new one.
    void NameTable(const std::string& name);

protected:
    void OnLoad() override;
    void OnUnload() override;

private:
    DaoError OpenDesignDatabase();
    void CloseDesignDatabase();
    void LoadTableFields();
    void FollowTableName();
    /// The listed columns are those of an existing table, and txtTableName names it.
    bool IsExisting() const;
    std::vector<std::string> FieldNames() const;
    std::optional<int> SelectedField() const;
    void ShowSelected();

    bool CheckFieldName();
    bool CheckFieldType();
    std::optional<Field> TypedField() const;
    void AddField();
    void Modify();
    void ChangeField(const std::string& oldName, const Field& field);
    void Delete();
    bool ConfirmLoss(const std::string& field);

    bool CheckTable();
    bool AskPrimaryKey();
    bool Build();
    bool BuildTable(const std::string& name);
    bool CheckFieldNames();
    void Finish();
    DaoError Reconnect();
    void ShowTablesInSettings();

    std::optional<SuspendedConnection> suspended_;
    std::shared_ptr<Workspace> workspace_;
    std::shared_ptr<Database> database_;
    std::string loadedTable_;  ///< whose columns were loaded; "" while a new one is defined
};

/// Asks for a name and opens the designer for a new table of the project's database.
void DesignNewTable(Workbench& wb);
/// Opens the designer on a table of the project's database.
void DesignTable(Workbench& wb, const std::string& table);

}  // namespace mailvane
