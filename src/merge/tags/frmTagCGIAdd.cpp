#include "merge/tags/frmTagCGIAdd.h"

#include "core/text/Text.h"

namespace mailvane {

frmTagCGIAdd::frmTagCGIAdd(Workbench& wb) : TagEditor(wb, "frmTagCGIAdd") {
    SetTips();
    chkSave.onClick = [this] { EnableFields(); };
    EnableFields();
}

void frmTagCGIAdd::SetTips() {
    txtCGI.SetTip("The script that is called while the message is made, once for each message.");
    txtQuery.SetTip(
        "What the script is told. You can use database fields, as in: name=[First Name]");
    txtReferer.SetTip("The page that the script is told to be called from.");
    chkInclude.SetTip("Includes what the script returns in the message.");
    txtResult.SetTip("The file that keeps what the script returns.");
}

void frmTagCGIAdd::EnableFields() {
    txtResult.SetEnabled(chkSave.Checked());
    cmdBrowse.SetEnabled(chkSave.Checked());
}

void frmTagCGIAdd::ShowValues(const Record& tag) {
    txtCGI.SetText(tag.ScriptUrl);
    txtQuery.SetText(tag.QueryString);
    txtReferer.SetText(tag.Referer);
    chkInclude.SetChecked(tag.IncludeResult);
    chkSave.SetChecked(tag.SaveResult);
    txtResult.SetText(tag.ResultFile);
    ChooseMethod(ToLower(tag.RequestMethod));
}

void frmTagCGIAdd::ChooseMethod(const std::string& method) {
    if (method == "get") optGET.SetValue(true);
    if (method == "post") optPOST.SetValue(true);
    if (method == "head") optHEAD.SetValue(true);
}

bool frmTagCGIAdd::Check() {
    txtCGI.SetText(Trim(txtCGI.Text()));
    if (txtCGI.Text().empty()) {
        Tell(wb_, "You need to enter valid location of the CGI script.");
        return false;
    }
    txtResult.SetText(Trim(txtResult.Text()));
    if (chkSave.Checked() && txtResult.Text().empty()) {
        TellInvalidResult();
        txtResult.Focus();
        return false;
    }
    txtReferer.SetText(Trim(txtReferer.Text()));
    txtQuery.SetText(Trim(txtQuery.Text()));
    if (txtQuery.Text().starts_with('?')) txtQuery.SetText(txtQuery.Text().substr(1));
    return CheckProject();
}

void frmTagCGIAdd::TakeValues(Record& tag) {
    tag.ScriptUrl = txtCGI.Text();
    tag.QueryString = txtQuery.Text();
    tag.IncludeResult = chkInclude.Checked();
    tag.SaveResult = chkSave.Checked();
    tag.ResultFile = txtResult.Text();
    tag.Referer = txtReferer.Text();
    tag.RequestMethod = optPOST.IsSet() ? "Post" : optHEAD.IsSet() ? "Head" : "Get";
}

}  // namespace mailvane
