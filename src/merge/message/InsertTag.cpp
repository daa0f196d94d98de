#include "merge/message/InsertTag.h"

#include "merge/tags/TagKinds.h"

namespace mailvane {

void InsertExecuteTag(Workbench& wb, RichTextBox& body, const std::string& toolName) {
    for (const TagKind& kind : TagKinds()) {
        if (!kind.tool || toolName != kind.tool) continue;
        const std::string tag = kind.pick(wb);
        if (!tag.empty()) body.ReplaceSelection(tag);
        return;
    }
}

}  // namespace mailvane
