#include "core/project/Project.h"

#include <filesystem>
#include <system_error>
#include <tuple>
#include <utility>

#include "core/MessageBoxes.h"
#include "core/Paths.h"
#include "core/Waiting.h"
#include "core/records/Sifrant.h"
#include "core/run/Progress.h"
#include "core/settings/frmSettings.h"
#include "platform/os/Files.h"

namespace mailvane {

namespace {

constexpr std::size_t ShortestPath = 3;

/// Makes the project's name and folder known. A path given without a folder counts from the
/// current one.
void NameProject(ApplicationState& state, const std::string& path) {
    std::error_code ignored;
    const std::string whole = std::filesystem::absolute(path, ignored).string();
    state.ProjectName = FileNameFromPath(path, PathSeparator, true);
    state.ProjectFolder = FolderFromPath(whole.empty() ? path : whole, PathSeparator) +
                          PathSeparator + state.ProjectName;
}

void SetMainCaption(Workbench& wb, const std::string& caption) {
    if (wb.shell != nullptr) wb.shell->MainForm().SetCaption(caption);
}

void AnnounceProject(Workbench& wb, const std::string& path) {
    SetMainCaption(wb, wb.state.ProjectName + " - " + ProgramTitle);
    if (wb.shell != nullptr) wb.shell->AddRecentFile(path);
}

}  // namespace

bool SaveProject(Workbench& wb, const std::string& path) {
    if (path.size() < ShortestPath) {
        Tell(wb, "Invalid File Name.", BoxIcon::Critical);
        return false;
    }
    const std::pair before(wb.state.ProjectName, wb.state.ProjectFolder);
    NameProject(wb.state, path);
    std::error_code ignored;
    std::filesystem::create_directory(wb.state.ProjectFolder, ignored);
    auto& settings = wb.forms.Get<frmSettings>();
    UpdateProgress(wb, static_cast<long>(settings.Controls().size()), 0,
                   "Saving '" + wb.state.ProjectName + "' project...");
    const std::string text = ReadControlValues(wb, settings);
    if (!WriteWholeFile(path, Sifrant().Sifriraj(text, ProjectKey), nullptr,
                        FileAccess::OwnerOnly)) {
        std::tie(wb.state.ProjectName, wb.state.ProjectFolder) = before;
        Tell(wb, "The project file '" + path + "' could not be written.", BoxIcon::Critical);
        return false;
    }
    settings.lbxRules.SetFile(RulesFile(wb.state));
    AnnounceProject(wb, path);
    return true;
}

bool IsProjectFile(Workbench& wb, const std::string& path) {
    const std::string text = Sifrant().DeSifriraj(ReadFileText(path), ProjectKey);
    return NamesControlOf(wb.forms.Get<frmSettings>(), text);
}

std::string NoProjectText(const std::string& path) {
    return "The file '" + path +
           "' is not a Mailvane project, or it is damaged. It stays as it is.";
}

void LoadProject(Workbench& wb, const std::string& path) {
    NameProject(wb.state, path);
    {
        const BusyPointer busy(wb);
        const std::string text = Sifrant().DeSifriraj(ReadFileText(path), ProjectKey);
        ApplyControlValues(wb, wb.forms.Get<frmSettings>(), text);
    }
    if (path == TemplatePath(wb))
        SetMainCaption(wb, ProgramTitle);
    else
        AnnounceProject(wb, path);
}

void SwitchProject(Workbench& wb, const std::string& path) {
    wb.state.CurrentProjectFile = path;
    const std::string name = FileNameFromPath(path, PathSeparator, true);
    if (wb.shell != nullptr) wb.shell->SetPanel("Loading " + name + " project...");
    UnloadProjectForms(wb);
    wb.forms.Load<frmSettings>();
    if (wb.shell != nullptr) wb.shell->SetPanel("");
}

void UnloadProjectForms(Workbench& wb, const std::string& kept) {
    wb.forms.UnloadAllExcept({wb.shell ? wb.shell->MainForm().Name() : "", kept});
}

std::string RulesFile(const ApplicationState& state) {
    return state.ProjectFolder + PathSeparator + "Rules.dat";
}

std::string ErrorLogPath(const Workbench& wb, const std::string& projectFolder) {
    return (projectFolder.empty() ? wb.platform.programFolder : projectFolder) + PathSeparator +
           "errorlog.txt";
}

std::string TemplatePath(const Workbench& wb) {
    return wb.platform.programFolder + PathSeparator + "prct.mp";
}

}  // namespace mailvane
