#pragma once

#include "core/Workbench.h"

namespace mailvane {

/// Stands on the screen while the program comes up.
class frmSplash final : public WorkbenchForm {
public:
    explicit frmSplash(Workbench& wb);

    Label lblTitle{*this, "lblTitle", ProgramTitle};
    Label lblVersion{*this, "lblVersion", std::string("Version ") + ProgramVersion};
};

}  // namespace mailvane
