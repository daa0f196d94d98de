#include "core/notices/frmMSGCompact.h"

#include "core/MessageBoxes.h"

namespace mailvane {

frmMSGCompact::frmMSGCompact(Workbench& wb)
    : NoticeForm(wb, "frmMSGCompact", "Compact Database", "Compact", Check1) {}

void frmMSGCompact::OnLoad() {
    wb_.state.CompactConfirmed = false;
    NoticeForm::OnLoad();
}

void frmMSGCompact::Answer(bool confirmed) {
    wb_.state.CompactConfirmed = confirmed;
    Unload();
}

bool ConfirmCompaction(Workbench& wb) {
    ShowModalDialog(wb, wb.forms.Get<frmMSGCompact>());
    return wb.state.CompactConfirmed;
}

}  // namespace mailvane
