#include "connection/Logon.h"

#include <algorithm>

#include "core/Paths.h"
#include "core/records/Sifrant.h"
#include "core/settings/Settings.h"
#include "core/text/Text.h"

namespace mailvane {

std::string LogonFile(const ApplicationState& state) {
    return state.ProjectFolder + "/Import/import.dat";
}

LogonData ReadLogon(const Workbench& wb) {
    const std::string file = LogonFile(wb.state);
    if (!FileExists(file)) return {};
    Sifrant sifrant;
    const auto read = [&](const char* key) {
        return sifrant.DeSifriraj(UrlDecode(IniRead("Data", key, file)), LogonKey);
    };
    return {read("1"), read("2")};
}

bool WriteLogon(const Workbench& wb, const LogonData& logon) {
    const auto coded = [](const std::string& text) {
        return UrlEncode(Sifrant().Sifriraj(text, LogonKey));
    };
    const std::string user = coded(logon.user);
    const std::string password = coded(logon.password);
    // What would not come back whole leaves the stored ones as they are.
    if (std::max(user.size(), password.size()) > LongestProfileValue) return false;
    const std::string file = LogonFile(wb.state);
    IniWrite("Data", "1", user, file, FileAccess::OwnerOnly);
    IniWrite("Data", "2", password, file, FileAccess::OwnerOnly);
    return ReadLogon(wb) == logon;
}

}  // namespace mailvane
