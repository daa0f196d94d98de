#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace mailvane {

/// The whole file; empty result when it cannot be read. Folders, pipes and devices cannot: a pipe
/// would wait for a writer for ever.
std::optional<std::string> ReadWholeFile(const std::string& path);
/// The same of whatever can be read to an end, and waits for it: for a file that the user names on
/// the command line.
std::optional<std::string> ReadToEnd(const std::string& path);
/// Who may read a file that is made. One that is there already keeps what it has.
enum class FileAccess { Usual, OwnerOnly };
/// Writes a temporary file beside `path`, flushes it to the disk and renames it over: the old file
/// or the new one is there afterwards, whole, whatever happens. False on failure, with the old one
/// kept and the reason in `reason`.
bool WriteWholeFile(const std::string& path, std::string_view content,
                    std::string* reason = nullptr, FileAccess access = FileAccess::Usual);
/// From now on only the owner may read and write it.
bool MakePrivate(const std::string& path);
bool IsFile(const std::string& path);
bool IsFolder(const std::string& path);
bool MakeFolders(const std::string& path);  ///< with those above it; true when it is there
bool DeleteFile(const std::string& path);
std::int64_t FileSize(const std::string& path);  ///< -1 when it cannot be told

/// Private profile files: sections in brackets with lines of the form key=value. Section and key
/// ignore letter case. A missing value is an empty result. Writing keeps all other lines.
std::optional<std::string> ReadProfileValue(const std::string& path, const std::string& section,
                                            const std::string& key);
bool WriteProfileValue(const std::string& path, const std::string& section, const std::string& key,
                       const std::string& value, FileAccess access = FileAccess::Usual);
std::vector<std::string> ProfileKeys(const std::string& path, const std::string& section);

}  // namespace mailvane
