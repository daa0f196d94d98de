#pragma once

#include <string>

#include "core/MessageBoxes.h"
#include "merge/tags/ExecuteTag.h"
#include "merge/tags/TagListForm.h"

namespace mailvane {

/// What the editors of all tags have.
class TagEditorForm : public WorkbenchForm {
protected:
    TagEditorForm(Workbench& wb, std::string name);
    void ShowMode(const std::string& mode);  ///< in the title
    void BrowseFor(TextBox& file, bool save);
    /// False, and told, when there is no folder to store a tag in.
    bool CheckProject();
    void TellInvalidResult();
};

/// The editor of one tag of the list form `List`.
template <class TagRecord, class List>
class TagEditor : public TagEditorForm {
public:
    using Record = TagRecord;

    /// A new tag keeps the values of an empty dialog.
    void Begin(const Record& tag) {
        tag_ = tag;
        ShowMode(tag.EditMode);
        if (tag.EditMode != AddMode) ShowValues(tag);
    }

protected:
    using TagEditorForm::TagEditorForm;
    virtual void ShowValues(const Record& tag) = 0;
    virtual bool Check() = 0;  ///< tells what cannot be stored
    virtual void TakeValues(Record& tag) = 0;

    /// What OK does: the record goes into its file, its entry into the list.
    void Store() {
        if (!Check()) return;
        TakeValues(tag_);
        if (!SaveTag(wb_, tag_))
            return Tell(wb_, "The tag could not be written.", BoxIcon::Critical);
        wb_.forms.Get<List>().TakeEntry(tag_.EditMode, tag_.TagListIndex, TagEntry(tag_));
        Unload();
    }

private:
    Record tag_;
};

template <class Editor>
void OpenTagEditor(Workbench& wb, const typename Editor::Record& tag) {
    auto& editor = wb.forms.Get<Editor>();
    editor.Begin(tag);
    ShowModalDialog(wb, editor);
}

template <class Editor>
void AddTag(Workbench& wb, std::int32_t number) {
    typename Editor::Record tag;
    tag.TagNumber = number;
    tag.EditMode = AddMode;
    OpenTagEditor<Editor>(wb, tag);
}

/// A record whose file is missing or damaged keeps the number of its entry.
template <class Editor>
void EditTag(Workbench& wb, const std::string& entry, std::int32_t index) {
    auto tag = LoadTag<typename Editor::Record>(wb, NumberOfEntry(entry));
    tag.TagNumber = TagNumberOf(entry);
    tag.TagListIndex = index;
    tag.EditMode = EditMode;
    OpenTagEditor<Editor>(wb, tag);
}

}  // namespace mailvane
