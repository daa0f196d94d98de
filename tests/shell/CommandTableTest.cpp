#include <set>

#include "core/Waiting.h"
#include "database/view/frmViewDatabase.h"
#include "platform/os/Files.h"
#include "shell/MainBands.h"
#include "shell/ShellBench.h"

namespace mailvane {
namespace {

using test::Shell;

class CommandTable : public Shell {
protected:
    void Try(const std::string& tool, const std::string& file = {}) {
        Command(tool, file);
        tried_.insert(tool);
    }
    void Shows(const std::string& tool, const std::string& form) {
        Try(tool);
        EXPECT_TRUE(IsOpen(form)) << tool;
    }
    /// `button` closes the modal form again.
    void Asks(const std::string& tool, const std::string& form, const std::string& button,
              const std::string& file = {}) {
        opened_.clear();
        PressWhenOpen(form, button);
        Try(tool, file);
        EXPECT_EQ(opened_, std::vector{form}) << tool;
    }
    void Opens(const std::string& tool, const std::string& document) {
        EXPECT_TRUE(WriteWholeFile(document, "text"));
        Try(tool);
        EXPECT_EQ(processes.opened.back().first, document) << tool;
    }
    /// The runs that a tool starts, as "send" or "receive" with the flags that are up then.
    void Runs(const std::string& tool, const std::string& expected) {
        runs_.clear();
        Try(tool);
        WaitSeconds(wb, 1);
        EXPECT_EQ(runs_, expected) << tool;
        EXPECT_FALSE(wb.state.FinalRunStep || wb.state.SendReceiveActive);
    }
    void PressesOfView(const std::string& tool, Button frmViewDatabase::*button) {
        int pressed = 0;
        (wb.forms.Get<frmViewDatabase>().*button).onClick = [&] { ++pressed; };
        Try(tool);
        EXPECT_EQ(pressed, 1) << tool;
    }

    void NoteRuns() {
        const auto note = [this](const std::string& name) {
            return [this, name] {
                runs_ += name + (wb.state.FinalRunStep ? " final" : "") +
                         (wb.state.SendReceiveActive ? " both" : "") + ";";
            };
        };
        auto& settings = wb.forms.Get<frmSettings>();
        settings.cmdSendEmail.onClick = note("send");
        settings.cmdReadEmail.onClick = note("receive");
    }
    void TryDatabaseTools() {
        wb.forms.Get<frmSettings>().txtAccessDBPath.SetText(MakePeople());
        Shows("Database", "frmViewDatabase");
        for (const char* copying : {"Clone selected records", "Copy selected records to new table",
                                    "Copy selected records to existing table"})
            PressesOfView(copying, &frmViewDatabase::cmdCloneRecords);
        PressesOfView("Backup table", &frmViewDatabase::cmdBackup);
        PressesOfView("Clone entire table", &frmViewDatabase::cmdCloneTable);
        PressesOfView("Repair", &frmViewDatabase::cmdRepair);
        PressesOfView("Compact", &frmViewDatabase::cmdCompact);
        Asks("ImportData", "frmDataWizard", "cmdCancel");
        Asks("ExportData", "frmDataWizard", "cmdCancel");
        Asks("NewDatabase", "frmDataWizard", "cmdCancel", Path("new.db"));
    }
    void TryToolsOfLaterVersions(const ActiveBar& bar) {
        for (const char* tool :
             {"Receive All", "New Message", "Message rules", "Import", "Mailing lists",
              "Filter through text file", "Compare tables", "Clean up table", "Remove duplicates",
              "Remove duplicate recipients", "Remove domains"}) {
            EXPECT_EQ(wb.shell->ExecuteCommand(tool, ""), ControlAnswer::Disabled) << tool;
            EXPECT_TRUE(bar.FindTool(tool)->ShownTip().ends_with(LaterTip)) << tool;
            tried_.insert(tool);
        }
        wb.commands.Register({.name = "Import", .onClick = [this] { runs_ = "import"; }});
        Try("Import");
        EXPECT_EQ(runs_, "import") << "it has got its work";
    }

