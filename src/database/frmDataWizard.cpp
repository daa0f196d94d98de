#include "database/frmDataWizard.h"

#include "core/Paths.h"
#include "core/Progress.h"
#include "core/Project.h"
#include "core/Text.h"
#include "core/frmSettings.h"
#include "database/TextImport.h"
#include "database/frmViewDatabase.h"
#include "platform/os/Files.h"

namespace mailvane {

namespace {
constexpr const char* DatabaseExtension = ".db";
}

frmDataWizard::frmDataWizard(Workbench& wb)
    : WorkbenchForm(wb, "frmDataWizard", "Import delimited text") {
    txtFile.onChange = [this] { GuessTable(); };
}

void frmDataWizard::Start(DataWizardMode mode, const std::string& database) {
    mode_ = mode;
    database_ = database;
    SetCaption(mode == DataWizardMode::NewDatabase ? "New database" : "Import delimited text");
    lblDatabase.SetText(database);
}

void frmDataWizard::Browse() {
    const std::string file = BrowseFile(wb_, false, "Delimited text", ".csv");
    if (!file.empty()) txtFile.SetText(file);
}

void frmDataWizard::GuessTable() {
    if (!txtTable.Text().empty() || !FileExists(txtFile.Text())) return;
    std::string name = FileNameFromPath(txtFile.Text(), PathSeparator, true);
    if (name.empty()) name = FileNameFromPath(txtFile.Text(), PathSeparator, false);
    if (IsValidTableName(name)) txtTable.SetText(name);
}

bool frmDataWizard::CheckInput() {
    txtFile.SetText(Trim(txtFile.Text()));
    txtTable.SetText(Trim(txtTable.Text()));
    const bool onlyDatabase = mode_ == DataWizardMode::NewDatabase && txtFile.Text().empty();
    if (onlyDatabase) return true;
    if (!FileExists(txtFile.Text())) {
        Tell(wb_, "File not found. Please enter proper location for your text file.",
             BoxIcon::Exclamation);
        txtFile.Focus();
        return false;
    }
    if (!IsValidTableName(txtTable.Text())) {
        Tell(wb_, InvalidNameText("Table", txtTable.Text()), BoxIcon::Exclamation, "Invalid name");
        txtTable.Focus();
        return false;
    }
    return true;
}

void frmDataWizard::Finish() {
    if (!CheckInput()) return;
    const BusyPointer busy(wb_);
    cmdFinish.SetEnabled(false);
    const bool done = mode_ == DataWizardMode::NewDatabase ? MakeDatabase() : [this] {
        const auto opened = wb_.state.MainWorkspace->OpenDatabase(database_);
        if (opened.Failed()) {
            Tell(wb_, opened.Error().description, BoxIcon::Exclamation);
            return false;
        }
        const bool imported = ImportInto(**opened);
        (*opened)->Close();
        return imported;
    }();
    cmdFinish.SetEnabled(true);
    if (!done) return;
    if (mode_ == DataWizardMode::NewDatabase) DatabaseCreated();
    if (auto* view = wb_.forms.Find<frmViewDatabase>()) view->cmdRefresh.Press();
    Unload();
}

bool frmDataWizard::MakeDatabase() {
    const auto made = wb_.state.MainWorkspace->CreateDatabase(database_);
    if (made.Failed()) {
        Tell(wb_, made.Error().description, BoxIcon::Exclamation);
        return false;
    }
    const bool complete = txtFile.Text().empty() || ImportInto(**made);
    (*made)->Close();
    if (!complete) DeleteFile(database_);
    return complete;
}

bool frmDataWizard::ImportInto(Database& database) {
    const TextImportOptions options{txtFile.Text(), txtTable.Text(), chkHeader.Checked()};
    const auto size = static_cast<long>(FileSize(options.file)) + 1;
    wb_.state.CancelRequested = false;
    UpdateProgress(wb_, size, 0, "Import", "Importing records...");
    const TextImportResult result = ImportText(database, options, [this](std::int64_t bytes) {
        UpdateProgress(wb_, 0, static_cast<long>(bytes));
        YieldBriefly(wb_);
        return !wb_.state.CancelRequested;
    });
    wb_.state.CancelRequested = false;
    UpdateProgress(wb_, 0, size);
    if (result.error.empty())
        Tell(wb_,
             std::to_string(result.rows) + " records imported into the '" + options.table +
                 "' table.",
             BoxIcon::Information);
    else
        Tell(wb_, result.error, BoxIcon::Exclamation);
    return result.error.empty();
}

void frmDataWizard::DatabaseCreated() {
    frmSettings& settings = wb_.forms.Get<frmSettings>();
    settings.txtAccessDBPath.SetText(database_);
    settings.cmbAccessTable.SetEnabled(true);
    if (!txtTable.Text().empty()) settings.cmbAccessTable.SetText(txtTable.Text());
}

void StartDataWizard(Workbench& wb, DataWizardMode mode) {
    std::string database = wb.forms.Get<frmSettings>().txtAccessDBPath.Text();
    if (mode == DataWizardMode::NewDatabase) {
        database = BrowseFile(wb, true, "Databases", DatabaseExtension);
        if (database.empty()) return;
        if (FileExists(database)) {
            Tell(wb, "The file '" + database + "' already exists. Please choose another name.",
                 BoxIcon::Exclamation);
            return;
        }
    } else if (database.empty()) {
        Tell(wb, "Please create new database or open existing database first.");
        return;
    }
    auto& wizard = wb.forms.Get<frmDataWizard>();
    wizard.Start(mode, database);
    ShowModalDialog(wb, wizard);
}

}  // namespace mailvane
