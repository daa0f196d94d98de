#pragma once

#include <fstream>
#include <string>
#include <string_view>

#include "platform/os/DateTime.h"

namespace mailvane {

/// The log of one run's conversation with servers, when the user keeps such logs. Prints nothing
/// while it is not open.
class SessionLog {
public:
    /// Starts a file of its own in "Logs" of the project folder, named by the time.
    void Open(const std::string& projectFolder, const DateTime& now);
    void Print(std::string_view text);  ///< and CR LF
    void Close();

private:
    std::ofstream file_;
};

}  // namespace mailvane
