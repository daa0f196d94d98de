#include "shell/frmAbout.h"

namespace mailvane {

frmAbout::frmAbout(Workbench& wb) : WorkbenchForm(wb, "frmAbout", "About Mailvane") {}

}  // namespace mailvane
