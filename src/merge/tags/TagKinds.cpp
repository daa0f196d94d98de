#include "merge/tags/TagKinds.h"

#include "merge/tags/CgiTag.h"
#include "merge/tags/FieldTags.h"
#include "merge/tags/ProgramTag.h"
#include "merge/tags/SystemTags.h"
#include "merge/tags/frmTagCGI.h"
#include "merge/tags/frmTagProgram.h"

namespace mailvane {

namespace {

template <class Tag>
std::unique_ptr<MessageTag> Make(const TagSetting& setting) {
    return std::make_unique<Tag>(setting);
}

template <class List, const ExecuteTagKind& Kind>
std::string Pick(Workbench& wb) {
    const std::string number = wb.forms.Get<List>().Pick();
    return number.empty() ? std::string() : ExecuteTagText(Kind, number);
}

}  // namespace

const std::vector<TagKind>& TagKinds() {
    static const std::vector<TagKind> kinds = {
        {Make<FieldTags>},
        {Make<ProgramTag>, "Execute Program", Pick<frmTagProgram, ProgramTagKind>},
        {Make<CgiTag>, "Execute CGI", Pick<frmTagCGI, CgiTagKind>},
        {Make<SystemTags>},
    };
    return kinds;
}

MessageTags MakeMessageTags(const TagSetting& setting) {
    MessageTags tags;
    for (const TagKind& kind : TagKinds())
        tags.push_back(kind.make(setting));
    return tags;
}

}  // namespace mailvane
