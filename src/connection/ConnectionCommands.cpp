#include "connection/ConnectionCommands.h"

#include "connection/frmConnectionWizard.h"
#include "connection/frmDial.h"

namespace mailvane {

namespace {

constexpr ToolRow<Workbench> Rows[] = {
    {"Connection Wizard", "&Connection Wizard...", "Set up the connection", "network-connect", "",
     [](Workbench& wb) { wb.forms.Get<frmConnectionWizard>().Show(); }},
    {"Dial", "Dia&l...", "Dial-up connections", "network-modem", "",
     [](Workbench& wb) { wb.forms.Get<frmDial>().Show(); }},
};

}  // namespace

void RegisterConnectionCommands(Workbench& wb) {
    wb.commands.Register(wb, Rows);
}

}  // namespace mailvane
