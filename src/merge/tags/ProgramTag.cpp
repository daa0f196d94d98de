#include "merge/tags/ProgramTag.h"

#include <algorithm>
#include <chrono>

#include "core/Paths.h"
#include "core/Running.h"
#include "core/text/Text.h"
#include "merge/tags/FieldTags.h"

namespace mailvane {

namespace {

void Pause(Workbench& wb, std::int32_t seconds, const std::function<bool()>& keepWaiting) {
    constexpr std::chrono::milliseconds Step{20};
    const Clock& clock = wb.platform.clock;
    const auto end = clock.Monotonic() + std::chrono::seconds(seconds);
    while (keepWaiting()) {
        const auto left = end - clock.Monotonic();
        if (left.count() <= 0) return;
        wb.platform.clock.Sleep(std::min(left, Step));
    }
}

}  // namespace

std::string TagEntry(const ProgramTagRecord& tag) {
    return std::to_string(tag.TagNumber) + ". execute " +
           FileNameFromPath(tag.ProgramPath, PathSeparator, false) +
           (tag.IncludeResult ? " and include results." : " and do not include results.");
}

std::string ProgramTag::FindProgramTag(MessageRecord& record) {
    std::string number;
    if (Take(record.Body, number) || Take(record.HTMLCode, number)) return number;
    return NoExecuteTag;
}

void ProgramTag::Find(MessageRecord& message) {
    if (FindProgramTag(message) != NoExecuteTag) found_ = true;
}

bool ProgramTag::Take(std::string& text, std::string& number) {
    const auto found = FirstTagNumber(text, ProgramTagKind);
    if (!found) return false;
    number = *found;
    record_ = LoadTag<ProgramTagRecord>(setting_.wb, number, setting_.missingFile);
    arguments_.reset();
    if (FileExists(record_.ProgramPath)) return true;
    text = ReplaceText(text, ExecuteTagText(ProgramTagKind, number), "");
    return false;
}

/// A field tag is one piece also where its name has blanks or quotes.
bool ProgramTag::FillIn(MessageRecord&, const TagList::ValueOf* row) {
    if (!row || !found_) return true;
    const TagList& columns = setting_.columns;
    if (!arguments_) {
        const std::string& line = record_.CommandLine;
        arguments_ = SplitCommandLine(
            line, [&](std::size_t position) { return columns.TagLengthAt(line, position); });
    }
    ValuesWithoutNul values(*row);
    return std::ranges::all_of(*arguments_, [&](std::string& argument) {
        return columns.Replace(argument, std::ref(values));
    });
}

std::vector<std::string> ProgramTag::Arguments() const {
    return arguments_ ? *arguments_ : SplitCommandLine(record_.CommandLine);
}

void ProgramTag::Run(const std::function<bool()>& keepWaiting) const {
    if (!found_) return;
    Workbench& wb = setting_.wb;
    std::vector<std::string> commandLine = Arguments();
    commandLine.insert(commandLine.begin(), record_.ProgramPath);
    if (record_.WaitForExit) {
        wb.platform.windows.PumpEvents();
        wb.platform.processes.RunAndWait(commandLine, keepWaiting);
    } else {
        // What cannot be run as it stands is a document.
        if (!wb.platform.processes.Start(commandLine) && commandLine.size() == 1)
            OpenDocument(wb, record_.ProgramPath);
        Pause(wb, record_.SecondsToWait, keepWaiting);
    }
    ShowTagStatus(wb, "Executing program " +
                          FileNameFromPath(record_.ProgramPath, PathSeparator, true) + "...");
}

std::string ProgramTag::Objection(const std::string& text) const {
    const auto number = FirstTagNumber(text, ProgramTagKind);
    if (!number) return {};
    const ProgramTagRecord record =
        LoadTag<ProgramTagRecord>(setting_.wb, *number, MissingTagFile::Leave);
    if (FileExists(record.ProgramPath)) return {};
    return "The program of the tag " + ExecuteTagText(ProgramTagKind, *number) + " is not there";
}

}  // namespace mailvane
