#include "connection/Logon.h"

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
    Sifrant sifrant;
    const std::string file = LogonFile(wb.state);
    IniWrite("Data", "1", UrlEncode(sifrant.Sifriraj(logon.user, LogonKey)), file);
    IniWrite("Data", "2", UrlEncode(sifrant.Sifriraj(logon.password, LogonKey)), file);
    return ReadLogon(wb) == logon;
}

}  // namespace mailvane
