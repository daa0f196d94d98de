#pragma once

#include <string>

#include "core/Workbench.h"

namespace mailvane {

/// How the program reaches the network: section Proxy of the user's settings. What is not stored
/// has the values here.
struct ProxySettings {
    bool modem = false;  ///< over a dial-up line
    bool useProxy = false;
    std::string server;
    std::string port;
};

/// Without a stored server and port they come from the desktop's own proxy list.
ProxySettings ReadProxySettings(const Workbench& wb);
void SaveProxySettings(const Workbench& wb, const ProxySettings& settings);
/// Takes server and port of the "http=" entry out of a list like "ftp=a:21;http=b:80". A missing
/// piece leaves what is there.
void TakeProxyServer(const std::string& list, ProxySettings& settings);

}  // namespace mailvane
