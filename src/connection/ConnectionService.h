#pragma once

#include <string>

#include "core/Workbench.h"
#include "core/settings/frmSettings.h"

namespace mailvane {

/// A PEM file of authorities to trust in place of the system's: a setting that no form shows. ""
/// for the system's.
std::string TrustedAuthorities(const Workbench& wb);

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
