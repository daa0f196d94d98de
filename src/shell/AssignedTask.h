#pragma once

#include <cstdint>
#include <string>

#include "core/Workbench.h"

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
    std::int16_t CloseWhenDone = 0;  ///< flags: 1 when set
    std::int16_t Minimised = 0;
    std::string Connection;  ///< name of the dial-up entry
    std::int16_t DialFirst = 0;
    std::int16_t HangUpAfter = 0;

    static void Fields(auto& record, auto&& field) {
        field(record.KeptNumber);
        field(record.Project);
        field(record.LastRun);
        field(record.LastTime);
        field(record.LastDate);
        for (auto& text : record.KeptTexts)
            field(text);
        for (auto& number : record.KeptNumbers)
            field(number);
        field(record.CloseWhenDone);
        field(record.Minimised);
        field(record.Connection);
        field(record.DialFirst);
        field(record.HangUpAfter);
    }

    /// The record is written back after each start, what was kept unchanged.
    void NoteStart(DateTime now);
};

bool NamesTask(const std::string& commandLine);
/// The task file that a command line "\SHC NAME" names; "" for any other line, and when there is no
/// such file.
std::string TaskFileOf(const Workbench& wb, const std::string& commandLine);

}  // namespace mailvane
