#include "send/SessionLog.h"

#include <algorithm>

#include "platform/os/Files.h"

namespace mailvane {

void SessionLog::Open(const std::string& projectFolder, const DateTime& now) {
    const std::string folder = projectFolder + "/Logs";
    MakeFolders(folder);
    std::string name = now.Stamp();
    std::replace(name.begin(), name.end(), '/', '-');
    std::replace(name.begin(), name.end(), ':', '.');
    file_.open(folder + "/" + name + ".txt", std::ios::binary | std::ios::trunc);
}

void SessionLog::Print(std::string_view text) {
    if (file_.is_open()) file_ << text << "\r\n";
}

void SessionLog::Close() {
    if (file_.is_open()) file_.close();
}

}  // namespace mailvane
