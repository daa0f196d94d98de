#include "merge/MergeCommands.h"

#include "merge/message/frmViewMerge.h"
#include "merge/tags/frmTagCGI.h"
#include "merge/tags/frmTagProgram.h"

namespace mailvane {

namespace {

constexpr ToolRow<Workbench> Rows[] = {
    {"Merge", "&Merge", "Write a message for all recipients", "mail-message-new", "F7",
     [](Workbench& wb) { ShowView(wb.forms.Get<frmViewMerge>()); }},
    {"New Message", "New &Message...", "Write a single message", "document-edit"},
    {"Execute Program", "Execute &Program tags...", "Programs that messages run", "system-run", "",
     [](Workbench& wb) { wb.forms.Get<frmTagProgram>().Show(); }},
    {"Execute CGI", "Execute C&GI tags...", "Web scripts that messages call", "internet-services",
     "", [](Workbench& wb) { wb.forms.Get<frmTagCGI>().Show(); }},
};

}  // namespace

void RegisterMergeCommands(Workbench& wb) {
    wb.commands.Register(wb, Rows);
}

}  // namespace mailvane
