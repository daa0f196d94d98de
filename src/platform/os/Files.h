#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace mailvane {

/// The whole file; empty result when it cannot be read.
std::optional<std::string> ReadWholeFile(const std::string& path);
/// Writes a temporary file beside `path`, flushes it to the disk and renames it over: the old file
/// or the new one is there afterwards, whole, whatever happens. False on failure, with the old one
/// kept and the reason in `reason`.
bool WriteWholeFile(const std::string& path, std::string_view content,
                    std::string* reason = nullptr);
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
                       const std::string& value);
std::vector<std::string> ProfileKeys(const std::string& path, const std::string& section);

}  // namespace mailvane
