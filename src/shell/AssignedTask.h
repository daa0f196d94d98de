#pragma once

#include <cstdint>
#include <string>

#include "core/Workbench.h"
#include "core/records/RecordFile.h"

namespace mailvane {

/// What the scheduler asks of an unattended start: one record file, "NAME.shd" in the folder
/// "Scheduled Events" of the program folder. The fields called Kept are the scheduler's own.
struct AssignedTask {
    std::int32_t KeptNumber = 0;
    std::string Project;   ///< path of the .poc file
    std::string LastRun;   ///< "m/d/yyyy hh:mm:ss AMPM"
    std::string LastTime;  ///< "hh:mm AMPM"
    std::string LastDate;  ///< "m/d/yyyy"
    std::string KeptTexts[3];
    std::int32_t KeptNumbers[3] = {};
    bool CloseWhenDone = false;
    bool Minimised = false;
    std::string Connection;  ///< name of the dial-up entry
    bool DialFirst = false;
    bool HangUpAfter = false;

    /// The record is written back after each start, what was kept unchanged.
    void NoteStart(DateTime now);
};

/// False when the file is missing or short.
bool LoadTask(const std::string& path, AssignedTask& task);
bool SaveTask(const std::string& path, const AssignedTask& task);

/// The task file that a command line "\SHC NAME" names; "" for any other line, and when there is no
/// such file.
std::string TaskFileOf(const Workbench& wb, const std::string& commandLine);

}  // namespace mailvane
