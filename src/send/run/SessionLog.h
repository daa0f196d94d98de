#pragma once

#include <fstream>
#include <string>
#include <string_view>

#include "platform/os/DateTime.h"

namespace mailvane {

/// Where the session logs of a project lie.
std::string SessionLogFolder(const std::string& projectFolder);

/// The log of one run's conversation with servers, when the user keeps such logs. Prints nothing
/// while it is not open.
class SessionLog {
public:
    /// Starts a file of its own in the project's log folder, named by the time. False when it
    /// cannot be written.
    bool Open(const std::string& projectFolder, const DateTime& now);
    void Print(std::string_view text);  ///< and CR LF
    bool Close();                       ///< false when the log lacks something

private:
    std::ofstream file_;
};

}  // namespace mailvane
