#include <gtest/gtest.h>

#include <utility>

#include "core/project/Project.h"
#include "core/settings/frmOptions.h"
#include "platform/os/Files.h"
#include "shell/ShellBench.h"
#include "store/MergeMark.h"
#include "store/MessageStore.h"
#include "support/FakeSmtpServer.h"
#include "support/TestBench.h"

namespace mailvane {
namespace {

using test::Shell;

TEST_F(Shell, InterruptedMergeIsToldUntilAPersonHasSeenIt) {
    Start();
    UnfinishedMerge run;
    run.table = "People";
    run.total = 200;
    run.firstRow = 11;
    run.started = clock.Now();
    MessageRecord record;
    SaveMessageRecord(wb, record, "", OutboxFolder, false, 0, "", false);  // from before
    ASSERT_TRUE(MergeMark::Set(*wb.state.MessageStore, run).Ok());
    SaveMessageRecord(wb, record, "", OutboxFolder, false, 0, "", false);
    LeaveProgram();

    EXPECT_EQ(Start().Panel(),
              "The last merge run was interrupted: 1 of 200 messages are in the Outbox.");
    ASSERT_TRUE(wb.state.MessageStore->Execute("DELETE * FROM Outbox").Ok());  // sent meanwhile
    AnswerStartUpDialogs();
    for (const bool told : {true, false}) {
        LeaveProgram();
        PressWhenOpen("frmProjectDialog", "cmdCancel");
        windows.prompts.UseDefaults();
        frmMain& next = Start({}, true);
        ASSERT_EQ(windows.prompts.Shown().size(), 1u) << "the first time only";
        EXPECT_EQ(next.Panel().empty(), !told);
    }
    const std::string& box = windows.prompts.Shown()[0].text;
    EXPECT_NE(box.find("1 of 200 messages"), std::string::npos);
    EXPECT_NE(box.find("\"Start from row #\" 12"), std::string::npos);
}

TEST_F(Shell, NewSaveOpenRoundTrip) {
    frmMain& form = Start();
    Command("New", Path("Summer.2026.poc"));
    EXPECT_EQ(wb.state.ProjectName, "Summer.2026");
    EXPECT_EQ(form.Caption(), "Summer.2026 - Mailvane");
    EXPECT_TRUE(IsFolder(Path("Summer.2026")));
    EXPECT_TRUE(wb.forms.Get<frmSettings>().Visible());
    wb.forms.Get<frmSettings>().txtName.SetText("Žana");
    Command("Save");
    Command("SaveAs", Path("Copy.poc"));
    EXPECT_EQ(wb.state.CurrentProjectFile, Path("Copy.poc"));
    EXPECT_EQ(ReadWholeFile(Path("Copy.poc")), ReadWholeFile(Path("Summer.2026.poc")));
    wb.forms.Get<frmSettings>().txtName.SetText("lost");
    Command("Open", Path("Summer.2026.poc"));
    EXPECT_EQ(wb.forms.Get<frmSettings>().txtName.Text(), "Žana");
    EXPECT_EQ(form.ActiveBar1.FindTool("RecentFile1")->caption, Path("Summer.2026.poc"));
    EXPECT_TRUE(form.ActiveBar1.FindTool("RecentFile2")->visible);
    EXPECT_FALSE(form.ActiveBar1.FindTool("RecentFile3")->visible);
    EXPECT_EQ(wb.shell->ExecuteCommand("RecentFile2", Path("Copy.poc")), ControlAnswer::Done);
    EXPECT_EQ(wb.state.ProjectName, "Copy");
}

TEST_F(Shell, MissingProjectsAndTemplatesAreTold) {
    Start();
    windows.prompts.QueueBox(BoxAnswer::Ok, "File not found.");
    Command("Open", Path("none.poc"));
    EXPECT_TRUE(windows.prompts.ExpectBox(
        "File not found. Please verify the correct file name was given. "));
    DeleteFile(Path("program/prct.mp"));
    windows.prompts.QueueBox(BoxAnswer::Ok, "corrupted");
    Command("New", Path("new.poc"));
    EXPECT_FALSE(IsFile(Path("new.poc")));
    EXPECT_EQ(wb.state.CurrentProjectFile, "");
    Command("Save", Path("named.poc"));
    EXPECT_TRUE(IsFile(Path("named.poc")));
    wb.state.CurrentProjectFile = " ";
    DeleteFile(Path("named.poc"));
    Command("Save");
    EXPECT_FALSE(IsFile(Path("named.poc"))) << "a name of one blank is none";
    wb.state.LoadingProject = true;  // clicks are lost meanwhile
    EXPECT_EQ(wb.shell->ExecuteCommand("Email", ""), ControlAnswer::Done);
    EXPECT_FALSE(IsOpen("frmViewEmail"));
}

TEST_F(Shell, ExitSavesByOptionAndStoresThePlace) {
    frmMain& form = Start();
    Command("New", Path("last.poc"));
    wb.forms.Get<frmSettings>().txtName.SetText("Saved at the end");
    wb.forms.Get<frmOptions>().chkSave.SetChecked(true);
    form.SetRect({300, 450, 9000, 6000});
    Command("exit");
    EXPECT_TRUE(windows.Quitting());
    EXPECT_TRUE(wb.forms.All().empty());
    EXPECT_EQ(Setting("WindowState"), "0");
    EXPECT_EQ(std::stod(Setting("MainTop")), 450);
    wb.state = {};
    frmMain& next = Start(Path("last.poc"));
    EXPECT_EQ(wb.forms.Get<frmSettings>().txtName.Text(), "Saved at the end");
    EXPECT_EQ(next.Rect().width, 9000);
    next.SetRecordPanel("120 records.");
    next.cmdProgress.Press();
    EXPECT_EQ(next.sbStatusBar.Panel(2), "") << "the progress bar covers it";
    next.SetRecordPanel("121 records.");
    next.cmdNoProgress.Press();
    EXPECT_EQ(next.sbStatusBar.Panel(2), "121 records.");
}

TEST_F(Shell, CommandsEndTheSendRunInOrderAndGoOn) {
    test::FakeSmtpServer server;
    Start();
    Command("New", Path("One.poc"));
    windows.prompts.UseDefaults();
    const std::pair<std::string, std::string> commands[] = {
        {"Open", "One"}, {"New", "Two"}, {"SaveAs", "Three"}, {"RecentFile1", "Two"}, {"exit", ""}};
    for (const auto& [command, project] : commands) {
        SCOPED_TRACE(command);
        wb.forms.Get<frmSettings>().txtSMTPServer.SetText("127.0.0.1");
        wb.forms.Get<frmSettings>().txtSMTPPort.SetText(std::to_string(server.Port()));
        ASSERT_TRUE(wb.state.MessageStore->Execute("DELETE * FROM Outbox").Ok());
        MessageRecord record;
        record.From = record.To = "ann@example.com";
        for (int i = 0; i < 20; ++i)
            SaveMessageRecord(wb, record, "", OutboxFolder, false, 0, "", false);
        const std::size_t sent = server.Messages().size() + 4;
        Subscription yields = windows.yielded.Observe([&, name = command, file = project + ".poc"] {
            if (wb.shell->Panel() != "Sending message 4 of 20...") return;
            yields.End();
            windows.prompts.QueueFileFirst(Path(file));
            wb.shell->ExecuteCommand(name, Path(file));
        });
        wb.shell->ExecuteCommand("Send All", "");
        windows.HandleIdle();
        EXPECT_EQ(server.Messages().size(), sent);
        if (windows.Quitting()) break;
        EXPECT_EQ(wb.state.ProjectName, project);
        EXPECT_EQ(windows.prompts.Shown().back().text,
                  "Sending messages was ended early: 4 of 20 messages are sent, 16 are left in the "
                  "Outbox.");
        const auto outbox = wb.state.MessageStore->OpenRecordset(OutboxFolder);
        EXPECT_EQ(outbox.ValueOr(nullptr)->RecordCount(), 16);
    }
    EXPECT_TRUE(windows.Quitting());
}

TEST_F(Shell, TipsCoverThePanelAndLeaveNothingBehind) {
    frmMain& form = Start();
    ActiveBar& bar = form.ActiveBar1;
    form.SetPanel("Sending 1 of 2");
    for (const char* tool : {"New", "Receive All"}) {
        bar.onHover(bar.FindTool(tool));
        EXPECT_EQ(form.sbStatusBar.Panel(1), bar.FindTool(tool)->ShownTip());
    }
    EXPECT_EQ(form.Panel(), "Sending 1 of 2");
    form.SetPanel("Sending 2 of 2");
    EXPECT_EQ(form.sbStatusBar.Panel(1), "Sending 2 of 2") << "a run's text is seen at once";
    bar.onHover(bar.FindTool("Open"));
    bar.onHover(nullptr);
    EXPECT_EQ(form.sbStatusBar.Panel(1), "Sending 2 of 2");
}

}  // namespace
}  // namespace mailvane
