#pragma once

#include "core/notices/NoticeForm.h"

namespace mailvane {

/// Says that a memo column cannot be sorted.
class frmMSGMemo final : public NoticeForm {
public:
    explicit frmMSGMemo(Workbench& wb);

    Label lblText{*this, "lblText",
                  "If you specify a field containing Memo or OLE Object data, an error occurs. The "
                  "Microsoft Jet database engine doesn't sort on fields of these types."};
    CheckBox Check1{*this, "Check1"};
    Button cmdOk{*this, "cmdOk", [this] { Unload(); }};
};

/// Shows it, unless the user has said once that it need not come again.
void TellMemoSort(Workbench& wb);

}  // namespace mailvane
