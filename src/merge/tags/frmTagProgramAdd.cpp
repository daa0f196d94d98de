#include "merge/tags/frmTagProgramAdd.h"

#include <algorithm>
#include <cmath>

#include "core/Paths.h"
#include "core/text/Text.h"

namespace mailvane {

namespace {

constexpr double LongestWait = 600;  // seconds

}  // namespace

frmTagProgramAdd::frmTagProgramAdd(Workbench& wb) : TagEditor(wb, "frmTagProgramAdd") {
    SetTips();
    chkInclude.onClick = optWaitExit.onClick = optWaitSec.onClick = [this] { EnableFields(); };
    txtSeconds.onChange = [this] { FollowSeconds(); };
    UpDown1.onChange = [this] { txtSeconds.SetText(std::to_string(UpDown1.Value())); };
    EnableFields();
}

void frmTagProgramAdd::SetTips() {
    txtProgram.SetTip("The program that runs while the message is made, once for each message.");
    txtCommand.SetTip(
        "What the program is told. You can use database fields, as in: p=1 v=5 /[First Name]");
    txtSeconds.SetTip("How long to wait before the next message is made.");
    txtResult.SetTip("The file that the program writes. It is included in the message.");
    chkDelete.SetTip("Deletes the result file once it is included in the message.");
}

void frmTagProgramAdd::EnableFields() {
    for (Control* control : {static_cast<Control*>(&txtSeconds), static_cast<Control*>(&UpDown1)})
        control->SetEnabled(optWaitSec.IsSet());
    for (Control* control : {static_cast<Control*>(&txtResult), static_cast<Control*>(&chkDelete),
                             static_cast<Control*>(&cmdBrowse)})
        control->SetEnabled(chkInclude.Checked());
}

/// A text that is not what the up-down would write is left as it was typed.
void frmTagProgramAdd::FollowSeconds() {
    const int seconds = static_cast<int>(std::clamp(NumberOf(txtSeconds.Text()), 0.0, LongestWait));
    if (txtSeconds.Text() == std::to_string(seconds)) UpDown1.SetValue(seconds);
}

void frmTagProgramAdd::ShowValues(const Record& tag) {
    txtProgram.SetText(tag.ProgramPath);
    txtCommand.SetText(tag.CommandLine);
    chkInclude.SetChecked(tag.IncludeResult);
    txtResult.SetText(tag.ResultFile);
    chkDelete.SetChecked(tag.DeleteResult);
    txtSeconds.SetText(std::to_string(tag.SecondsToWait));
    (tag.WaitForExit ? optWaitExit : optWaitSec).SetValue(true);
    EnableFields();
}

bool frmTagProgramAdd::Check() {
    txtProgram.SetText(Trim(txtProgram.Text()));
    if (!FileExists(txtProgram.Text())) {
        Tell(wb_, "You need to enter valid file location of the program.");
        return false;
    }
    txtResult.SetText(Trim(txtResult.Text()));
    if (chkInclude.Checked() && txtResult.Text().empty()) {
        TellInvalidResult();
        chkInclude.SetChecked(false);
        return false;
    }
    if (!CheckProject()) return false;
    if (NumberOf(txtSeconds.Text()) > LongestWait) {
        Tell(wb_, "You need to enter correct value in the seconds text box (between 1 and 600).");
        txtSeconds.Focus();
        return false;
    }
    return true;
}

void frmTagProgramAdd::TakeValues(Record& tag) {
    tag.ProgramPath = txtProgram.Text();
    tag.CommandLine = Trim(txtCommand.Text());
    tag.IncludeResult = chkInclude.Checked();
    tag.ResultFile = txtResult.Text();
    tag.DeleteResult = chkDelete.Checked();
    tag.SecondsToWait =
        static_cast<std::int32_t>(std::lrint(std::max(NumberOf(txtSeconds.Text()), 0.0)));
    tag.WaitForExit = optWaitExit.IsSet();
}

}  // namespace mailvane
