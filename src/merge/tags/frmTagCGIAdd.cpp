#include "merge/tags/frmTagCGIAdd.h"

#include "core/MessageBoxes.h"
#include "core/Paths.h"
#include "core/project/Project.h"
#include "core/text/Text.h"
#include "merge/tags/frmTagCGI.h"

namespace mailvane {

frmTagCGIAdd::frmTagCGIAdd(Workbench& wb)
    : WorkbenchForm(wb, "frmTagCGIAdd", TagEditorTitle(AddMode)) {
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

void frmTagCGIAdd::Begin(const CgiTagRecord& tag) {
    tag_ = tag;
    SetCaption(TagEditorTitle(tag.EditMode));
    if (tag.EditMode == AddMode) return;
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

void frmTagCGIAdd::Browse() {
    const std::string path = BrowseFile(wb_, true, "", "");
    if (!path.empty()) txtResult.SetText(path);
}

bool frmTagCGIAdd::Check() {
    txtCGI.SetText(Trim(txtCGI.Text()));
    if (txtCGI.Text().empty()) {
        Tell(wb_, "You need to enter valid location of the CGI script.");
        return false;
    }
    txtResult.SetText(Trim(txtResult.Text()));
    if (chkSave.Checked() && txtResult.Text().empty()) {
        Tell(wb_, InvalidResultFile);
        txtResult.Focus();
        return false;
    }
    txtReferer.SetText(Trim(txtReferer.Text()));
    txtQuery.SetText(Trim(txtQuery.Text()));
    if (txtQuery.Text().starts_with('?')) txtQuery.SetText(txtQuery.Text().substr(1));
    if (!FileExists(wb_.state.ProjectFolder, true)) {
        Tell(wb_, ProjectNotSaved);
        return false;
    }
    return true;
}

void frmTagCGIAdd::TakeValues() {
    tag_.ScriptUrl = txtCGI.Text();
    tag_.QueryString = txtQuery.Text();
    tag_.IncludeResult = chkInclude.Checked();
    tag_.SaveResult = chkSave.Checked();
    tag_.ResultFile = txtResult.Text();
    tag_.Referer = txtReferer.Text();
    tag_.RequestMethod = optPOST.IsSet() ? "Post" : optHEAD.IsSet() ? "Head" : "Get";
}

void frmTagCGIAdd::Store() {
    if (!Check()) return;
    TakeValues();
    if (!SaveCgiTag(wb_, tag_))
        return Tell(wb_, "The tag could not be written.", BoxIcon::Critical);
    wb_.forms.Get<frmTagCGI>().TakeEntry(tag_.EditMode, tag_.TagListIndex, CgiTagEntry(tag_));
    Unload();
}

}  // namespace mailvane
