#include "core/Paths.h"

#include "core/text/Text.h"
#include "platform/os/Files.h"
#include "platform/os/Processes.h"

namespace mailvane {

namespace {

constexpr std::size_t LongestName = 63;

}  // namespace

bool FileExists(const std::string& path, bool wantFolder) {
    if (path.empty()) return false;
    if (wantFolder) return IsFolder(path);
    return !path.ends_with(PathSeparator) && IsFile(path);
}

std::string FileNameFromPath(std::string_view text, std::string_view delimiter,
                             bool dropExtension) {
    const std::size_t at = text.rfind(delimiter);
    if (at != std::string_view::npos && !delimiter.empty())
        text.remove_prefix(at + delimiter.size());
    if (!dropExtension) return std::string(text);
    const std::size_t point = text.rfind('.');
    return point == std::string_view::npos ? std::string() : std::string(text.substr(0, point));
}

std::string FolderFromPath(std::string_view text, std::string_view delimiter) {
    const std::size_t at = delimiter.empty() ? std::string_view::npos : text.rfind(delimiter);
    return at == std::string_view::npos ? std::string() : std::string(text.substr(0, at));
}

std::string ReadFileText(const std::string& path) {
    return IsFile(path) ? ReadWholeFile(path).value_or(std::string()) : std::string();
}

bool WriteFileText(const std::string& path, std::string_view text) {
    return WriteWholeFile(path, text);
}

std::string TempFolder() {
    return TemporaryFolder();
}

bool IsValidTableName(std::string_view name) {
    if (name.empty() || name.size() > LongestName || name.front() == ' ') return false;
    if (name.find_first_of(".,[]!'`") != std::string_view::npos) return false;
    for (const char c : name)
        if (static_cast<unsigned char>(c) < 32) return false;
    return true;
}

std::string InvalidNameText(const std::string& kind, const std::string& name) {
    const std::string firstLine = "Invalid " + kind + " name: '" + name + "'\r\n";
    return firstLine + (kind == "Folder" ? "" : "\r\n") +
           "Names can be up to 64 characters long and can include \r\n"
           "any combination of letters, numbers, spaces, and special \r\n"
           "characters except a period (.), an exclamation point \r\n"
           "(!), a backquote character ('), and brackets ([]). You \r\n"
           "also can't use leading spaces or control characters \r\n"
           "(ASCII values 0 through 31).";
}

std::string TableOfRecordSource(const std::string& recordSource) {
    if (!ContainsText(recordSource, "select * from")) return recordSource;
    const std::vector<std::string> pieces = Split(recordSource, "SELECT * FROM [");
    return pieces.size() < 2 ? std::string() : Split(pieces[1], "] ORDER BY").front();
}

}  // namespace mailvane
