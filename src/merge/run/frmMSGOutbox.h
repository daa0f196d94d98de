#pragma once

#include "core/Workbench.h"

namespace mailvane {

/// Says where the messages of a merge run are, once it is over.
class frmMSGOutbox final : public WorkbenchForm {
public:
    explicit frmMSGOutbox(Workbench& wb);

    Label lblText{*this, "lblText",
                  "Your messages are in the 'Outbox' e-mail folder. To send them just click the "
                  "'Start' button from the main toolbar."};
    CheckBox Check1{*this, "Check1"};
    Button cmdStart{*this, "cmdStart"};

protected:
    void OnLoad() override;
    void OnUnload() override;
};

}  // namespace mailvane
