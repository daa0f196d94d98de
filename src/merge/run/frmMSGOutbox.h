#pragma once

#include "core/notices/NoticeForm.h"

namespace mailvane {

/// Says where the messages of a merge run are, once it is over.
class frmMSGOutbox final : public NoticeForm {
public:
    explicit frmMSGOutbox(Workbench& wb);

    Label lblText{*this, "lblText",
                  "Your messages are in the 'Outbox' e-mail folder. To send them just click the "
                  "'Start' button from the main toolbar."};
    CheckBox Check1{*this, "Check1"};
    Button cmdStart{*this, "cmdStart", [this] { Unload(); }};
};

}  // namespace mailvane
