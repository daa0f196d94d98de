#pragma once

#include <string>

#include "core/Workbench.h"

namespace mailvane {

/// Key of project files, merge documents and mailing list files.
inline constexpr const char* ProjectKey = "Velorina";

/// The text form of a form's control values: name, "*|*", value, "#|#" for each control that has
/// one, in the form's order, and CR LF behind the last.
std::string ReadControlValues(Workbench& wb, const Form& form);
/// The inverse. A control missing from the text keeps its value, a text box becomes empty.
void ApplyControlValues(Workbench& wb, Form& form, const std::string& text);
/// The text holds an item of the name of one of the form's controls.
bool NamesControlOf(const Form& form, const std::string& text);
/// What kinds and names a document holds, and how one value is written and read. The documents of
/// different forms differ in them a little.
std::string ControlValueText(const Control& control);
void SetControlValue(Control& control, const std::string& value);

/// False when it was not saved, which has been told; the open project stays the open one then.
bool SaveProject(Workbench& wb, const std::string& path);
/// Reads the project into frmSettings.
void LoadProject(Workbench& wb, const std::string& path);
/// The file holds at least one value of the settings form.
bool IsProjectFile(Workbench& wb, const std::string& path);
std::string NoProjectText(const std::string& path);  ///< what to say of one that does not
/// What "Open", a recent file and the command line do: makes `path` the current project, unloads
/// every form but frmMain and loads frmSettings.
void SwitchProject(Workbench& wb, const std::string& path);
/// Unloads every form but the main one and the one of that name.
void UnloadProjectForms(Workbench& wb, const std::string& kept = {});
std::string TemplatePath(const Workbench& wb);         ///< prct.mp in the program folder
std::string RulesFile(const ApplicationState& state);  ///< the rule list of the open project
/// The errors of the last run; without a project ("") it stands in the program folder.
std::string ErrorLogPath(const Workbench& wb, const std::string& projectFolder);

/// Asks for a file; "" when cancelled. `extension` with or without a point; "" for any file. The
/// folder of the chosen file is remembered.
std::string BrowseFile(Workbench& wb, bool save, const std::string& description,
                       const std::string& extension);

/// Five paths, the last used first, under one application name.
class RecentFile {
public:
    RecentFile(Workbench& wb, std::string applicationName);
    void Load();
    void Add(const std::string& path);
    const std::vector<std::string>& Paths() const { return paths_; }  ///< always five, "" for none
    std::function<void(const std::vector<std::string>&)> onChange;

private:
    Workbench& wb_;
    std::string applicationName_;
    std::vector<std::string> paths_;
};

}  // namespace mailvane
