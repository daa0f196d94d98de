#include "core/project/ProjectPrompts.h"

#include "core/MessageBoxes.h"
#include "core/Paths.h"
#include "core/project/Project.h"
#include "core/text/Text.h"

namespace mailvane {

std::string BrowseProjectFile(Workbench& wb, bool save) {
    return Trim(BrowseFile(wb, save, "Mailvane projects", ProjectExtension));
}

std::string ProjectsFolder(const Workbench& wb) {
    return wb.platform.programFolder + PathSeparator + "Projects";
}

void TellFilesCorrupted(Workbench& wb) {
    Tell(wb,
         "Some very important files are corrupted. To solve the problem please reinstall the "
         "program. ",
         BoxIcon::Critical);
}

void TellFileNotFound(Workbench& wb) {
    Tell(wb, "File not found. Please verify the correct file name was given. ", BoxIcon::Critical);
}

}  // namespace mailvane
