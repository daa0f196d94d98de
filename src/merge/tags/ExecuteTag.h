#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/Workbench.h"
#include "core/records/RecordFile.h"

namespace mailvane {

/// What programs and scripts that messages run have in common. A tag is the keyword, a number and
/// "##"; the number names its record file in the project folder.
struct ExecuteTagKind {
    const char* keyword;
    const char* folder;
    const char* extension;
    const char* listFile;
};

inline constexpr ExecuteTagKind ProgramTagKind{"##Execute Program ", "pTags", ".ptg", "pTags.dat"};
inline constexpr ExecuteTagKind CgiTagKind{"##Execute CGI ", "cTags", ".ctg", "cTags.dat"};

/// What is asked for when no tag is found.
inline constexpr const char* NoExecuteTag = "-1";

/// The whole tag.
std::string ExecuteTagText(const ExecuteTagKind& kind, const std::string& number);
/// The number of the first tag in a text, in any letter case; "" when that tag has no end, nothing
/// when there is no tag.
std::optional<std::string> FirstTagNumber(std::string_view text, const ExecuteTagKind& kind);

/// The number at the start of a list's entry, as text and as a number, 0 when it is none.
std::string NumberOfEntry(const std::string& entry);
std::int32_t TagNumberOf(const std::string& entry);
/// One more than the highest number of the entries.
std::int32_t NextTagNumber(const std::vector<std::string>& entries);

/// Where the entries of a list are kept; "" while the project has no folder.
std::string TagListFile(const Workbench& wb, const ExecuteTagKind& kind);
/// What reading a record does where its file is missing.
enum class MissingTagFile { Make, Leave };

/// Where the record of a number is kept; "" for a number with a path in it, which names no file.
std::string TagFile(const Workbench& wb, const ExecuteTagKind& kind, const std::string& number);
/// Makes an empty file where a record is missing, as long as its folder is there.
void MakeTagFile(const Workbench& wb, const ExecuteTagKind& kind, const std::string& number);
bool MakeTagFolder(const Workbench& wb, const ExecuteTagKind& kind);

/// The record of a number, as far as it could be read; an empty one where there is no file.
template <class Tag>
Tag LoadTag(const Workbench& wb, const std::string& number,
            MissingTagFile missing = MissingTagFile::Make) {
    Tag tag;
    LoadRecordFile(TagFile(wb, Tag::Kind, number), tag);
    if (missing == MissingTagFile::Make) MakeTagFile(wb, Tag::Kind, number);
    return tag;
}

/// Makes the folder when it is missing. False when the file could not be written.
template <class Tag>
bool SaveTag(const Workbench& wb, const Tag& tag) {
    return MakeTagFolder(wb, Tag::Kind) &&
           SaveRecordFile(TagFile(wb, Tag::Kind, std::to_string(tag.TagNumber)), tag);
}

/// Shows what runs in the status window, and in the status bar while that window is visible.
void ShowTagStatus(Workbench& wb, const std::string& text);

}  // namespace mailvane
