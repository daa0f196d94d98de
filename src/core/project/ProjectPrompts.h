#pragma once

#include <string>

#include "core/Workbench.h"

namespace mailvane {

inline constexpr const char* ProjectExtension = ".poc";

/// Asks for a project file; "" when cancelled.
std::string BrowseProjectFile(Workbench& wb, bool save);
/// The folder that project files stand in when the user names none.
std::string ProjectsFolder(const Workbench& wb);
/// Says that a shipped file is missing.
void TellFilesCorrupted(Workbench& wb);
/// Says that the file that was chosen is not there.
void TellFileNotFound(Workbench& wb);

}  // namespace mailvane
