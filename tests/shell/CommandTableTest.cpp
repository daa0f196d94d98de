#include <functional>
#include <map>
#include <set>

#include "core/Progress.h"
#include "core/ToolTable.h"
#include "core/shell/CommandTable.h"
#include "database/frmViewDatabase.h"
#include "platform/os/Files.h"
#include "shell/ShellBench.h"

namespace mailvane {
namespace {

using test::Shell;

class CommandTable : public Shell {
protected:
    /// What a row of the table says: `carryOut` presses the tool and looks at what came of it.
    struct Row {
        std::string tool;
        std::function<void()> carryOut;
    };

    Row Shows(const std::string& tool, const std::string& form) {
        return {tool, [this, tool, form] {
                    Command(tool);
                    EXPECT_TRUE(IsOpen(form)) << tool;
                }};
    }
    /// `button` closes the modal form again.
    Row Asks(const std::string& tool, const std::string& form, const std::string& button) {
        return {tool, [this, tool, form, button] {
                    PressWhenOpen(form, button);
                    Command(tool);
                    ASSERT_FALSE(opened_.empty()) << tool;
                    EXPECT_EQ(opened_.back(), form) << tool;
                }};
    }
    Row Opens(const std::string& tool, const std::string& document) {
        return {tool, [this, tool, document] {
                    EXPECT_TRUE(WriteWholeFile(document, "text"));
                    Command(tool);
                    EXPECT_EQ(processes.opened.back().first, document) << tool;
                }};
    }
    Row Tells(const std::string& tool, const std::string& part) {
        return {tool, [this, tool, part] {
                    windows.prompts.QueueBox(BoxAnswer::Ok, part);
                    Command(tool);
                }};
    }
    /// The runs that a tool starts, as "send" or "receive" with the flags that are up then.
    Row Runs(const std::string& tool, const std::vector<std::string>& expected) {
        return {tool, [this, tool, expected] {
                    runs_.clear();
                    Command(tool);
                    WaitSeconds(wb, 1);
                    EXPECT_EQ(runs_, expected) << tool;
                    EXPECT_FALSE(wb.state.FinalRunStep || wb.state.SendReceiveActive);
                }};
    }
    Row Arranges(const std::string& tool) {
        return {tool, [this, tool] { Command(tool); }};
    }
    Row PressesOfView(const std::string& tool, Button frmViewDatabase::*button) {
        return {tool, [this, tool, button] {
                    int pressed = 0;
                    (wb.forms.Get<frmViewDatabase>().*button).onClick = [&] { ++pressed; };
                    Command(tool);
                    EXPECT_EQ(pressed, 1) << tool;
                }};
    }
    Row Later(const std::string& tool) {
        return {tool, [this, tool] {
                    EXPECT_EQ(wb.shell->ExecuteCommand(tool, ""), ControlAnswer::Disabled) << tool;
                    const auto& main = static_cast<frmMain&>(wb.shell->MainForm());
                    EXPECT_TRUE(main.ActiveBar1.FindTool(tool)->tip.ends_with(LaterTip)) << tool;
                }};
    }
    Row Projects(const std::string& tool, const std::function<void()>& carryOut) {
        return {tool, carryOut};
    }

    void NoteRuns() {
        auto& settings = wb.forms.Get<frmSettings>();
        const auto note = [this](const std::string& name) {
            return [this, name] {
                runs_.push_back(name + (wb.state.FinalRunStep ? " final" : "") +
                                (wb.state.SendReceiveActive ? " both" : ""));
            };
        };
        settings.cmdSendEmail.onClick = note("send");
        settings.cmdReadEmail.onClick = note("receive");
    }

    void MakeDatabase() {
        const auto made = wb.state.MainWorkspace->CreateDatabase(Path("people.db"));
        ASSERT_TRUE(made.Ok());
        ASSERT_TRUE((*made)->AppendTable(PeopleTable()).Ok());
        (*made)->Close();
        wb.forms.Get<frmSettings>().txtAccessDBPath.SetText(Path("people.db"));
    }

