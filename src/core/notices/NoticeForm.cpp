#include "core/notices/NoticeForm.h"

#include "core/settings/Settings.h"

namespace mailvane {

namespace {

constexpr const char* Section = "Messages";

}  // namespace

NoticeForm::NoticeForm(Workbench& wb, std::string name, std::string caption, const char* key,
                       CheckBox& again)
    : WorkbenchForm(wb, std::move(name), std::move(caption)), key_(key), again_(again) {}

void NoticeForm::OnLoad() {
    again_.SetChecked(GetUserSetting(wb_, Section, key_) == "1");
    if (again_.Checked()) Skip();
}

void NoticeForm::OnUnload() {
    SaveUserSetting(wb_, Section, key_, again_.ShownText());
}

NoticeQuestion::NoticeQuestion(Workbench& wb, std::string name, std::string caption,
                               const char* key, bool skipped)
    : NoticeForm(wb, std::move(name), std::move(caption), key, Check1), skipped_(skipped) {}

void NoticeQuestion::Answer(bool yes) {
    wb_.state.DialogAnswer = yes;
    Unload();
}

}  // namespace mailvane
