#include "shell/AssignedTask.h"

#include "core/Paths.h"
#include "core/text/Text.h"

namespace mailvane {

namespace {

constexpr const char* TaskMark = "\\SHC";
constexpr std::size_t MinutesLength = 5;  // "hh:mm"

}  // namespace

void AssignedTask::NoteStart(DateTime now) {
    LastRun = now.Stamp();
    const std::vector<std::string> parts = Split(LastRun, " ");
    LastDate = parts[0];
    LastTime = parts[1].substr(0, MinutesLength) + " " + parts[2];
}

bool NamesTask(const std::string& commandLine) {
    return commandLine.starts_with(TaskMark);
}

std::string TaskFileOf(const Workbench& wb, const std::string& commandLine) {
    if (!NamesTask(commandLine)) return {};
    const std::string name = ReplaceText(commandLine, std::string(TaskMark) + " ", "");
    const std::string path = wb.platform.programFolder + "/Scheduled Events/" + name + ".shd";
    return FileExists(path) ? path : std::string();
}

}  // namespace mailvane