    std::vector<Row> Rows();
    std::vector<std::string> runs_;
};

std::vector<CommandTable::Row> CommandTable::Rows() {
    return {
        Projects("New",
                 [this] {
                     Command("New", Path("One.poc"));
                     EXPECT_EQ(wb.state.CurrentProjectFile, Path("One.poc"));
                     EXPECT_TRUE(IsOpen("frmSettings"));
                     NoteRuns();
                     MakeDatabase();
                 }),
        Projects("Save",
                 [this] {
                     DeleteFile(Path("One.poc"));
                     Command("Save");
                     EXPECT_TRUE(IsFile(Path("One.poc")));
                 }),
        Shows("Settings", "frmSettings"),
        Shows("Database", "frmViewDatabase"),
        Shows("Email", "frmViewEmail"),
        Shows("Merge", "frmViewMerge"),
        Arranges("Cascade"),
        Arranges("Tile Horizontally"),
        Arranges("Tile Vertically"),
        Arranges("Arrange Icons"),
        Runs("Send All", {"send final"}),
        Runs("Start", {"send", "receive final both"}),
        Runs("Send and Receive", {"send", "receive final both"}),
        Shows("Connection Wizard", "frmConnectionWizard"),
        Shows("Dial", "frmDial"),
        Asks("Internal Mail Server", "frmMailServer", "cmdCancel"),
        Shows("Delivery Report", "frmDeliveryReport"),
        Shows("Welcome", "frmWelcome"),
        Shows("Execute Program", "frmTagProgram"),
        Shows("Execute CGI", "frmTagCGI"),
        Shows("New Project Wizard", "frmProjectWizard"),
        Asks("Options", "frmOptions", "cmdCancel"),
        Asks("About", "frmAbout", "cmdOk"),
        Asks("Project Dialog", "frmProjectDialog", "cmdCancel"),
        Asks("ImportData", "frmDataWizard", "cmdCancel"),
        Asks("ExportData", "frmDataWizard", "cmdCancel"),
        Projects("NewDatabase",
                 [this] {
                     windows.prompts.QueueFile(Path("new.db"));
                     PressWhenOpen("frmDataWizard", "cmdCancel");
                     Command("NewDatabase");
                     EXPECT_EQ(opened_.back(), "frmDataWizard");
                 }),
        Opens("Help", InProgramFolder("help/index.html")),
        Opens("Information (phone and other info)", InProgramFolder("help/index.html")),
        Opens("Error Log File", Path("One/errorlog.txt")),
        Opens("Scheduler", InProgramFolder(".shd")),
        Tells("Upgrade", ProgramVersion),
        Later("Receive All"),
        Later("New Message"),
        Later("Message rules"),
        Later("Import"),
        Later("Mailing lists"),
        PressesOfView("Backup table", &frmViewDatabase::cmdBackup),
        PressesOfView("Clone entire table", &frmViewDatabase::cmdCloneTable),
        PressesOfView("Clone selected records", &frmViewDatabase::cmdCloneRecords),
        PressesOfView("Copy selected records to existing table", &frmViewDatabase::cmdCloneRecords),
        PressesOfView("Copy selected records to new table", &frmViewDatabase::cmdCloneRecords),
        PressesOfView("Repair", &frmViewDatabase::cmdRepair),
        PressesOfView("Compact", &frmViewDatabase::cmdCompact),
        Later("Filter through text file"),
        Later("Compare tables"),
        Later("Clean up table"),
        Later("Remove duplicates"),
        Later("Remove duplicate recipients"),
        Later("Remove domains"),
        Projects("SaveAs",
                 [this] {
                     Command("SaveAs", Path("Two.poc"));
                     EXPECT_EQ(wb.state.CurrentProjectFile, Path("Two.poc"));
                     EXPECT_FALSE(wb.forms.IsFormLoaded("frmViewDatabase"));
                 }),
        Projects("Open",
                 [this] {
                     Command("Open", Path("One.poc"));
                     EXPECT_EQ(wb.state.ProjectName, "One");
                 }),
        Projects("RecentFile2",
                 [this] {
                     EXPECT_EQ(wb.shell->ExecuteCommand("RecentFile2", Path("Two.poc")),
                               ControlAnswer::Done);
                     EXPECT_EQ(wb.state.ProjectName, "Two");
                 }),
        Projects("exit",
                 [this] {
                     Command("exit");
                     EXPECT_TRUE(windows.Quitting());
                 }),
    };
}

TEST_F(CommandTable, EveryRowDoesWhatItSaysOrWaitsForItsTime) {
    std::set<std::string> waiting;
    for (const Tool& tool : Start().ActiveBar1.Tools())
        if (!tool.name.starts_with("RecentFile")) waiting.insert(tool.name);
    for (const Row& row : Rows()) {
        SCOPED_TRACE(row.tool);
        row.carryOut();
        waiting.erase(row.tool);
    }
    EXPECT_EQ(waiting, std::set<std::string>()) << "not looked at here";
    EXPECT_EQ(windows.prompts.Failure(), std::nullopt);
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

TEST_F(CommandTable, UnknownToolsDoNothing) {
    Start();
    EXPECT_EQ(wb.shell->ExecuteCommand("No such tool", ""), ControlAnswer::NoSuchEntry);
}

TEST_F(CommandTable, MissingShippedFilesAreTold) {
    Start();
    DeleteFile(InProgramFolder(".shd"));
    windows.prompts.QueueBox(BoxAnswer::Ok, "Some very important files are corrupted.");
    Command("Scheduler");
    Command("Error Log File");
    EXPECT_TRUE(processes.opened.empty()) << "there is no error log";
}

}  // namespace
}  // namespace mailvane
