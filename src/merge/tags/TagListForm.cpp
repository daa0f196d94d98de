#include "merge/tags/TagListForm.h"

#include "core/MessageBoxes.h"

namespace mailvane {

TagListForm::TagListForm(Workbench& wb, std::string name, std::string caption,
                         const ExecuteTagKind& kind)
    : WorkbenchForm(wb, std::move(name), std::move(caption)), kind_(kind) {
    lbxTags.onAdd = [this] { Add(NextTagNumber(lbxTags.Items())); };
    lbxTags.onEdit = [this] { Edit(lbxTags.Text(), lbxTags.ListIndex()); };
}

void TagListForm::OnLoad() {
    lbxTags.SetFile(TagListFile(wb_, kind_));
    lbxTags.Load();
}

std::string TagListForm::Pick() {
    picked_.clear();
    lblInfo.SetText(
        "Please select the tag you want to insert in your message and click OK button below.");
    ShowModalDialog(wb_, *this);
    return picked_;
}

void TagListForm::Answer() {
    picked_ = NumberOfEntry(lbxTags.Text());
    Unload();
}

void TagListForm::TakeEntry(const std::string& mode, std::int32_t index, const std::string& entry) {
    if (mode == AddMode)
        lbxTags.AddItem(entry);
    else
        lbxTags.SetItem(index, entry);
    if (!lbxTags.Save()) Tell(wb_, "The list of tags could not be written.", BoxIcon::Critical);
}

}  // namespace mailvane
