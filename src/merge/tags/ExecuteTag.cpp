#include "merge/tags/ExecuteTag.h"

#include <algorithm>

#include "core/Paths.h"
#include "core/run/frmStatus.h"
#include "core/text/Text.h"
#include "platform/os/Files.h"
#include "platform/os/TextCase.h"

namespace mailvane {

namespace {

constexpr std::string_view TagEnd = "##";
constexpr std::string_view EntrySeparator = ". ";

std::string TagFolder(const Workbench& wb, const ExecuteTagKind& kind) {
    return wb.state.ProjectFolder + PathSeparator + kind.folder;
}

/// The number can come from a text that others wrote.
bool NamesAFile(const std::string& number) {
    return number.find_first_of(std::string_view("/\\\0", 3)) == std::string::npos;
}

std::size_t FindKeyword(std::string_view text, std::string_view keyword) {
    std::size_t at = text.find(TagEnd);
    while (at != std::string_view::npos && !SameName(text.substr(at, keyword.size()), keyword))
        at = text.find(TagEnd, at + 1);
    return at;
}

}  // namespace

std::string ExecuteTagText(const ExecuteTagKind& kind, const std::string& number) {
    return std::string(kind.keyword).append(number).append(TagEnd);
}

std::optional<std::string> FirstTagNumber(std::string_view text, const ExecuteTagKind& kind) {
    const std::string_view keyword = kind.keyword;
    const std::size_t start = FindKeyword(text, keyword);
    if (start == std::string_view::npos) return std::nullopt;
    const std::size_t number = start + keyword.size();
    const std::size_t end = text.find(TagEnd, number);
    if (end == std::string_view::npos) return std::string();
    return std::string(text.substr(number, end - number));
}

std::string NumberOfEntry(const std::string& entry) {
    return entry.substr(0, entry.find(EntrySeparator));
}

std::int32_t TagNumberOf(const std::string& entry) {
    constexpr double Most = 2147483646;
    return static_cast<std::int32_t>(std::clamp(NumberOf(NumberOfEntry(entry)), 0.0, Most));
}

std::int32_t NextTagNumber(const std::vector<std::string>& entries) {
    std::int32_t highest = 0;
    for (const std::string& entry : entries)
        highest = std::max(highest, TagNumberOf(entry));
    return highest + 1;
}

std::string TagListFile(const Workbench& wb, const ExecuteTagKind& kind) {
    if (!FileExists(wb.state.ProjectFolder, true)) return {};
    return wb.state.ProjectFolder + PathSeparator + kind.listFile;
}

std::string TagFile(const Workbench& wb, const ExecuteTagKind& kind, const std::string& number) {
    if (!NamesAFile(number)) return {};
    return TagFolder(wb, kind) + PathSeparator + number + kind.extension;
}

void MakeTagFile(const Workbench& wb, const ExecuteTagKind& kind, const std::string& number) {
    const std::string path = TagFile(wb, kind, number);
    if (path.empty() || FileExists(path) || !FileExists(TagFolder(wb, kind), true)) return;
    WriteFileText(path, "");
}

bool MakeTagFolder(const Workbench& wb, const ExecuteTagKind& kind) {
    return MakeFolders(TagFolder(wb, kind));
}

void ShowTagStatus(Workbench& wb, const std::string& text) {
    auto& status = wb.forms.Get<frmStatus>();
    status.lblCaption2.SetText(text);
    if (status.Window.IsOpen() && wb.shell) wb.shell->SetPanel(text);
}

}  // namespace mailvane
