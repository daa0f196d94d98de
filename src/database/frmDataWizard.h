#pragma once

#include <string>

#include "core/Workbench.h"

namespace mailvane {

enum class DataWizardMode { NewDatabase = 0, Import = 1, Export = 2 };

/// Brings delimited text into the recipients database, an existing one or a new one.
class frmDataWizard final : public WorkbenchForm {
public:
    explicit frmDataWizard(Workbench& wb);

    Label lblDatabase{*this, "lblDatabase"};
    TextBox txtFile{*this, "txtFile"};
    Button cmdBrowse{*this, "cmdBrowse", [this] { Browse(); }};
    TextBox txtTable{*this, "txtTable"};
    CheckBox chkHeader{*this, "chkHeader", true};
    Button cmdFinish{*this, "cmdFinish", [this] { Finish(); }};
    Button cmdCancel{*this, "cmdCancel", [this] { Unload(); }};

    /// The file to import into, or to make.
    void Start(DataWizardMode mode, const std::string& database);

private:
    void Browse();
    void GuessTable();
    bool CheckInput();
    void Finish();
    bool MakeDatabase();
    bool ImportInto(Database& database);
    void DatabaseCreated();
    DataWizardMode mode_ = DataWizardMode::Import;
    std::string database_;
};

/// Opens the wizard: a new database's file is asked for first; an import goes into the project's
/// database.
void StartDataWizard(Workbench& wb, DataWizardMode mode);

}  // namespace mailvane
