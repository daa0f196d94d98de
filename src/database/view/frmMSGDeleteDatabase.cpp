#include "database/view/frmMSGDeleteDatabase.h"

#include "core/MessageBoxes.h"
#include "core/settings/Settings.h"

namespace mailvane {

namespace {

constexpr const char* Section = "Messages";
constexpr const char* Key = "DeleteDatabase";

}  // namespace

frmMSGDeleteDatabase::frmMSGDeleteDatabase(Workbench& wb)
    : WorkbenchForm(wb, "frmMSGDeleteDatabase", "Delete records") {}

void frmMSGDeleteDatabase::AskFor(std::size_t count) {
    const bool one = count == 1;
    SetCaption(one ? "Delete record" : "Delete records");
    lblText.SetText("You are about to delete " + std::to_string(count) +
                    (one ? " record. " : " records. ") + "\r\nAre you sure you want to do this?");
}

void frmMSGDeleteDatabase::Answer(bool yes) {
    wb_.state.DialogAnswer = yes;
    if (Check1.Checked()) SaveUserSetting(wb_, Section, Key, "1");
    Unload();
}

bool AskToDelete(Workbench& wb, std::size_t count) {
    if (GetUserSetting(wb, Section, Key) == "1") return true;
    wb.state.DialogAnswer = false;
    auto& prompt = wb.forms.Get<frmMSGDeleteDatabase>();
    prompt.AskFor(count);
    ShowModalDialog(wb, prompt);
    return wb.state.DialogAnswer;
}

}  // namespace mailvane
