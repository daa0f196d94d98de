#include "database/view/frmFind.h"

namespace mailvane {

frmFind::frmFind(Workbench& wb) : WorkbenchForm(wb, "frmFind", "Find") {
    cmdFind.SetEnabled(false);
    txtFind.onChange = [this] { cmdFind.SetEnabled(!txtFind.Text().empty()); };
}

void frmFind::ShowFor(const Form& owner, FindText find) {
    owner_ = &owner;
    find_ = std::move(find);
    Show();
    BringToFront();
    txtFind.Focus();
}

void frmFind::CloseFor(const Form& owner) {
    if (owner_ == &owner) Unload();
}

void frmFind::Find() {
    RunHandler(find_, txtFind.Text(), chkMatchCase.Checked());
}

}  // namespace mailvane
