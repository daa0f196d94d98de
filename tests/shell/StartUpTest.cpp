#include <filesystem>

#include "core/records/RecordFile.h"
#include "core/settings/frmOptions.h"
#include "platform/os/Files.h"
#include "shell/AssignedTask.h"
#include "shell/ShellBench.h"
#include "store/MessageStore.h"

namespace mailvane {
namespace {

using test::Shell;

class StartUp : public Shell {
protected:
    /// A project file with that sender's name in it.
    void MakeProject(const std::string& file, const std::string& sender) {
        Start();
        Command("New", file);
        wb.forms.Get<frmSettings>().txtName.SetText(sender);
        Command("Save");
        LeaveProgram();
    }
    std::string Sender() { return wb.forms.Get<frmSettings>().txtName.Text(); }
};

TEST_F(StartUp, FirstStartAsksInOrder) {
    PressWhenOpen("frmConnectionWizard", "cmdCancel");
    PressWhenOpen("frmProjectDialog", "cmdCancel");
    Start("\\SHC no such task", true);
    EXPECT_FALSE(wb.state.UnattendedRun);
    EXPECT_EQ(opened_, (std::vector<std::string>{"frmConnectionWizard", "frmProjectDialog"}));
    EXPECT_TRUE(IsOpen("frmWelcome"));
    EXPECT_TRUE(IsOpen("frmMain"));
    EXPECT_FALSE(wb.forms.IsFormLoaded("frmSplash"));
    EXPECT_EQ(GetUserSetting(wb, "Proxy", "Status"), "yes")
        << "a cancelled wizard is not offered again";
    EXPECT_FALSE(wb.state.ProjectOpen());
}

TEST_F(StartUp, ScriptsStartWithoutQuestionsAndFindAllInPlace) {
    Start();
    for (const char* form : {"frmConnectionWizard", "frmProjectDialog", "frmWelcome", "frmSplash"})
        EXPECT_FALSE(wb.forms.IsFormLoaded(form)) << form;
    EXPECT_TRUE(IsOpen("frmMain"));
    for (const char* form : {"frmSettings", "frmViewEmail", "frmOptions"})
        EXPECT_TRUE(wb.forms.IsFormLoaded(form) && !IsOpen(form)) << form;
    EXPECT_TRUE(IsFolder(InProgramFolder("Projects")));
    for (const char* file : {"messages.dat", "prct.mp"})
        EXPECT_TRUE(IsFile(InProgramFolder(file))) << file;
}

TEST_F(StartUp, CommandLineNamesTheProject) {
    MakeProject(Path("first.poc"), "From the file");
    Start("\"" + Path("first.poc") + "\"");
    EXPECT_EQ(Sender(), "From the file");
    LeaveProgram();
    Start(Path("missing.poc"));
    EXPECT_EQ(wb.state.CurrentProjectFile, "");
}

TEST_F(StartUp, LastProjectByOption) {
    MakeProject(Path("last.poc"), "Last");
    AnswerStartUpDialogs();
    Start({}, true);
    EXPECT_EQ(Sender(), "Last");
    EXPECT_TRUE(opened_.empty());
    LeaveProgram();
    SaveUserSetting(wb, "Settings", "Load", "2");
    PressWhenOpen("frmProjectDialog", "cmdOpen");
    Start({}, true);
    EXPECT_EQ(Sender(), "Last") << "the dialog offers it first";
}

TEST_F(StartUp, ProjectDialogMakesAProjectOrLeavesItToTheWizard) {
    AnswerStartUpDialogs();
    windows.prompts.QueueFile(Path("fresh.poc"));
    PressWhenOpen("frmProjectDialog", "cmdNew");
    Start({}, true);
    EXPECT_EQ(wb.state.CurrentProjectFile, Path("fresh.poc"));
    EXPECT_TRUE(IsFile(Path("fresh.poc")));
    EXPECT_EQ(wb.forms.Get<frmSettings>().txtSMTPPort.Text(), "25") << "from the template";
    LeaveProgram();
    SaveUserSetting(wb, "Settings", "Load", "0");
    SaveUserSetting(wb, "Settings", "Welcome", "0");
    PressWhenOpen("frmProjectDialog", "cmdWizard");
    Start({}, true);
    EXPECT_TRUE(IsOpen("frmProjectWizard"));
    EXPECT_FALSE(IsOpen("frmWelcome")) << "that comes after the wizard";
}

TEST_F(StartUp, LargeStoreWarning) {
    AnswerStartUpDialogs();
    Start();
    LeaveProgram();
    const std::string store = MessageStorePath(wb);
    for (const bool large : {false, true}) {
        // Zeros behind the last page are not the store's; SQLite passes over them.
        std::filesystem::resize_file(store, large ? 500'000'001 : 500'000'000);
        PressWhenOpen("frmProjectDialog", "cmdCancel");
        if (large) PressWhenOpen("frmMSGLargeEmailDB", "SSCommand1");
        Start({}, true);
        EXPECT_EQ(opened_.back() == "frmMSGLargeEmailDB", large);
        LeaveProgram();
        std::filesystem::resize_file(store, 500'000'000);
    }
}

TEST_F(StartUp, TaskOpensItsProjectWithoutQuestions) {
    MakeProject(Path("task.poc"), "Task");
    const std::string file = InProgramFolder("Scheduled Events/every day.shd");
    ASSERT_TRUE(MakeFolders(InProgramFolder("Scheduled Events")));
    AssignedTask task;
    task.KeptNumber = 7;
    task.Project = Path("task.poc");
    task.KeptTexts[1] = "kept";
    task.Minimised = true;
    ASSERT_TRUE(SaveRecordFile(file, task));
    const std::string now = clock.Now().Stamp();
    const frmMain& form = Start("\"\\SHC every day\"", true);
    EXPECT_TRUE(wb.state.UnattendedRun);
    EXPECT_EQ(Sender(), "Task");
    EXPECT_EQ(form.State(), WindowState::Minimized);
    AssignedTask after;
    ASSERT_TRUE(LoadRecordFile(file, after));
    EXPECT_EQ(after.KeptNumber, 7);
    EXPECT_EQ(after.KeptTexts[1], "kept");
    EXPECT_EQ(after.LastRun, now);
    EXPECT_EQ(after.LastRun.substr(0, after.LastDate.size()), after.LastDate);
    LeaveProgram();
    after.CloseWhenDone = true;
    ASSERT_TRUE(SaveRecordFile(file, after));
    Start("\\SHC every day", true);
    EXPECT_TRUE(windows.Quitting());
    EXPECT_TRUE(wb.forms.All().empty());
}

class ExitUpkeep : public StartUp, public testing::WithParamInterface<std::pair<bool, bool>> {};
INSTANTIATE_TEST_SUITE_P(OfMessagesAndDatabase, ExitUpkeep,
                         testing::Values(std::pair(false, true), std::pair(true, false)));

TEST_P(ExitUpkeep, CompactsByOption) {
    const auto& [messages, database] = GetParam();
    Start();
    const std::string filler(200'000, 'x');
    ASSERT_TRUE(
        wb.state.MessageStore->Execute("INSERT INTO Inbox (Body) VALUES ('" + filler + "')").Ok());
    ASSERT_TRUE(wb.state.MessageStore->Execute("DELETE * FROM Inbox").Ok());
    wb.forms.Get<frmSettings>().txtAccessDBPath.SetText(MakePeople(filler));
    Command("Database");
    WriteWholeFile(InProgramFolder("messages.dat.bak"), "left by a crash");
    auto& options = wb.forms.Get<frmOptions>();
    options.chkCompactMessages.SetChecked(messages);
    options.chkCompactDatabase.SetChecked(database);
    Command("exit");
    EXPECT_TRUE(windows.Quitting());
    constexpr std::int64_t Dense = 150'000;
    EXPECT_EQ(FileSize(MessageStorePath(wb)) < Dense, messages);
    EXPECT_EQ(FileSize(Path("people.db")) < Dense, database);
    for (const std::string& file : {MessageStorePath(wb), Path("people.db")})
        EXPECT_FALSE(IsFile(file + ".bak")) << file;
    wb.state = {};
    Start();
    EXPECT_TRUE(wb.state.MessageStore->TableExists("Inbox"));
}

TEST_F(StartUp, CompactingOnCommandLeavesTheStoreInUse) {
    frmMain& form = Start();
    form.cmdCompactMessages.Press();
    ASSERT_TRUE(wb.state.MessageStore && wb.state.MessageStore->IsOpen());
    MessageRecord record;
    record.Subject = "still works";
    SaveMessageRecord(wb, record, "", InboxFolder, false, 0, "", false);
    const auto inbox = wb.state.MessageStore->OpenRecordset(InboxFolder);
    ASSERT_TRUE(inbox.Ok());
    EXPECT_EQ((*inbox)->RecordCount(), 1);
    form.cmdCompactDatabase.Press();
    EXPECT_TRUE(windows.prompts.Shown().empty()) << "no database, nothing to do or to say";
}

}  // namespace
}  // namespace mailvane
