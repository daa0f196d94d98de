#include "merge/tags/frmTagProgram.h"

#include "merge/tags/frmTagProgramAdd.h"

namespace mailvane {

void frmTagProgram::Add(std::int32_t number) {
    AddTag<frmTagProgramAdd>(wb_, number);
}

void frmTagProgram::Edit(const std::string& entry, std::int32_t index) {
    EditTag<frmTagProgramAdd>(wb_, entry, index);
}

}  // namespace mailvane
