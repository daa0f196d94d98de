#include "core/commands/CoreCommands.h"

#include "core/MessageBoxes.h"
#include "core/Paths.h"
#include "core/Running.h"
#include "core/project/Project.h"
#include "core/project/ProjectPrompts.h"
#include "core/project/frmProjectWizard.h"
#include "core/project/frmWelcome.h"
#include "core/settings/frmOptions.h"
#include "core/settings/frmSettings.h"

namespace mailvane {

namespace {

void ShowErrorLog(Workbench& wb) {
    const std::string log = ErrorLogPath(wb, wb.state.ProjectFolder);
    if (FileExists(log)) ShowDocument(wb, log);
}

void StartScheduler(Workbench& wb) {
    const std::string document = wb.platform.programFolder + "/.shd";
    if (FileExists(document))
        ShowDocument(wb, document);
    else
        TellFilesCorrupted(wb);
}

void TellVersion(Workbench& wb) {
    Tell(wb,
         std::string("This is ") + ProgramTitle + " " + ProgramVersion +
             ". There is no upgrade service for this version: a newer one comes the way this one "
             "came.",
         BoxIcon::Information);
}

constexpr ToolRow<Workbench> Rows[] = {
    {"New Project Wizard", "New Project &Wizard...", "Make a project step by step", "tools-wizard",
     "", [](Workbench& wb) { wb.forms.Get<frmProjectWizard>().Show(); }},
    {"Settings", "&Settings...", "Settings of the project", "configure", "F8",
     [](Workbench& wb) { ShowView(wb.forms.Get<frmSettings>()); }},
    {"Scheduler", "Sche&duler", "Start the program at set times", "appointment-new", "",
     StartScheduler},
    {"Options", "&Options...", "Options of the program", "preferences-system", "",
     [](Workbench& wb) { ShowModalDialog(wb, wb.forms.Get<frmOptions>()); }},
    {"Error Log File", "&Error Log File", "Show the errors of the last run", "dialog-error", "",
     ShowErrorLog},
    {"Help", "&Help", "Show the help", "help-contents", "F1",
     [](Workbench& wb) { ShowDocument(wb, HelpFile(wb)); }},
    {"Information (phone and other info)", "&Information (phone and other info)",
     "Where to find help", "help-about", "", ShowHelpContext},
    {"Welcome", "&Welcome", "Show the welcome screen", "go-home", "",
     [](Workbench& wb) { wb.forms.Get<frmWelcome>().Show(); }},
    {"Upgrade", "Check for &upgrades", "Look for a newer version", "system-software-update", "",
     TellVersion},
};

}  // namespace

void RegisterCoreCommands(Workbench& wb) {
    wb.commands.Register(wb, Rows);
}

}  // namespace mailvane
