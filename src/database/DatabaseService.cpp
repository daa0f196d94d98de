#include "database/DatabaseService.h"

#include "core/Text.h"
#include "database/frmDataWizard.h"
#include "database/frmViewDatabase.h"

namespace mailvane {

DatabaseService::DatabaseService(Workbench& wb) : wb_(wb) {
    created_ = wb.forms.created.Observe([this](Form& form) {
        if (auto* settings = dynamic_cast<frmSettings*>(&form)) Attach(*settings);
    });
}

void DatabaseService::Attach(frmSettings& settings) {
    settings.cmdCreateDatabase.onClick = [this] {
        StartDataWizard(wb_, DataWizardMode::NewDatabase);
    };
    settings.cmdImportData.onClick = [this] { StartDataWizard(wb_, DataWizardMode::Import); };
    databaseChanged_ = settings.databaseChanged.Observe([this] {
        if (auto* view = wb_.forms.Find<frmViewDatabase>()) view->Reconnect();
    });
    tableChosen_ = settings.tableChosen.Observe([this] { FollowTable(); });
}

void DatabaseService::FollowTable() {
    auto* view = wb_.forms.Find<frmViewDatabase>();
    const std::string table = wb_.forms.Get<frmSettings>().cmbAccessTable.Text();
    if (!view || table.empty() || EqualText(table, view->Data1.CurrentTable())) return;
    view->Data1.RecordSource = table;
    view->cmdRefresh.Press();
}

}  // namespace mailvane
