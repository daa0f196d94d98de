#include "core/settings/Proxy.h"

#include "core/settings/RegistryStore.h"
#include "core/settings/Settings.h"
#include "core/text/Text.h"

namespace mailvane {

namespace {

constexpr const char* Section = "Proxy";
constexpr const char* DesktopSettings =
    "Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings";

/// The value as stored; "" when it is absent.
std::string Stored(const Workbench& wb, const char* key) {
    const std::string value = GetUserSetting(wb, Section, key);
    return EqualText(value, NotFound) ? std::string() : value;
}

}  // namespace

ProxySettings ReadProxySettings(const Workbench& wb) {
    ProxySettings settings;
    settings.modem = EqualText(Stored(wb, "Connection"), "modem");
    settings.useProxy = EqualText(Stored(wb, "UseProxy"), "yes");
    settings.server = Stored(wb, "ProxyServerName");
    settings.port = Stored(wb, "HttpPort");
    if (settings.server.empty() && settings.port.empty())
        TakeProxyServer(RegGetValue(wb, RegistryRoot::CurrentUser, DesktopSettings, "ProxyServer"),
                        settings);
    return settings;
}

void SaveProxySettings(const Workbench& wb, const ProxySettings& settings) {
    SaveUserSetting(wb, Section, "Connection", settings.modem ? "modem" : "direct");
    SaveUserSetting(wb, Section, "UseProxy", settings.useProxy ? "yes" : "no");
    SaveUserSetting(wb, Section, "ProxyServerName", settings.server);
    SaveUserSetting(wb, Section, "HttpPort", settings.port);
}

void TakeProxyServer(const std::string& list, ProxySettings& settings) {
    const auto behindName = Split(list, "http=");
    if (behindName.size() < 2 || behindName[1].empty()) return;
    const auto pieces = Split(Split(behindName[1], ";").front(), ":");
    settings.server = pieces[0];
    if (pieces.size() > 1) settings.port = pieces[1];
}

}  // namespace mailvane
