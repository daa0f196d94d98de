#pragma once

#include "core/Workbench.h"

namespace mailvane {

/// The program's version and licence, and the libraries that it stands on with theirs.
class frmAbout final : public WorkbenchForm {
public:
    explicit frmAbout(Workbench& wb);

    Label lblTitle{*this, "lblTitle", ProgramTitle};
    Label lblVersion{*this, "lblVersion", std::string("Version ") + ProgramVersion};
    Grid grdLibraries{*this, "grdLibraries"};
    Button cmdOk{*this, "cmdOk", [this] { Unload(); }};
};

}  // namespace mailvane
