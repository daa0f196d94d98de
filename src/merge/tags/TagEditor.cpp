#include "merge/tags/TagEditor.h"

#include "core/Paths.h"
#include "core/project/Project.h"

namespace mailvane {

TagEditorForm::TagEditorForm(Workbench& wb, std::string name)
    : WorkbenchForm(wb, std::move(name), "Add Message Tag") {}

void TagEditorForm::ShowMode(const std::string& mode) {
    SetCaption(mode == AddMode ? "Add Message Tag" : "Edit Message Tag");
}

void TagEditorForm::BrowseFor(TextBox& file, bool save) {
    const std::string path = BrowseFile(wb_, save, "", "");
    if (!path.empty()) file.SetText(path);
}

bool TagEditorForm::CheckProject() {
    if (FileExists(wb_.state.ProjectFolder, true)) return true;
    Tell(wb_, "You need to save your project before you can add this tag. ");
    return false;
}

void TagEditorForm::TellInvalidResult() {
    Tell(wb_, "Invalid location of the result file.");
}

}  // namespace mailvane
