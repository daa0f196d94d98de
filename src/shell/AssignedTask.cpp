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

bool LoadTask(const std::string& path, AssignedTask& task) {
    return LoadRecordFile(path, [&](RecordReader& record) {
        task.KeptNumber = record.Long();
        task.Project = record.Text();
        task.LastRun = record.Text();
        task.LastTime = record.Text();
        task.LastDate = record.Text();
        for (std::string& text : task.KeptTexts)
            text = record.Text();
        for (std::int32_t& number : task.KeptNumbers)
            number = record.Long();
        task.CloseWhenDone = record.Flag();
        task.Minimised = record.Flag();
        task.Connection = record.Text();
        task.DialFirst = record.Flag();
        task.HangUpAfter = record.Flag();
    });
}

bool SaveTask(const std::string& path, const AssignedTask& task) {
    return SaveRecordFile(path, [&](RecordWriter& record) {
        // Here a flag that is set stands as 1.
        const auto flag = [&](bool set) { record.Integer(set ? 1 : 0); };
        record.Long(task.KeptNumber);
        record.Text(task.Project);
        record.Text(task.LastRun);
        record.Text(task.LastTime);
        record.Text(task.LastDate);
        for (const std::string& text : task.KeptTexts)
            record.Text(text);
        for (const std::int32_t number : task.KeptNumbers)
            record.Long(number);
        flag(task.CloseWhenDone);
        flag(task.Minimised);
        record.Text(task.Connection);
        flag(task.DialFirst);
        flag(task.HangUpAfter);
    });
}

std::string TaskFileOf(const Workbench& wb, const std::string& commandLine) {
    if (!commandLine.starts_with(TaskMark)) return {};
    const std::string name = ReplaceText(commandLine, std::string(TaskMark) + " ", "");
    const std::string path = wb.platform.programFolder + "/Scheduled Events/" + name + ".shd";
    return FileExists(path) ? path : std::string();
}

}  // namespace mailvane
