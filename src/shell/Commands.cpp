#include "connection/frmConnectionWizard.h"
#include "connection/frmDial.h"
#include "core/MessageBoxes.h"
#include "core/Paths.h"
#include "core/Running.h"
#include "core/project/ProjectPrompts.h"
#include "core/project/frmProjectWizard.h"
#include "core/project/frmWelcome.h"
#include "core/settings/frmOptions.h"
#include "core/settings/frmSettings.h"
#include "database/exchange/frmDataWizard.h"
#include "database/view/frmViewDatabase.h"
#include "merge/message/frmViewMerge.h"
#include "merge/tags/frmTagCGI.h"
#include "merge/tags/frmTagProgram.h"
#include "send/direct/frmMailServer.h"
#include "send/report/frmDeliveryReport.h"
#include "shell/frmAbout.h"
#include "shell/frmMain.h"
#include "store/view/frmViewEmail.h"

namespace mailvane {

namespace {

constexpr const char* UpgradeText =
    ". There is no upgrade service for this version: a newer one comes the way this one came.";

/// Commands that the database view carries out.
struct TableCommand {
    const char* name;
    Button frmViewDatabase::*button;
};

constexpr TableCommand TableCommands[] = {
    {"Backup table", &frmViewDatabase::cmdBackup},
    {"Clone entire table", &frmViewDatabase::cmdCloneTable},
    {"Clone selected records", &frmViewDatabase::cmdCloneRecords},
    {"Copy selected records to existing table", &frmViewDatabase::cmdCloneRecords},
    {"Copy selected records to new table", &frmViewDatabase::cmdCloneRecords},
    {"Repair", &frmViewDatabase::cmdRepair},
    {"Compact", &frmViewDatabase::cmdCompact},
};

/// A view that found nothing to show has said so and is not shown.
bool CanShow(const Form& form) {
    return form.IsLoaded();
}
bool CanShow(const frmViewDatabase& view) {
    return view.IsLoaded() && view.Connected();
}

}  // namespace

ControlAnswer frmMain::ExecuteCommand(const std::string& toolName, const std::string& toolCaption) {
    const Tool* tool = ActiveBar1.FindTool(toolName);
    if (!tool) return ControlAnswer::NoSuchEntry;
    if (!tool->enabled) return ControlAnswer::Disabled;
    if (wb_.state.LoadingProject) return ControlAnswer::Done;
    const std::string name = tool->name;
    const bool known = RunFileCommand(name, toolCaption) || RunMailCommand(name) ||
                       RunViewCommand(name) || RunTableCommand(name) || RunToolCommand(name) ||
                       RunHelpCommand(name);
    return known ? ControlAnswer::Done : ControlAnswer::Impossible;
}

bool frmMain::RunFileCommand(const std::string& name, const std::string& caption) {
    if (name == "New")
        NewProject();
    else if (name == "Open") {
        const std::string path = BrowseProjectFile(wb_, false);
        if (!path.empty()) OpenExistingProject(path);
    } else if (name == "Save")
        SaveCommand();
    else if (name == "SaveAs")
        SaveAsCommand();
    else if (name.starts_with("RecentFile"))
        OpenExistingProject(caption);
    else if (name == "New Project Wizard")
        wb_.forms.Get<frmProjectWizard>().Show();
    else if (name == "Project Dialog")
        RunProjectDialog();
    else if (name == "exit")
        OnCloseBox();
    else
        return false;
    return true;
}

void frmMain::PressSend(bool finalStep) {
    wb_.state.FinalRunStep = finalStep;
    wb_.forms.Get<frmSettings>().cmdSendEmail.Press();
    wb_.state.FinalRunStep = false;
}

/// Sending comes first and without the final step, so that only the receive half may hang up.
void frmMain::SendAndReceive() {
    Timer1.Stop();
    if (sendAndReceiveRunning_) return;
    sendAndReceiveRunning_ = true;
    wb_.forms.Get<frmSettings>().cmdSendEmail.Press();
    wb_.state.SendReceiveActive = true;
    wb_.state.FinalRunStep = true;
    wb_.forms.Get<frmSettings>().cmdReadEmail.Press();
    wb_.state.SendReceiveActive = false;
    wb_.state.FinalRunStep = false;
    sendAndReceiveRunning_ = false;
}

bool frmMain::RunMailCommand(const std::string& name) {
    if (name == "Send All") {
        PressSend(true);
        wb_.state.SendReceiveActive = false;
    } else if (name == "Start" || name == "Send and Receive")
        Timer1.Start();
    else if (name == "Dial")
        wb_.forms.Get<frmDial>().Show();
    else if (name == "Delivery Report")
        ShowDeliveryReport(wb_);
    else if (name == "Error Log File") {
        const std::string log = wb_.state.ProjectFolder + "/errorlog.txt";
        if (FileExists(log)) OpenDocument(wb_, log);
    } else
        return false;
    return true;
}

template <class F>
void frmMain::ShowView() {
    F& view = wb_.forms.Get<F>();
    if (CanShow(view)) {
        view.Show();
        view.BringToFront();
    } else if (view.IsLoaded())
        view.Unload();
}

bool frmMain::RunViewCommand(const std::string& name) {
    if (name == "Database")
        ShowView<frmViewDatabase>();
    else if (name == "Email")
        ShowView<frmViewEmail>();
    else if (name == "Merge")
        ShowView<frmViewMerge>();
    else if (name == "Settings")
        ShowView<frmSettings>();
    else if (name == "Cascade")
        Windows().ArrangeChildren(Arrangement::Cascade);
    else if (name == "Tile Horizontally")
        Windows().ArrangeChildren(Arrangement::TileHorizontally);
    else if (name == "Tile Vertically")
        Windows().ArrangeChildren(Arrangement::TileVertically);
    else if (name == "Arrange Icons")
        Windows().ArrangeChildren(Arrangement::ArrangeIcons);
    else
        return false;
    return true;
}

bool frmMain::RunTableCommand(const std::string& name) {
    for (const TableCommand& command : TableCommands) {
        if (name != command.name) continue;
        auto& view = wb_.forms.Get<frmViewDatabase>();
        if (CanShow(view)) (view.*command.button).Press();
        return true;
    }
    return false;
}

bool frmMain::RunToolCommand(const std::string& name) {
    if (name == "NewDatabase")
        StartDataWizard(wb_, DataWizardMode::NewDatabase);
    else if (name == "ImportData")
        StartDataWizard(wb_, DataWizardMode::Import);
    else if (name == "ExportData")
        StartDataWizard(wb_, DataWizardMode::Export);
    else if (name == "Execute Program")
        wb_.forms.Get<frmTagProgram>().Show();
    else if (name == "Execute CGI")
        wb_.forms.Get<frmTagCGI>().Show();
    else if (name == "Options")
        ShowModalDialog(wb_, wb_.forms.Get<frmOptions>());
    else if (name == "Connection Wizard")
        wb_.forms.Get<frmConnectionWizard>().Show();
    else if (name == "Internal Mail Server")
        ShowMailServer(wb_);
    else if (name == "Scheduler") {
        const std::string document = wb_.platform.programFolder + "/.shd";
        if (FileExists(document))
            OpenDocument(wb_, document);
        else
            TellFilesCorrupted(wb_);
    } else
        return false;
    return true;
}

bool frmMain::RunHelpCommand(const std::string& name) {
    if (name == "Help")
        OpenDocument(wb_, HelpFile(wb_));
    else if (name == "Information (phone and other info)")
        ShowHelpContext(wb_);
    else if (name == "Welcome")
        wb_.forms.Get<frmWelcome>().Show();
    else if (name == "About")
        ShowModalDialog(wb_, wb_.forms.Get<frmAbout>());
    else if (name == "Upgrade")
        Tell(wb_, std::string("This is ") + ProgramTitle + " " + ProgramVersion + UpgradeText,
             BoxIcon::Information);
    else
        return false;
    return true;
}

}  // namespace mailvane
