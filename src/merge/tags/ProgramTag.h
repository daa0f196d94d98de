#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "core/Workbench.h"
#include "merge/tags/MessageTag.h"

namespace mailvane {

/// A program that messages run, as its record file holds it.
struct ProgramTagRecord {
    static constexpr const ExecuteTagKind& Kind = ProgramTagKind;

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

    static void Fields(auto& record, auto&& field) {
        field(record.TagNumber);
        field(record.TagListIndex);
        field(record.ProgramPath);
        field(record.CommandLine);
        field(record.IncludeResult);
        field(record.ResultFile);
        field(record.DeleteResult);
        field(record.SecondsToWait);
        field(record.WaitForExit);
        field(record.EditMode);
    }
    friend bool operator==(const ProgramTagRecord&, const ProgramTagRecord&) = default;
};

/// "3. execute lookup.sh and include results."
std::string TagEntry(const ProgramTagRecord& tag);

/// A program on its way to be run for a message. Once one was found, every later message runs the
/// one found last.
class ProgramTag final : public MessageTag {
public:
    explicit ProgramTag(const TagSetting& setting) : setting_(setting) {}

    /// Looks for the first tag in Body, then in HTMLCode. The number of the one whose program is
    /// there, or NoExecuteTag; a tag whose program is missing is taken out of its text. The record
    /// found last is kept.
    std::string FindProgramTag(MessageRecord& record);

    void Find(MessageRecord& message) override;
    /// Inside each argument of the command line: a value never becomes a second one.
    bool FillIn(MessageRecord& message, const TagList::ValueOf* row) override;
    bool HasToRun() const override { return found_; }
    /// Starts the program, and waits as its record says; it runs on when that was ended. A program
    /// that cannot be started is passed over.
    void Run(const std::function<bool()>& keepWaiting) const override;
    std::string Objection(const std::string& text) const override;

private:
    bool Take(std::string& text, std::string& number);
    std::vector<std::string> Arguments() const;
    TagSetting setting_;
    bool found_ = false;
    ProgramTagRecord record_;
    std::optional<std::vector<std::string>> arguments_;  ///< empty: CommandLine as it stands
};

}  // namespace mailvane
