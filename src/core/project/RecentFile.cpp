#include <algorithm>

#include "core/Paths.h"
#include "core/project/Project.h"
#include "core/settings/Settings.h"
#include "platform/os/Files.h"

namespace mailvane {

namespace {

constexpr std::size_t RecentCount = 5;
constexpr const char* RecentSection = "Recent File List";
constexpr const char* LastFolderKey = "LastDir";

std::string RecentKey(std::size_t index) {
    return "File" + std::to_string(index + 1);
}

std::string BrowseStartFolder(const Workbench& wb) {
    const std::string folder = GetUserSetting(wb, RecentSection, LastFolderKey);
    if (folder != NotFound) return folder;
    const std::string projects = wb.platform.programFolder + PathSeparator + "Projects";
    MakeFolders(projects);
    return projects;
}

}  // namespace

std::string BrowseFile(Workbench& wb, bool save, const std::string& description,
                       const std::string& extension) {
    const std::string bare = extension.starts_with('.') ? extension.substr(1) : extension;
    FileRequest request;
    request.save = save;
    request.filters.push_back({"(*.*)", "*"});
    // The chosen filter's extension goes before the general one, as in any desktop's dialog.
    request.defaultExtension = bare.empty() ? "txt" : bare;
    if (!bare.empty()) {
        request.filters.push_back({description + " (*." + bare + ")", "*." + bare});
        request.filterIndex = 1;
    }
    request.title = save ? "Save As" : "Open";
    request.startFolder = BrowseStartFolder(wb);
    const std::string path = wb.platform.windows.FileDialog(request).value_or(std::string());
    const std::string folder = FolderFromPath(path, PathSeparator);
    if (!folder.empty()) SaveUserSetting(wb, RecentSection, LastFolderKey, folder);
    return path;
}

RecentFile::RecentFile(Workbench& wb, std::string applicationName)
    : wb_(wb), applicationName_(std::move(applicationName)), paths_(RecentCount) {}

void RecentFile::Load() {
    for (std::size_t i = 0; i < RecentCount; ++i) {
        const std::string path = GetUserSetting(wb_, RecentSection, RecentKey(i), applicationName_);
        paths_[i] = path == NotFound ? std::string() : path;
    }
    if (onChange) onChange(paths_);
}

void RecentFile::Add(const std::string& path) {
    const std::vector<std::string> before = paths_;
    std::erase(paths_, path);
    paths_.insert(paths_.begin(), path);
    paths_.resize(RecentCount);
    for (std::size_t i = 0; i < RecentCount; ++i) {
        if (paths_[i] != before[i])
            SaveUserSetting(wb_, RecentSection, RecentKey(i), paths_[i], applicationName_);
    }
    if (onChange) onChange(paths_);
}

}  // namespace mailvane
