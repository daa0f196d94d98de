#include "send/run/frmMSGSndRecvError.h"

#include "core/MessageBoxes.h"

namespace mailvane {

frmMSGSndRecvError::frmMSGSndRecvError(Workbench& wb)
    : NoticeQuestion(wb, "frmMSGSndRecvError", ErrorLogCaption, "SndRecvError", false) {
    lblText.SetText(
        "Some errors occurred while sending or receiving your messages.\r\n"
        "Do you want to see the error log?");
}

void frmMSGSndRecvError::NoteDoubtful(std::int64_t count) {
    if (count == 0) return;
    lblText.SetText(lblText.Text() + "\r\n\r\n" + std::to_string(count) +
                    (count == 1
                         ? " message may have been accepted all the same: its answer was lost."
                         : " messages may have been accepted all the same: their answers were "
                           "lost.") +
                    " If you send again, it may arrive twice. The error log names " +
                    (count == 1 ? "it." : "them."));
}

bool AskToShowErrorLog(Workbench& wb, std::int64_t doubtful) {
    wb.state.DialogAnswer = false;
    auto& prompt = wb.forms.Get<frmMSGSndRecvError>();
    prompt.NoteDoubtful(doubtful);
    ShowModalDialog(wb, prompt);
    return wb.state.DialogAnswer;
}

}  // namespace mailvane
