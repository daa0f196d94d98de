#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "core/Workbench.h"
#include "merge/tags/ExecuteTag.h"
#include "merge/tags/TagList.h"
#include "store/MessageRecord.h"

namespace mailvane {

/// A program that messages run, as its record file holds it.
struct ProgramTagRecord {
    std::int32_t TagNumber = 0;
    std::int32_t TagListIndex = 0;
    std::string ProgramPath;
    std::string CommandLine;
    bool IncludeResult = false;
    std::string ResultFile;
    bool DeleteResult = false;
    std::int32_t SecondsToWait = 0;
    bool WaitForExit = false;
    std::string EditMode;  ///< "Add" or "Edit"

    friend bool operator==(const ProgramTagRecord&, const ProgramTagRecord&) = default;
};

/// An empty record for a number without a file.
ProgramTagRecord LoadProgramTag(const Workbench& wb, const std::string& number,
                                MissingTagFile missing = MissingTagFile::Make);
bool SaveProgramTag(const Workbench& wb, const ProgramTagRecord& tag);
/// "3. execute lookup.sh and include results."
std::string ProgramTagEntry(const ProgramTagRecord& tag);

/// A program on its way to be run for a message.
class ProgramTag {
public:
    /// Looks for the first tag in Body, then in HTMLCode. The number of the one whose program is
    /// there, or NoExecuteTag; a tag whose program is missing is taken out of its text. The record
    /// found last is kept.
    std::string FindProgramTag(const Workbench& wb, MessageRecord& record);
    /// Fills field tags in, inside each argument: a value never becomes a second argument.
    void FillIn(const TagList& fieldTags, const TagList::ValueOf& valueOf);
    /// Starts the program, and waits as its record says, or until `keepWaiting`, which is called
    /// all the time, says no; it runs on then. A program that cannot be started is passed over.
    void Run(Workbench& wb, const std::function<bool()>& keepWaiting) const;

    MissingTagFile MissingFile = MissingTagFile::Make;  ///< of the records that are looked for

private:
    bool Take(const Workbench& wb, std::string& text, std::string& number);
    std::vector<std::string> Arguments() const;
    ProgramTagRecord record_;
    std::optional<std::vector<std::string>> arguments_;  ///< empty: CommandLine as it stands
};

}  // namespace mailvane
