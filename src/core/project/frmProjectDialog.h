#pragma once

#include <string>
#include <vector>

#include "core/Workbench.h"

namespace mailvane {

/// What the user wants to work on.
struct ProjectChoice {
    bool cancelled = true;
    bool isNew = false;   ///< `file` is to be made
    bool wizard = false;  ///< the project wizard is to make it; `file` is ""
    std::string file;
};

/// Offers the recent projects, another one, a new one, and the wizard.
class frmProjectDialog final : public WorkbenchForm {
public:
    explicit frmProjectDialog(Workbench& wb);

    ListBox lstRecent{*this, "lstRecent"};
    Button cmdOpen{*this, "cmdOpen", [this] { OpenSelected(); }};
    Button cmdBrowse{*this, "cmdBrowse", [this] { Browse(); }};
    Button cmdNew{*this, "cmdNew", [this] { New(); }};
    Button cmdWizard{*this, "cmdWizard", [this] { ChooseWizard(); }};
    Button cmdCancel{*this, "cmdCancel", [this] { Unload(); }};

    /// Fills the list with those of the files that exist.
    void Offer(const std::vector<std::string>& recent);
    const ProjectChoice& Choice() const { return choice_; }

protected:
    void OnActivate() override;

private:
    void OpenSelected();
    void Open(const std::string& file);
    void Browse();
    void New();
    void ChooseWizard() { Choose({.cancelled = false, .wizard = true}); }
    void Choose(ProjectChoice choice);
    std::vector<std::string> files_;  ///< of the entries of lstRecent
    ProjectChoice choice_;
};

/// Shows frmProjectDialog modally. Files of `recent` that are "" or missing are left out.
ProjectChoice AskForProject(Workbench& wb, const std::vector<std::string>& recent);

}  // namespace mailvane
