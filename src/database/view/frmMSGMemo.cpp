#include "database/view/frmMSGMemo.h"

#include "core/MessageBoxes.h"

namespace mailvane {

frmMSGMemo::frmMSGMemo(Workbench& wb)
    : NoticeForm(wb, "frmMSGMemo", "Can't sort Memo data", "MemoSort", Check1) {}

void TellMemoSort(Workbench& wb) {
    ShowModalDialog(wb, wb.forms.Get<frmMSGMemo>());
}

}  // namespace mailvane
