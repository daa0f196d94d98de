#include "store/StoreCommands.h"

#include "store/view/frmViewEmail.h"

namespace mailvane {

namespace {

constexpr ToolRow<Workbench> Rows[] = {
    {"Email", "&E-mail", "Show the mail folders", "mail-folder-inbox", "F6",
     [](Workbench& wb) { ShowView(wb.forms.Get<frmViewEmail>()); }},
};

}  // namespace

void RegisterStoreCommands(Workbench& wb) {
    wb.commands.Register(wb, Rows);
}

}  // namespace mailvane
