#pragma once

#include <string>

#include "core/Workbench.h"
#include "core/settings/frmSettings.h"

namespace mailvane {

/// Attaches the recipients database to frmSettings whenever that form is made: the wizard's
/// buttons, the offer to import an Access file, and the view that follows the chosen file and
/// table. One per workbench; lives as long.
class DatabaseService {
public:
    explicit DatabaseService(Workbench& wb);

private:
    void Attach(frmSettings& settings);
    bool TakeAccessFile(frmSettings& settings);
    void FollowTable();
    Workbench& wb_;
    std::string lastDatabase_;  ///< that txtAccessDBPath named
    Subscription created_;
    Subscription databaseChanged_;
    Subscription tableChosen_;
};

}  // namespace mailvane
