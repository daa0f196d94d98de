#include "database/exchange/DatabaseCreated.h"

#include "core/Paths.h"
#include "core/project/frmProjectWizard.h"
#include "core/settings/frmSettings.h"
#include "database/view/frmViewDatabase.h"

namespace mailvane {

namespace {

/// A bare name may stand for a file in the program's folder.
std::string AbsolutePath(const Workbench& wb, const std::string& path) {
    const std::string inProgramFolder = wb.platform.programFolder + PathSeparator + path;
    const bool bare = path.find(PathSeparator) == std::string::npos;
    return bare && FileExists(inProgramFolder) ? inProgramFolder : path;
}

}  // namespace

void DatabaseCreated(Workbench& wb, const std::string& path, const std::string& table) {
    const std::string file = AbsolutePath(wb, path);
    if (!FileExists(file)) return;
    if (auto* wizard = wb.forms.Find<frmProjectWizard>()) wizard->txtDatabase.SetText(file);
    auto& settings = wb.forms.Get<frmSettings>();
    settings.txtAccessDBPath.SetText(file);  // the view takes the file with it
    settings.cmbAccessTable.SetEnabled(true);
    if (!table.empty()) settings.cmbAccessTable.SetText(table);
    if (auto* view = wb.forms.Find<frmViewDatabase>()) {
        view->Data1.DatabaseName = file;
        if (!table.empty()) view->Data1.RecordSource = table;
        view->cmdRefresh.Press();
    }
    settings.databaseCreated.Tell();
}

}  // namespace mailvane
