#include "shell/ShellCommands.h"

#include "core/MessageBoxes.h"
#include "core/project/ProjectPrompts.h"
#include "send/SendCommands.h"
#include "shell/frmAbout.h"
#include "shell/frmMain.h"

namespace mailvane {

namespace {

frmMain& Main(Workbench& wb) {
    return wb.forms.Get<frmMain>();
}

template <void (frmMain::*work)()>
void ByMain(Workbench& wb) {
    (Main(wb).*work)();
}

template <Arrangement arrangement>
void Arrange(Workbench& wb) {
    wb.platform.windows.ArrangeChildren(arrangement);
}

void StartSendAndReceive(Workbench& wb) {
    Main(wb).Timer1.Start();
}

constexpr ToolRow<Workbench> Rows[] = {
    {"New", "&New Project...", "Make a new project", "document-new", "Ctrl+N",
     ByMain<&frmMain::NewProject>},
    {"Open", "&Open Project...", "Open a project", "document-open", "Ctrl+O",
     ByMain<&frmMain::OpenCommand>},
    {"Save", "&Save Project", "Save the project", "document-save", "Ctrl+S",
     ByMain<&frmMain::SaveCommand>},
    {"SaveAs", "Save Project &As...", "Save the project under another name", "document-save-as", "",
     ByMain<&frmMain::SaveAsCommand>},
    {"Project Dialog", "Project &Dialog...", "Choose or make a project", "folder", "",
     ByMain<&frmMain::RunProjectDialog>},
    {"exit", "E&xit", "Leave the program", "application-exit", "Ctrl+Q",
     ByMain<&frmMain::ExitApplication>},
    {"Start", "S&tart", "Send and receive e-mail", "media-playback-start", "F9",
     StartSendAndReceive},
    {"Send and Receive", "Send and &Receive", "Send and receive e-mail", "mail-send-receive", "",
     StartSendAndReceive},
    {"Cascade", "&Cascade", "Arrange the windows one behind the other", "window-duplicate", "",
     Arrange<Arrangement::Cascade>},
    {"Tile Horizontally", "Tile &Horizontally", "Arrange the windows one above the other",
     "view-split-top-bottom", "", Arrange<Arrangement::TileHorizontally>},
    {"Tile Vertically", "Tile &Vertically", "Arrange the windows side by side",
     "view-split-left-right", "", Arrange<Arrangement::TileVertically>},
    {"Arrange Icons", "Arrange &Icons", "Arrange the minimised windows", "view-list-icons", "",
     Arrange<Arrangement::ArrangeIcons>},
    {"About", "&About", "About the program", "help-about", "",
     [](Workbench& wb) { ShowModalDialog(wb, wb.forms.Get<frmAbout>()); }},
};

}  // namespace

void RegisterShellCommands(Workbench& wb) {
    wb.commands.Register(wb, Rows);
    const Tool* receive = wb.commands.Find("Receive All");
    if (receive && receive->onClick) return;
    for (const char* name : {"Start", "Send and Receive"}) {
        Tool command = *wb.commands.Find(name);
        command.tip += std::string(". ") + ReceivingLater;
        wb.commands.Register(std::move(command));
    }
}

}  // namespace mailvane
