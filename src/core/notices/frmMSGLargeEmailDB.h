#pragma once

#include "core/notices/NoticeForm.h"

namespace mailvane {

/// Warns of a message store that has grown large, and offers to compact it.
class frmMSGLargeEmailDB final : public NoticeForm {
public:
    explicit frmMSGLargeEmailDB(Workbench& wb);

    Label lblText{*this, "lblText",
                  "The file with your messages has become very large. Deleted messages leave "
                  "empty space in it, which makes the program slower."};
    CheckBox Check1{*this, "Check1"};
    Button cmdCompact{*this, "cmdCompact", [this] { Compact(); }};
    Button SSCommand1{*this, "SSCommand1", [this] { Unload(); }};

private:
    void Compact();
};

}  // namespace mailvane
