#include "merge/tags/frmTagCGI.h"

#include "merge/tags/frmTagCGIAdd.h"

namespace mailvane {

void frmTagCGI::Add(std::int32_t number) {
    AddTag<frmTagCGIAdd>(wb_, number);
}

void frmTagCGI::Edit(const std::string& entry, std::int32_t index) {
    EditTag<frmTagCGIAdd>(wb_, entry, index);
}

}  // namespace mailvane
