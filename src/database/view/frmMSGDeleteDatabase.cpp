#include "database/view/frmMSGDeleteDatabase.h"

#include "core/MessageBoxes.h"

namespace mailvane {

frmMSGDeleteDatabase::frmMSGDeleteDatabase(Workbench& wb)
    : NoticeQuestion(wb, "frmMSGDeleteDatabase", "Delete records", "DeleteDatabase", true) {}

void frmMSGDeleteDatabase::AskFor(std::size_t count) {
    const bool one = count == 1;
    SetCaption(one ? "Delete record" : "Delete records");
    lblText.SetText("You are about to delete " + std::to_string(count) +
                    (one ? " record. " : " records. ") + "\r\nAre you sure you want to do this?");
}

bool AskToDelete(Workbench& wb, std::size_t count) {
    wb.state.DialogAnswer = false;
    auto& prompt = wb.forms.Get<frmMSGDeleteDatabase>();
    prompt.AskFor(count);
    ShowModalDialog(wb, prompt);
    return wb.state.DialogAnswer;
}

}  // namespace mailvane
