#include <gmock/gmock.h>

#include <atomic>
#include <optional>

#include "core/run/frmStatus.h"
#include "send/SendBench.h"
#include "support/FullDisk.h"

namespace mailvane {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

struct SendRuns : testing::Test, test::SendBench {
    Database& Store() { return *wb.state.MessageStore; }
    /// Nothing of a run is left behind.
    void ExpectOver() {
        EXPECT_TRUE(SentLedger::Entries(Store())->empty());
        EXPECT_FALSE(wb.forms.IsFormLoaded("frmStatusEmail"));
        EXPECT_FALSE(wb.state.RunBusy || wb.state.CancelRequested);
        EXPECT_EQ(windows.Pointer(), MousePointer::Normal);
    }
};

struct WithCopies : SendRuns, testing::WithParamInterface<bool> {
    WithCopies() { settings.chkSaveSentMessages.SetChecked(GetParam()); }
};
INSTANTIATE_TEST_SUITE_P(SendRuns, WithCopies, testing::Bool());

TEST_P(WithCopies, EveryMessageGoesOutInTableOrder) {
    const std::string all = QueueMany(3);
    Send();
    EXPECT_EQ(Delivered(), all);
    EXPECT_EQ(Recipients("Outbox"), "");
    EXPECT_EQ(Recipients("Sent Items"), GetParam() ? all : "");
    for (const MessageRecord& copy : Rows("Sent Items")) {
        EXPECT_EQ(copy.Status, "Read");
        EXPECT_EQ(copy.Date.ShortDate(), "3/15/2024") << "the time of the attempt";
    }
    EXPECT_EQ(shell.panel, "Your e-mail messages are successfully sent!");
    EXPECT_THAT(shell.panels, testing::Contains("Sending message 2 of 3..."));
    EXPECT_EQ(server.Connections(), 1);
    EXPECT_EQ(FirstBox() + promptText, "");
    ExpectOver();
}

TEST_F(SendRuns, OneRefusedMessageStaysAndIsReported) {
    Refuse("p2@", "550 No such user");
    QueueMany(3);
    WriteFileText(wb.state.ProjectFolder + "/errorlog.txt", "an old error");
    AnswerErrorPrompt(true);
    Send();
    EXPECT_EQ(Delivered(), "p1@example.com p3@example.com ");
    ASSERT_EQ(Recipients("Outbox"), "p2@example.com ");
    EXPECT_EQ(Rows("Outbox")[0].Status, "error");
    EXPECT_EQ(Rows("Outbox")[0].Retries, 1);
    EXPECT_EQ(shell.panel, "Some errors occurred while processing the requested tasks.");
    EXPECT_THAT(ErrorLog(), Not(HasSubstr("an old error")));
    EXPECT_THAT(ErrorLog(),
                HasSubstr("No such user\r\nFrom: Ann <ann@example.com>\r\nTo: p2@example.com\r\n"
                          "Subject: Hello\r\nDate: 3/15/2024 10:"));
    EXPECT_THAT(ErrorLog(), HasSubstr("No such user\r\nTo: p2@example.com\r\nSubject: Hello\r\n"
                                      "Date: 3/15/2024\r\n\r\n"));
    ASSERT_EQ(processes.opened.size(), 1u);
    EXPECT_EQ(processes.opened[0].first, wb.state.ProjectFolder + "/errorlog.txt");

    server.answerToRecipient = nullptr;
    Send();
    EXPECT_EQ(Recipients("Outbox"), "") << "tried again by the next run";
}

TEST_F(SendRuns, FailuresAreCountedAndUndeliverablesDropped) {
    settings.chkDeleteUndeliverables.SetChecked(true);
    settings.txtDeleteUndeliverables.SetText("4");
    for (const std::string failures : {"Null", "2", "3"}) {
        Queue("failures-" + failures);
        const std::string set = "UPDATE Outbox SET Retries = " + failures;
        ASSERT_TRUE(Store().Execute(set + " WHERE Retries = 0").Ok());
    }
    Send();
    ASSERT_EQ(Recipients("Outbox"), "failures-Null failures-2 ");
    EXPECT_EQ(Rows("Outbox")[0].Retries, 1);
    EXPECT_EQ(Rows("Outbox")[1].Retries, 3);
    EXPECT_THAT(ErrorLog(), StartsWith("Error: Invalid e-mail address.\r\nTo: failures-Null\r\n"
                                       "Subject: Hello\r\nDate: 3/15/2024\r\n\r\nError: "));
    EXPECT_EQ(server.Connections(), 0);
    EXPECT_TRUE(processes.opened.empty());
}

TEST_F(SendRuns, UnattendedRunShowsAndWritesNothing) {
    wb.state.UnattendedRun = true;
    Queue("nobody");
    Send();
    settings.txtSMTPServer.SetText("");
    Send();
    EXPECT_EQ(ErrorLog() + FirstBox() + promptText, "");
    EXPECT_FALSE(settings.Visible());
}

TEST_F(SendRuns, ErrorPromptClosesForAnAbsentUserAndStaysAwayWhenTold) {
    LeaveErrorPromptOpen();
    Queue("nobody");
    Send();
    EXPECT_FALSE(wb.forms.IsFormLoaded("frmMSGSndRecvError")) << "closed by its timer";
    EXPECT_FALSE(settings.Timer1.Running());
    EXPECT_TRUE(processes.opened.empty());

    SaveUserSetting(wb, "Messages", "SndRecvError", "1");
    const auto before = clock.Monotonic();
    Send();
    EXPECT_LT((clock.Monotonic() - before).count(), 10000);
    EXPECT_NE(ErrorLog(), "");
}

// --- cancelling -------------------------------------------------------------------------------

TEST_F(SendRuns, CancelBetweenMessagesKeepsWhatWasSentOutOfTheOutbox) {
    settings.chkSaveSentMessages.SetChecked(true);
    const std::string all = QueueMany(5);
    PressOnce(
        [&] {
            const auto& status = wb.forms.Get<frmStatusEmail>();
            return status.Progress1.Value() == 2 && server.Messages().size() == 2;
        },
        [](frmStatusEmail& status) { status.cmdCancel.Press(); });
    Send();
    // The third message is stopped before, on or after its way: what counts is that each is in
    // exactly one place.
    EXPECT_EQ(Recipients("Sent Items"), Delivered());
    EXPECT_EQ(Recipients("Sent Items") + Recipients("Outbox"), all);
    EXPECT_EQ(shell.panel, "Canceled!");
    ExpectOver();
}

TEST_F(SendRuns, ProjectSwitchInTheMiddleEndsTheRunSafely) {
    const std::string firstProject = wb.state.ProjectFolder;
    std::atomic<bool> reached{false};
    server.answer = [&](const std::string& step, const auto&) {
        if (!step.starts_with("RCPT TO:<p2")) return "";
        reached = true;
        return "?";
    };
    const auto switchProject = [&](frmStatusEmail&) {
        EXPECT_FALSE(view.Unload()) << "the store is in use";
        EXPECT_EQ(settings.txtSMTPServer.SetByUser("other"), ControlAnswer::Disabled);
        wb.runs.EndThen(Holds::Everything, [&] {
            wb.forms.UnloadAllExcept({"frmMain"});
            UseProject("Other");
            wb.forms.Get<frmSettings>();
            wb.forms.Get<frmViewEmail>();
        });
        clock.Advance(std::chrono::seconds(5));  // the server stays silent for them
    };
    Prompts().QueueBox(BoxAnswer::Ok,
                       "Sending messages was ended early: 1 of 3 messages are sent, 2 are left in "
                       "the Outbox.");
    PressOnce([&] { return reached.load(); }, switchProject);
    QueueMany(3);
    Send();
    Settle();
    EXPECT_EQ(Prompts().Shown().size(), 1u);
    EXPECT_EQ(wb.state.ProjectName, "Other");
    EXPECT_EQ(Delivered(), "p1@example.com ");
    EXPECT_EQ(Recipients("Outbox"), "p2@example.com p3@example.com ");
    for (const char* file : {"/errorlog.txt", "/delivery.txt"}) {
        EXPECT_EQ(ReadFileText(wb.state.ProjectFolder + file), "") << "the other project has none";
        EXPECT_NE(ReadFileText(firstProject + file), "");
    }
    EXPECT_FALSE(wb.state.RunBusy);
}

TEST_F(SendRuns, TheListShowsWhatBecameOfEachMessageAndASecondClickTheRun) {
    Refuse("p1@", "550 No such user");
    QueueMany(4);
    const auto read = [&](frmStatusEmail& status) {
        const std::string from = "Ann <ann@example.com>";
        const std::vector<std::vector<std::string>> rows = {
            {"Hello", "p1@example.com", from, "error"},
            {"Hello", "p2@example.com", from, "success"},
            {"Hello", "p3@example.com", from, "success"},
            {"Hello", "p4@example.com", from, "add"}};
        EXPECT_EQ(status.lMessages.Rows()->Read(0, 4), rows);
        EXPECT_EQ(status.lMessages.CurrentRow(), 2u);
        Send();
        EXPECT_EQ(windows.FocusedControl(), &status.cmdCancel);
    };
    PressOnce([&] { return wb.forms.Get<frmStatusEmail>().Progress1.Value() == 3; }, read);
    Send();
    EXPECT_TRUE(pressed);
    EXPECT_EQ(Delivered(), "p2@example.com p3@example.com p4@example.com ");
}

TEST_F(SendRuns, TheLineIsHungUpAfterTheFinalStepAlone) {
    for (const bool final : {false, true}) {
        QueueMany(1);
        wb.state.FinalRunStep = final;
        shell.panels.clear();
        PressOnce([] { return true; }, [](auto& status) { status.chkHang.SetByUser("1"); });
        Send();
        EXPECT_EQ(std::count(shell.panels.begin(), shell.panels.end(),
                             "Disconnecting from the Internet..."),
                  final ? 1 : 0);
    }
}

// --- interrupted runs -------------------------------------------------------------------------

TEST_P(WithCopies, FinishWhatADeadRunLeftBehind) {
    QueueMany(3);
    // Row 2 was accepted when the program died; row 9 went away with its entry left.
    RecordAccepted(2);
    RecordAccepted(9);
    Send();
    EXPECT_EQ(Delivered(), "p1@example.com p3@example.com ");
    EXPECT_EQ(Recipients("Sent Items"),
              GetParam() ? "p2@example.com p1@example.com p3@example.com " : "");
    EXPECT_EQ(Recipients("Outbox"), "");
    ExpectOver();
}

TEST_F(SendRuns, NothingIsSentWhenAllWasAcceptedOrTheOutboxIsEmpty) {
    QueueMany(1);
    RecordAccepted(1);
    for (int run = 0; run < 2; ++run) {
        shell.panel = "";
        Send();
        EXPECT_EQ(server.Connections(), 0);
        EXPECT_EQ(shell.panel, "Your Outbox folder is empty.");
        EXPECT_EQ(Recipients("Outbox"), "");
        ExpectOver();
    }
}

TEST_F(SendRuns, MessageWhoseCopyCannotBeKeptIsNeitherLostNorSentTwice) {
    settings.chkSaveSentMessages.SetChecked(true);
    const std::string all = QueueMany(2);
    ASSERT_TRUE(Store().RenameTable("Sent Items", "Elsewhere").Ok());
    for (int run = 0; run < 2; ++run) {
        Send();
        EXPECT_EQ(Delivered(), all) << run;
        EXPECT_EQ(Recipients("Outbox"), all) << run;
        EXPECT_NE(ErrorLog(), "");
    }
    ASSERT_TRUE(Store().RenameTable("Elsewhere", "Sent Items").Ok());
    Send();
    EXPECT_EQ(Recipients("Sent Items"), all);
    EXPECT_EQ(Recipients("Outbox"), "");
    EXPECT_EQ(Delivered(), all);
}

TEST_F(SendRuns, StoreThatTakesNothingMoreStopsTheRunAndNothingIsSentTwice) {
    std::optional<test::FullDisk> full;
    server.answerToRecipient = [&](const std::string& address) {
        if (address == "p3@example.com" && !full) full.emplace();
        return std::string();
    };
    const std::string all = QueueMany(5);
    Prompts().UseDefaults();
    Send();
    EXPECT_EQ(Delivered(), "p1@example.com p2@example.com p3@example.com ");
    EXPECT_THAT(FirstBox(), StartsWith("The message store cannot be written: "));
    EXPECT_THAT(FirstBox(), HasSubstr("accepted the last message"));
    EXPECT_FALSE(wb.state.RunBusy || wb.forms.IsFormLoaded("frmStatusEmail"));

    full.reset();
    Send();
    EXPECT_EQ(Delivered(), all);
    EXPECT_EQ(Recipients("Outbox"), "");
    ExpectOver();
}

// --- before the run ---------------------------------------------------------------------------

TEST_F(SendRuns, SettingsAreCheckedFirst) {
    const char* const cases[][3] = {{" a.b ", "25", "Please supply a valid SMTP server."},
                                    {"mail.example.com", "x", "Please supply a valid SMTP port."},
                                    {"", "x", "Please supply a valid SMTP server."}};
    Queue("a@example.com");
    for (const auto& [host, port, box] : cases) {
        settings.Hide();
        settings.Tab1.SetCurrent(frmSettings::YouPage);
        settings.txtSMTPServer.SetText(host);
        settings.txtSMTPPort.SetText(port);
        Prompts().QueueBox(BoxAnswer::Ok);
        Send();
        EXPECT_TRUE(Prompts().ExpectBox(box)) << host << ":" << port;
        EXPECT_TRUE(settings.Visible());
        EXPECT_EQ(settings.Tab1.Current(), frmSettings::SendingPage);
        EXPECT_FALSE(wb.state.RunBusy);
    }
}

TEST_F(SendRuns, ModemWithoutALineWarnsOnceACommand) {
    SaveUserSetting(wb, "Proxy", "Connection", "Modem");
    Queue("a@example.com");
    const auto closing = windows.idle.Observe([&] {
        if (Form* dial = wb.forms.FindByName("frmDial")) dial->OnCloseBox();
    });
    Prompts().QueueBox(BoxAnswer::Ok, "You are not connected to the Internet.");
    Send();
    EXPECT_EQ(Prompts().Shown().size(), 1u);
    EXPECT_EQ(server.Connections(), 0);
    Send();
    EXPECT_EQ(Prompts().Shown().size(), 1u) << "tried without asking again";
    EXPECT_EQ(Delivered(), "a@example.com ");
    Queue("b@example.com");
    wb.state.FinalRunStep = true;
    Send();
    Prompts().QueueBox(BoxAnswer::Ok, "You are not connected to the Internet.");
    Send();
    EXPECT_EQ(Prompts().Shown().size(), 2u) << "another command";
}

TEST_F(SendRuns, PreparingDialogAppearsAboveTwentyMessages) {
    for (const int count : {20, 21}) {
        SCOPED_TRACE(count);
        QueueMany(count);
        long steps = 0;
        const auto yield = windows.yielded.Observe([&] {
            if (auto* preparing = wb.forms.Find<frmMSGPreparing>())
                steps = std::max(steps, preparing->Progress1.Value());
        });
        Send();
        EXPECT_EQ(steps, count > 20 ? count : 0);
        EXPECT_FALSE(wb.forms.IsFormLoaded("frmMSGPreparing"));
    }
}

TEST_F(SendRuns, ManySentItemsRaiseTheQuestion) {
    const DaoError filled = Store().Transaction([&]() -> DaoError {
        for (int i = 0; i < 40000; ++i)
            Queue({}, "Sent Items");
        return {};
    });
    ASSERT_TRUE(filled.Ok());
    Queue("a@example.com");
    Send();
    EXPECT_EQ(FirstBox(), "") << "40000 exactly";
    Queue({}, "Sent Items");
    Queue("b@example.com");
    Prompts().QueueBox(BoxAnswer::Yes);
    Send();
    ASSERT_EQ(Prompts().Shown().size(), 1u);
    EXPECT_EQ(Rows("Sent Items").size(), 0u);
}

// --- the status form --------------------------------------------------------------------------

struct StatusForm : testing::Test, test::TestBench {
    frmStatusEmail& status = wb.forms.Get<frmStatusEmail>();
};

TEST_F(StatusForm, ConversationIsCappedAndEndsOnItsLastLine) {
    for (int i = 1; i <= 70000; ++i)
        status.AddProtocolLine("line " + std::to_string(i));
    status.ShowProtocol();
    EXPECT_EQ(status.List1.Count(), 30001);
    EXPECT_EQ(status.List1.Text(), "line 70000");
    EXPECT_EQ(status.List1.FirstItem(), "line 40000");
}

TEST_F(StatusForm, SilenceIsMeasuredOverMidnight) {
    auto& settings = wb.forms.Get<frmSettings>();
    settings.chkSndTimeOut.SetChecked(true);
    settings.Slider1.SetValue(3);
    int givenUp = 0;
    status.onGiveUpMessage = [&] { ++givenUp; };
    clock.Advance(std::chrono::hours(13) + std::chrono::minutes(29));  // 23:59
    wb.state.LastSmtpActivity = SecondsSinceMidnight(clock.Now());
    for (const int minutes : {2, 1}) {
        EXPECT_EQ(givenUp, 0);
        clock.Advance(std::chrono::minutes(minutes));
        windows.PumpEvents();
    }
    EXPECT_EQ(givenUp, 1);
}

}  // namespace
}  // namespace mailvane
