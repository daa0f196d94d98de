#include "core/MessageBoxes.h"

namespace mailvane {

void Tell(Workbench& wb, const std::string& text, BoxIcon icon, const std::string& title) {
    wb.platform.windows.MessageBox({text, title, icon, BoxButtons::Ok});
}

bool AskYesNo(Workbench& wb, const std::string& text, BoxIcon icon, const std::string& title) {
    return wb.platform.windows.MessageBox({text, title, icon, BoxButtons::YesNo}) == BoxAnswer::Yes;
}

void ShowModalDialog(Workbench&, Form& form) {
    form.ShowModal();
}

}  // namespace mailvane
