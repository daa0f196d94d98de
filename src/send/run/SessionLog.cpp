#include "send/run/SessionLog.h"

#include <algorithm>

#include "platform/os/Files.h"

namespace mailvane {

std::string SessionLogFolder(const std::string& projectFolder) {
    return projectFolder + "/Logs";
}

bool SessionLog::Open(const std::string& projectFolder, const DateTime& now) {
    const std::string folder = SessionLogFolder(projectFolder);
    MakeFolders(folder);
    std::string name = now.Stamp();
    std::replace(name.begin(), name.end(), '/', '-');
    std::replace(name.begin(), name.end(), ':', '.');
    file_.open(folder + "/" + name + ".txt", std::ios::binary | std::ios::trunc);
    return file_.is_open();
}

void SessionLog::Print(std::string_view text) {
    if (file_.is_open()) file_ << text << "\r\n";
}

bool SessionLog::Close() {
    if (!file_.is_open()) return true;
    file_.close();
    return file_.good();
}

}  // namespace mailvane
