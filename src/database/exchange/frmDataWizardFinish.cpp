#include <algorithm>

#include "core/MessageBoxes.h"
#include "core/Paths.h"
#include "core/settings/frmSettings.h"
#include "core/text/Text.h"
#include "database/exchange/DatabaseCreated.h"
#include "database/exchange/frmDataWizard.h"
#include "database/view/frmViewDatabase.h"

namespace mailvane {

bool frmDataWizard::OnlyDatabase() const {
    return mode_ == DataWizardMode::NewDatabase && Trim(txtFile.Text()).empty();
}

bool frmDataWizard::CheckSource() {
    const std::string file = Trim(txtFile.Text());
    std::string problem;
    if (IsExport() && file.empty())
        problem = "Please enter the name of the file to export to.";
    else if (!IsExport() && !FileExists(file))
        problem = "File not found. Please enter proper location for your text file.";
    else if (!source_)
        problem = sourceError_;
    else if (ChosenTables().empty())
        problem = "Please select table. Just click on its name.";
    if (problem.empty()) return true;
    Tell(wb_, problem, BoxIcon::Exclamation);
    txtFile.Focus();
    return false;
}

bool frmDataWizard::CheckTarget() {
    if (ChosenTables().size() > 1) return true;
    txtTable.SetText(Trim(txtTable.Text()));
    if (optNewTable.IsSet() && !IsValidTableName(txtTable.Text())) {
        Tell(wb_, InvalidNameText("Table", txtTable.Text()), BoxIcon::Exclamation, "Invalid name");
        txtTable.Focus();
        return false;
    }
    for (const std::string& column : matches_) {
        const bool again = std::count_if(matches_.begin(), matches_.end(), [&](const auto& other) {
                               return EqualText(other, column);
                           }) > 1;
        const bool valid =
            optNewTable.IsSet() ? IsValidTableName(column) : cmbColumn.IndexOf(column) > 0;
        if (column.empty() || (valid && !again)) continue;
        Tell(wb_,
             valid ? "Two columns go to the column '" + column + "'."
                   : InvalidNameText("Column", column),
             BoxIcon::Exclamation, "Invalid name");
        lstColumns.Focus();
        return false;
    }
    return true;
}

bool frmDataWizard::CheckInput() {
    txtFile.SetText(Trim(txtFile.Text()));
    if (OnlyDatabase()) return true;
    return CheckSource() && (IsExport() || CheckTarget());
}

std::vector<TableImportOptions> frmDataWizard::Imports() const {
    const std::vector<std::size_t> tables = ChosenTables();
    TableImportOptions import;
    import.source = tables.front();
    import.header = chkHeader.Checked();
    import.newTable = optNewTable.IsSet();
    import.table = import.newTable ? txtTable.Text() : cmbTable.Text();
    import.columns = matches_;
    return {import};
}

void frmDataWizard::Finish() {
    if (running_ || !CheckInput()) return;
    running_ = true;
    cmdFinish.SetEnabled(false);
    bool done = false;
    if (mode_ == DataWizardMode::NewDatabase) {
        done = MakeDatabase();
    } else if (!target_) {
        const auto opened = wb_.state.MainWorkspace->OpenDatabase(database_);
        Tell(wb_, opened.Ok() ? database_ : opened.Error().description, BoxIcon::Exclamation);
    } else {
        done = IsExport() ? Export() : ImportInto(*target_);
    }
    running_ = false;
    cmdFinish.SetEnabled(true);
    if (!done) return;
    if (mode_ == DataWizardMode::NewDatabase) DatabaseCreated(wb_, database_, firstTable_);
    if (mode_ == DataWizardMode::Import) ImportFinished();
    if (auto* view = wb_.forms.Find<frmViewDatabase>()) view->cmdRefresh.Press();
    Unload();
}

bool frmDataWizard::ImportInto(Database& database) {
    const auto source = source_;  // what is typed meanwhile opens nothing
    const std::vector<std::size_t> tables = ChosenTables();
    const std::vector<TableImportOptions> imports =
        tables.size() > 1 ? ImportsIntoNewTables(*source, tables, cmbTable.Items()) : Imports();
    firstTable_ = imports.front().table;
    return RunImports(wb_, database, *source, imports);
}

bool frmDataWizard::MakeDatabase() {
    return MakeDatabaseFile(wb_, database_, [this](Database& database) {
        return OnlyDatabase() || ImportInto(database);
    });
}

bool frmDataWizard::Export() {
    TableExportOptions options;
    options.table = source_->Tables().at(ChosenTables().front());
    options.file = txtFile.Text();
    options.format = format_;
    options.header = chkHeader.Checked();
    const auto* view = wb_.forms.Find<frmViewDatabase>();
    if (chkSelected.Checked() && view) options.rows = view->Grid1.SelBookmarks().All();
    if (FileExists(options.file) &&
        !AskYesNo(wb_,
                  "The file '" + options.file + "' already exists. Do you want to replace it?"))
        return false;
    return RunExport(wb_, *target_, options);
}

/// The settings know the new tables even when the view is not there to tell them.
void frmDataWizard::ImportFinished() {
    if (wb_.forms.Find<frmViewDatabase>()) return;
    ComboBox& tables = wb_.forms.Get<frmSettings>().cmbAccessTable;
    const std::string chosen = tables.Text();
    FillWithUserTables(*target_, tables);
    if (!tables.SetText(chosen)) tables.SetListIndex(0);
}

void frmDataWizard::Cancel() {
    if (running_)
        wb_.state.CancelRequested = true;
    else
        Unload();
}

}  // namespace mailvane
