#include "merge/tags/frmTagProgram.h"

#include "core/MessageBoxes.h"
#include "merge/tags/frmTagProgramAdd.h"

namespace mailvane {

void frmTagProgram::Add(std::int32_t number) {
    ProgramTagRecord tag;
    tag.TagNumber = number;
    tag.EditMode = AddMode;
    auto& editor = wb_.forms.Get<frmTagProgramAdd>();
    editor.Begin(tag);
    ShowModalDialog(wb_, editor);
}

/// A record whose file is missing or damaged keeps the number of its entry.
void frmTagProgram::Edit(const std::string& entry, std::int32_t index) {
    ProgramTagRecord tag = LoadProgramTag(wb_, NumberOfEntry(entry));
    tag.TagNumber = TagNumberOf(entry);
    tag.TagListIndex = index;
    tag.EditMode = EditMode;
    auto& editor = wb_.forms.Get<frmTagProgramAdd>();
    editor.Begin(tag);
    ShowModalDialog(wb_, editor);
}

}  // namespace mailvane
