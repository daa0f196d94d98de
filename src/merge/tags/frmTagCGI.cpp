#include "merge/tags/frmTagCGI.h"

#include "core/MessageBoxes.h"
#include "merge/tags/frmTagCGIAdd.h"

namespace mailvane {

void frmTagCGI::Add(std::int32_t number) {
    CgiTagRecord tag;
    tag.TagNumber = number;
    tag.EditMode = AddMode;
    auto& editor = wb_.forms.Get<frmTagCGIAdd>();
    editor.Begin(tag);
    ShowModalDialog(wb_, editor);
}

/// A record whose file is missing or damaged keeps the number of its entry.
void frmTagCGI::Edit(const std::string& entry, std::int32_t index) {
    CgiTagRecord tag = LoadCgiTag(wb_, NumberOfEntry(entry));
    tag.TagNumber = TagNumberOf(entry);
    tag.TagListIndex = index;
    tag.EditMode = EditMode;
    auto& editor = wb_.forms.Get<frmTagCGIAdd>();
    editor.Begin(tag);
    ShowModalDialog(wb_, editor);
}

}  // namespace mailvane
