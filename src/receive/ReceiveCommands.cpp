#include "receive/ReceiveCommands.h"

namespace mailvane {

namespace {

constexpr ToolRow<Workbench> Rows[] = {
    {"Receive All", "Rece&ive All", "Receive new messages", "mail-receive"},
    {"Message rules", "Message r&ules...", "Rules for received messages", "view-filter"},
    {"Import", "Im&port jobs...", "Jobs that import values from messages", "mail-receive"},
    {"Mailing lists", "Mailing &lists...", "Mailing lists with autoresponders", "contact-new"},
};

}  // namespace

void RegisterReceiveCommands(Workbench& wb) {
    wb.commands.Register(wb, Rows);
}

}  // namespace mailvane