    std::string runs_;
    std::set<std::string> tried_ = {"Save", "Open", "exit"};  ///< these by tests of their own
};

TEST_F(CommandTable, EveryToolDoesWhatItSaysOrWaitsForItsTime) {
    ActiveBar& bar = Start().ActiveBar1;
    Try("New", Path("One.poc"));
    EXPECT_EQ(wb.state.CurrentProjectFile, Path("One.poc"));
    EXPECT_TRUE(IsOpen("frmSettings"));
    TryDatabaseTools();
    TryToolsOfLaterVersions(bar);
    Shows("Settings", "frmSettings");
    Shows("Email", "frmViewEmail");
    Shows("Merge", "frmViewMerge");
    for (const char* arrangement :
         {"Cascade", "Tile Horizontally", "Tile Vertically", "Arrange Icons"})
        Try(arrangement);
    NoteRuns();
    wb.forms.Get<frmSettings>().cmdReadEmail.onClick = nullptr;
    Runs("Start", "send;");
    EXPECT_EQ(wb.shell->Panel(), "Receiving comes with a later version.");
    NoteRuns();
    Runs("Send All", "send final;");
    Runs("Start", "send;receive final both;");
    Runs("Send and Receive", "send;receive final both;");
    Shows("Connection Wizard", "frmConnectionWizard");
    Shows("Dial", "frmDial");
    Shows("Delivery Report", "frmDeliveryReport");
    Shows("Welcome", "frmWelcome");
    Shows("Execute Program", "frmTagProgram");
    Shows("Execute CGI", "frmTagCGI");
    Shows("New Project Wizard", "frmProjectWizard");
    Asks("Internal Mail Server", "frmMailServer", "cmdCancel");
    Asks("Options", "frmOptions", "cmdCancel");
    Asks("About", "frmAbout", "cmdOk");
    Asks("Project Dialog", "frmProjectDialog", "cmdCancel");
    Opens("Help", InProgramFolder("help/index.html"));
    Opens("Information (phone and other info)", InProgramFolder("help/index.html"));
    Opens("Error Log File", wb.state.ProjectFolder + "/errorlog.txt");
    Opens("Scheduler", InProgramFolder(".shd"));
    windows.prompts.QueueBox(BoxAnswer::Ok, ProgramVersion);
    Try("Upgrade");
    Try("SaveAs", Path("Two.poc"));
    EXPECT_FALSE(wb.forms.IsFormLoaded("frmViewDatabase"));
    for (const Tool& tool : bar.Tools())
        EXPECT_TRUE(tried_.contains(tool.name) || tool.name.starts_with("RecentFile")) << tool.name;
}

TEST_F(CommandTable, EveryToolHasItsPlaceAndEveryPlaceItsTool) {
    std::set<std::string> placed;
    std::set<std::string> bands;
    for (const Band& band : MainBands()) {
        bands.insert(">" + band.name);
        placed.insert(band.entries.begin(), band.entries.end());
    }
    std::set<std::string> tools;
    for (const Tool& tool : Start().ActiveBar1.Tools()) {
        EXPECT_TRUE(tools.insert(tool.name).second) << tool.name;
        EXPECT_TRUE(placed.contains(tool.name) || tool.name == "Start") << tool.name;
    }
    for (const std::string& entry : placed)
        EXPECT_TRUE(entry == "-" || bands.contains(entry) || tools.contains(entry)) << entry;
}

TEST_F(CommandTable, MissingFilesAreToldAndUnknownToolsDoNothing) {
    Start();
    DeleteFile(InProgramFolder(".shd"));
    windows.prompts.QueueBox(BoxAnswer::Ok, "Some very important files are corrupted.");
    Command("Scheduler");
    Command("Error Log File");
    EXPECT_TRUE(processes.opened.empty()) << "there is no error log";
    EXPECT_EQ(wb.shell->ExecuteCommand("No such tool", ""), ControlAnswer::NoSuchEntry);
}

}  // namespace
}  // namespace mailvane
