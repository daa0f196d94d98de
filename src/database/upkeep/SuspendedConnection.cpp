#include "database/upkeep/SuspendedConnection.h"

#include "core/settings/frmSettings.h"
#include "database/view/frmViewDatabase.h"

namespace mailvane {

SuspendedConnection::SuspendedConnection(Workbench& wb) : wb_(wb) {
    auto* view = wb_.forms.Find<frmViewDatabase>();
    if (view) path_ = view->Data1.DatabaseName;
    if (path_.empty()) path_ = wb_.forms.Get<frmSettings>().txtAccessDBPath.Text();
    if (view) view->Suspend();
}

SuspendedConnection::~SuspendedConnection() {
    if (auto* view = wb_.forms.Find<frmViewDatabase>()) view->Resume();
}

void SuspendedConnection::ShowTable(const std::string& table) {
    auto* view = wb_.forms.Find<frmViewDatabase>();
    if (view) view->Data1.RecordSource = table;
}

}  // namespace mailvane
