#pragma once

#include "merge/tags/TagListForm.h"

namespace mailvane {

/// The web scripts that messages call.
class frmTagCGI final : public TagListForm {
public:
    explicit frmTagCGI(Workbench& wb)
        : TagListForm(wb, "frmTagCGI", "Execute CGI Tags", CgiTagKind) {}

protected:
    void Add(std::int32_t number) override;
    void Edit(const std::string& entry, std::int32_t index) override;
};

}  // namespace mailvane
