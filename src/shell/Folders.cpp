#include "shell/Folders.h"

#include "connection/ConnectionCommands.h"
#include "core/commands/CoreCommands.h"
#include "database/DatabaseCommands.h"
#include "merge/MergeCommands.h"
#include "receive/ReceiveCommands.h"
#include "send/SendCommands.h"
#include "shell/ShellCommands.h"
#include "store/StoreCommands.h"

namespace mailvane {

Folders::Folders(Workbench& wb) : databases_(wb), sending_(wb), connections_(wb) {
    RegisterCoreCommands(wb);
    RegisterStoreCommands(wb);
    RegisterDatabaseCommands(wb);
    RegisterConnectionCommands(wb);
    RegisterSendCommands(wb);
    RegisterMergeCommands(wb);
    RegisterReceiveCommands(wb);
    RegisterShellCommands(wb);  // last: what "Send and Receive" says depends on the others
}

}  // namespace mailvane
