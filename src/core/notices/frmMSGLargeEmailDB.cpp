#include "core/notices/frmMSGLargeEmailDB.h"

#include "core/MessageBoxes.h"
#include "core/notices/frmMSGCompact.h"

namespace mailvane {

frmMSGLargeEmailDB::frmMSGLargeEmailDB(Workbench& wb)
    : NoticeForm(wb, "frmMSGLargeEmailDB", "Large messages database", "LargeEmailDB", Check1) {}

void frmMSGLargeEmailDB::Compact() {
    if (!wb_.shell) return;
    cmdCompact.SetEnabled(false);
    if (wb_.shell->CompactMessageStore()) Tell(wb_, MessagesCompactedText);
    cmdCompact.SetEnabled(true);
}

}  // namespace mailvane
