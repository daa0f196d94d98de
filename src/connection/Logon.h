#pragma once

#include <string>

#include "core/Workbench.h"

namespace mailvane {

/// Key under which user and password of the SMTP logon are stored.
inline constexpr const char* LogonKey = "512903847165320";

struct LogonData {
    std::string user;
    std::string password;

    bool operator==(const LogonData&) const = default;
};

std::string LogonFile(const ApplicationState& state);  ///< the logon store of the open project
/// Both "" when there is no store.
LogonData ReadLogon(const Workbench& wb);
/// False when the store does not hold it afterwards.
bool WriteLogon(const Workbench& wb, const LogonData& logon);

}  // namespace mailvane
