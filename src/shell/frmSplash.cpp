#include "shell/frmSplash.h"

namespace mailvane {

frmSplash::frmSplash(Workbench& wb)
    : WorkbenchForm(wb, "frmSplash", ProgramTitle, FormStyle::Splash) {}

}  // namespace mailvane
