#pragma once

#include "core/Workbench.h"

namespace mailvane {

/// The dialer. This system has no dial-up lines: it lists none, and dialing says so.
class frmDial final : public WorkbenchForm {
public:
    explicit frmDial(Workbench& wb);

    ListBox lPhonebook{*this, "lPhonebook"};
    ListBox lConnections{*this, "lConnections"};
    Label lblStatus{*this, "lblStatus"};
    Button cmdDialNow{*this, "cmdDialNow"};
    Button cmdStop{*this, "cmdStop"};
    Button cmdDisconnect{*this, "cmdDisconnect"};
    Button cmdOk{*this, "cmdOk"};
    Button cmdCancel{*this, "cmdCancel"};
};

/// True when the line may be used: always, unless the connection setting says "modem".
bool EnsureDialUp(Workbench& wb);

}  // namespace mailvane
