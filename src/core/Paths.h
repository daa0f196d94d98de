#pragma once

#include <string>
#include <string_view>

namespace mailvane {

inline constexpr const char* PathSeparator = "/";

/// With `wantFolder` false: the file is there and the path does not end in a separator. With
/// `wantFolder` true: a folder of that name is there.
bool FileExists(const std::string& path, bool wantFolder = false);
/// The text behind the last delimiter; with `dropExtension` cut at the last point (a name without a
/// point becomes empty).
std::string FileNameFromPath(std::string_view text, std::string_view delimiter, bool dropExtension);
/// The text before the last delimiter; "" without one.
std::string FolderFromPath(std::string_view text, std::string_view delimiter);
std::string ReadFileText(const std::string& path);  ///< "" when it cannot be read, or is a pipe
bool WriteFileText(const std::string& path, std::string_view text);
std::string TempFolder();  ///< with the separator at its end
bool IsValidTableName(std::string_view name);
/// The five lines that explain a refused name; `kind` is "Table", "Column", "Field" or "Folder".
std::string InvalidNameText(const std::string& kind, const std::string& name);
/// The table in a record source: a table name, or "SELECT * FROM [table] ORDER BY [column] ASC".
std::string TableOfRecordSource(const std::string& recordSource);

}  // namespace mailvane
