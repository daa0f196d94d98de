#include "database/DatabaseService.h"

#include "core/Paths.h"
#include "core/text/Text.h"
#include "database/DatabaseCommands.h"
#include "database/design/frmDatabaseTable.h"
#include "database/exchange/TableRuns.h"
#include "database/exchange/frmDataWizard.h"
#include "database/view/frmViewDatabase.h"
#include "platform/os/Files.h"
#include "platform/tables/AccessSource.h"

namespace mailvane {

DatabaseService::DatabaseService(Workbench& wb) : wb_(wb) {
    created_ = wb.forms.created.Observe([this](Form& form) {
        if (auto* settings = dynamic_cast<frmSettings*>(&form)) Attach(*settings);
        if (auto* view = dynamic_cast<frmViewDatabase*>(&form)) AttachTableTools(wb_, *view);
    });
}

void DatabaseService::Attach(frmSettings& settings) {
    settings.cmdCreateDatabase.onClick = [this] {
        StartDataWizard(wb_, DataWizardMode::NewDatabase);
    };
    settings.cmdNewTable.onClick = [this] { DesignNewTable(wb_); };
    settings.cmdImportData.onClick = [this] { StartDataWizard(wb_, DataWizardMode::Import); };
    settings.cmdExportData.onClick = [this] { StartDataWizard(wb_, DataWizardMode::Export); };
    // An Access file is imported before the form takes it for a database.
    settings.txtAccessDBPath.onChange = [this, &settings,
                                         open = settings.txtAccessDBPath.onChange] {
        if (!TakeAccessFile(settings)) open();
    };
    lastDatabase_.clear();
    databaseChanged_ = settings.databaseChanged.Observe([this, &settings] {
        lastDatabase_ = settings.txtAccessDBPath.Text();
        if (auto* view = wb_.forms.Find<frmViewDatabase>())
            view->Reconnect();
        else if (!wb_.state.LoadingProject)
            DeleteFile(wb_.state.ProjectFolder + PathSeparator + BookmarkFile);
    });
    tableChosen_ = settings.tableChosen.Observe([this] { FollowTable(); });
}

/// True when the box named an Access file and names another file now: what was imported from it, or
/// the one before.
bool DatabaseService::TakeAccessFile(frmSettings& settings) {
    const std::string file = settings.txtAccessDBPath.Text();
    if (wb_.state.LoadingProject || wb_.state.UnattendedRun || !FileExists(file) ||
        !IsAccessFile(file))
        return false;
    std::string imported = lastDatabase_;
    OfferAccessImport(wb_, file, imported);
    settings.txtAccessDBPath.SetText(imported);
    return true;
}

void DatabaseService::FollowTable() {
    auto* view = wb_.forms.Find<frmViewDatabase>();
    const std::string table = wb_.forms.Get<frmSettings>().cmbAccessTable.Text();
    if (!view || table.empty() || EqualText(table, view->Data1.CurrentTable())) return;
    view->Data1.RecordSource = table;
    view->cmdRefresh.Press();
}

}  // namespace mailvane
