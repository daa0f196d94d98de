#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/Workbench.h"
#include "core/project/WizardPages.h"
#include "database/exchange/TableRuns.h"
#include "platform/tables/text/DelimitedReader.h"

namespace mailvane {

enum class DataWizardMode { NewDatabase = 0, Import = 1, Export = 2 };

/// Brings tables of other files into the recipients database, an existing one or a new one, and
/// takes a table out to a file. Every field is guessed: the file's name and Finish are enough.
class frmDataWizard final : public WorkbenchForm {
public:
    explicit frmDataWizard(Workbench& wb);

    Panel pnlFile{*this, "pnlFile"};
    Label lblDatabase{*this, "lblDatabase"};
    TextBox txtFile{*this, "txtFile"};
    Button cmdBrowse{*this, "cmdBrowse", [this] { Browse(); }};
    ListBox lstTables{*this, "lstTables", ListBox::Selection::Multiple};
    CheckBox chkSelected{*this, "chkSelected"};
    Panel pnlFormat{*this, "pnlFormat"};
    ComboBox cmbDelimiter{*this, "cmbDelimiter"};
    ComboBox cmbQuote{*this, "cmbQuote"};
    ComboBox cmbCharset{*this, "cmbCharset"};
    CheckBox chkHeader{*this, "chkHeader", true};
    Grid Grid1{*this, "Grid1"};
    Panel pnlTable{*this, "pnlTable"};
    OptionButton optNewTable{*this, "optNewTable", true};
    TextBox txtTable{*this, "txtTable"};
    OptionButton optExistingTable{*this, "optExistingTable"};
    ComboBox cmbTable{*this, "cmbTable"};
    ListBox lstColumns{*this, "lstColumns"};
    ComboBox cmbColumn{*this, "cmbColumn", ComboBox::Style::Editable};
    Button cmdBack{*this, "cmdBack"};
    Button cmdNext{*this, "cmdNext"};
    Button cmdFinish{*this, "cmdFinish", [this] { Finish(); }};
    Button cmdCancel{*this, "cmdCancel", [this] { Cancel(); }};

    /// The file to import into, to make, or to export from.
    void Start(DataWizardMode mode, const std::string& database);

protected:
    bool OnQueryUnload() override { return !running_; }
    void OnUnload() override;

private:
    void FillChoices();
    void ShowMode();
    void OpenDatabase();
    void Browse();

    // What follows from what: file, format, table, header, columns.
    void ReadFile();
    void OpenSource();
    void TakeFormat();
    void ShowFormat();
    void ChooseTables();
    void TablesChosen();
    void ShowPreview();
    void GuessTable();
    void ShowColumns();
    void ShowMatches();
    void ShowNewTables();
    void ChangeMatch();
    void ShowStates();

    std::vector<std::size_t> ChosenTables() const;
    bool IsExport() const { return mode_ == DataWizardMode::Export; }
    bool OnlyDatabase() const;
    bool CheckSource();
    bool CheckInput();
    bool CheckTarget();
    std::vector<TableImportOptions> Imports() const;
    void Finish();
    bool Export();
    bool ImportInto(Database& database);
    bool MakeDatabase();
    void ImportFinished();
    void Cancel();

    DataWizardMode mode_ = DataWizardMode::Import;
    std::string database_;
    std::shared_ptr<Database> target_;  ///< open while the wizard is; null for a new one
    DelimitedFormat format_;
    std::shared_ptr<TableSource> source_;  ///< null without a file that can be read
    std::string sourceError_;
    std::vector<SourceColumn> columns_;  ///< of the one table that is chosen
    std::vector<std::string> matches_;   ///< by source column
    std::string guessedTable_;
    std::string firstTable_;  ///< that the import has made or filled
    std::optional<WizardPages> pages_;
    bool filling_ = false;
    bool running_ = false;
};

/// Opens the wizard: a new database's file is asked for first; an import goes into the project's
/// database, an export comes out of it.
void StartDataWizard(Workbench& wb, DataWizardMode mode);

}  // namespace mailvane
