#pragma once

#include <string>

#include "core/Workbench.h"

namespace mailvane {

/// Greets a new user with the few things to begin with.
class frmWelcome final : public WorkbenchForm {
public:
    explicit frmWelcome(Workbench& wb);

    Button cmdWizard{*this, "cmdWizard", [this] { Leave("New Project Wizard"); }};
    Button cmdOpen{*this, "cmdOpen", [this] { Leave("Open"); }};
    Button cmdMerge{*this, "cmdMerge", [this] { Leave("Merge"); }};
    Button cmdHelp{*this, "cmdHelp", [this] { Command("Help"); }};
    CheckBox chkWelcome{*this, "chkWelcome"};
    Button cmdClose{*this, "cmdClose", [this] { Unload(); }};

protected:
    void OnLoad() override;
    void OnUnload() override { wb_.state.FirstLaunch = false; }

private:
    void Command(const std::string& tool);
    void Leave(const std::string& tool);
    void StoreChoice();
};

}  // namespace mailvane
