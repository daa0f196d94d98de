#include "core/project/frmProjectDialog.h"

#include <utility>

#include "core/MessageBoxes.h"
#include "core/Paths.h"
#include "core/project/ProjectPrompts.h"

namespace mailvane {

namespace {

/// "Summer  (/home/ann/Projects)"
std::string EntryText(const std::string& file) {
    std::string name = FileNameFromPath(file, PathSeparator, true);
    if (name.empty()) name = FileNameFromPath(file, PathSeparator, false);
    return name + "  (" + FolderFromPath(file, PathSeparator) + ")";
}

}  // namespace

frmProjectDialog::frmProjectDialog(Workbench& wb)
    : WorkbenchForm(wb, "frmProjectDialog", "Choose a project") {
    lstRecent.onClick = [this] { cmdOpen.SetEnabled(lstRecent.ListIndex() >= 0); };
    lstRecent.onDoubleClick = [this] { OpenSelected(); };
}

void frmProjectDialog::Offer(const std::vector<std::string>& recent) {
    files_.clear();
    lstRecent.Clear();
    for (const std::string& file : recent) {
        if (!FileExists(file)) continue;
        files_.push_back(file);
        lstRecent.AddItem(EntryText(file));
    }
    lstRecent.SetListIndex(0);
    cmdOpen.SetEnabled(!files_.empty());
}

void frmProjectDialog::OnActivate() {
    Control& first = files_.empty() ? static_cast<Control&>(cmdWizard) : lstRecent;
    first.Focus();
}

void frmProjectDialog::OpenSelected() {
    const int index = lstRecent.ListIndex();
    if (index >= 0) Open(files_[static_cast<std::size_t>(index)]);
}

void frmProjectDialog::Open(const std::string& file) {
    if (!FileExists(file)) return TellFileNotFound(wb_);
    Choose({.cancelled = false, .file = file});
}

void frmProjectDialog::Browse() {
    const std::string file = BrowseProjectFile(wb_, false);
    if (!file.empty()) Open(file);
}

void frmProjectDialog::New() {
    const std::string file = BrowseProjectFile(wb_, true);
    if (!file.empty()) Choose({.cancelled = false, .isNew = true, .file = file});
}

void frmProjectDialog::Choose(ProjectChoice choice) {
    choice_ = std::move(choice);
    Unload();
}

ProjectChoice AskForProject(Workbench& wb, const std::vector<std::string>& recent) {
    auto& dialog = wb.forms.Get<frmProjectDialog>();
    dialog.Offer(recent);
    ShowModalDialog(wb, dialog);
    return dialog.Choice();
}

}  // namespace mailvane
