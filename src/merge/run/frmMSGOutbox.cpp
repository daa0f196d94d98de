#include "merge/run/frmMSGOutbox.h"

namespace mailvane {

frmMSGOutbox::frmMSGOutbox(Workbench& wb)
    : NoticeForm(wb, "frmMSGOutbox", "Outbox", "Outbox", Check1) {}

}  // namespace mailvane
