#pragma once

#include <cstdint>
#include <functional>
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

/// Reads the record of a number; a missing file reads as empty, and an empty one is made when that
/// is wanted. A number with a path in it names no file.
void LoadTagFile(const Workbench& wb, const ExecuteTagKind& kind, const std::string& number,
                 MissingTagFile missing, const std::function<void(RecordReader&)>& read);
/// Makes the folder when it is missing. False when the file could not be written.
bool SaveTagFile(const Workbench& wb, const ExecuteTagKind& kind, std::int32_t number,
                 const std::function<void(RecordWriter&)>& write);

/// Shows what runs in the status window, and in the status bar while that window is visible.
void ShowTagStatus(Workbench& wb, const std::string& text);

}  // namespace mailvane
