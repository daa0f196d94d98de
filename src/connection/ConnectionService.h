#pragma once

#include "core/Workbench.h"
#include "core/settings/frmSettings.h"

namespace mailvane {

/// Gives the settings form its test of the incoming mail account, for as long as it lives itself.
class ConnectionService {
public:
    explicit ConnectionService(Workbench& wb);

private:
    void Attach(frmSettings& settings);
    Workbench& wb_;
    Subscription created_;
};

}  // namespace mailvane
