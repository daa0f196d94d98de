#include "merge/message/InsertTag.h"

#include "merge/tags/frmTagCGI.h"
#include "merge/tags/frmTagProgram.h"

namespace mailvane {

bool InsertExecuteTag(Workbench& wb, RichTextBox& body, const std::string& toolName) {
    const bool program = toolName == "Execute Program";
    if (!program && toolName != "Execute CGI") return false;
    TagListForm& list = program ? static_cast<TagListForm&>(wb.forms.Get<frmTagProgram>())
                                : wb.forms.Get<frmTagCGI>();
    const std::string number = list.Pick();
    if (!number.empty())
        body.ReplaceSelection(ExecuteTagText(program ? ProgramTagKind : CgiTagKind, number));
    return true;
}

}  // namespace mailvane
