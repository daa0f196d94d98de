#pragma once

#include "merge/tags/TagListForm.h"

namespace mailvane {

/// The programs that messages run.
class frmTagProgram final : public TagListForm {
public:
    explicit frmTagProgram(Workbench& wb)
        : TagListForm(wb, "frmTagProgram", "Execute Program Tags", ProgramTagKind) {}

protected:
    void Add(std::int32_t number) override;
    void Edit(const std::string& entry, std::int32_t index) override;
};

}  // namespace mailvane
