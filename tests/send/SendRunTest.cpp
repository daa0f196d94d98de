#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <optional>

#include "core/frmStatus.h"
#include "send/SendBench.h"
#include "support/FullDisk.h"

namespace mailvane {
namespace {

using test::SendBench;

constexpr const char* AllSent = "Your e-mail messages are successfully sent!";
constexpr const char* SomeErrors = "Some errors occurred while processing the requested tasks.";

bool WasShown(const SendBench& bench, const std::string& panel) {
    const auto& panels = bench.shell.panels;
    return std::find(panels.begin(), panels.end(), panel) != panels.end();
}

TEST(SendRun, SendsEveryMessageInTableOrderAndKeepsCopiesWhenTold) {
    for (const bool copies : {false, true}) {
        SCOPED_TRACE(copies);
        SendBench bench;
        bench.settings.chkSaveSentMessages.SetChecked(copies);
        bench.QueueMany(3);
        bench.Send();
        EXPECT_EQ(bench.Delivered(), "p1@example.com p2@example.com p3@example.com ");
        EXPECT_EQ(bench.Recipients("Outbox"), "");
        EXPECT_EQ(bench.Recipients("Sent Items"),
                  copies ? "p1@example.com p2@example.com p3@example.com " : "");
        for (const MessageRecord& copy : bench.Rows("Sent Items")) {
            EXPECT_EQ(copy.Status, "Read");
            EXPECT_EQ(copy.Date.ShortDate(), "3/15/2024") << "the time of the attempt";
        }
        EXPECT_TRUE(SentLedger::Entries(*bench.wb.state.MessageStore)->empty());
        EXPECT_EQ(bench.shell.panel, AllSent);
        EXPECT_TRUE(WasShown(bench, "Sending message 2 of 3..."));
        EXPECT_FALSE(bench.wb.forms.IsFormLoaded("frmStatusEmail"));
        EXPECT_FALSE(bench.wb.state.RunBusy);
        EXPECT_EQ(bench.server.Connections(), 1);
        EXPECT_EQ(bench.windows.Pointer(), MousePointer::Normal);
        EXPECT_TRUE(bench.Prompts().Shown().empty());
    }
}

TEST(SendRun, EmptyOutboxOnlySaysSo) {
    SendBench bench;
    bench.Send();
    EXPECT_EQ(bench.shell.panel, "Your Outbox folder is empty.");
    EXPECT_EQ(bench.server.Connections(), 0);
    EXPECT_FALSE(bench.wb.forms.IsFormLoaded("frmStatusEmail"));
    EXPECT_FALSE(bench.wb.state.RunBusy);
}

TEST(SendRun, OneRefusedMessageStaysAndIsReported) {
    SendBench bench;
    bench.server.answerToRecipient = [](const std::string& address) {
        return address == "p2@example.com" ? "550 No such user" : "";
    };
    bench.QueueMany(3);
    WriteFileText(bench.wb.state.ProjectFolder + "/errorlog.txt", "an old error");
    bench.AnswerErrorPrompt(true);
    bench.Send();
    EXPECT_EQ(bench.Delivered(), "p1@example.com p3@example.com ");
    ASSERT_EQ(bench.Recipients("Outbox"), "p2@example.com ");
    EXPECT_EQ(bench.Rows("Outbox")[0].Status, "error");
    EXPECT_EQ(bench.Rows("Outbox")[0].Retries, 1);
    EXPECT_EQ(bench.shell.panel, SomeErrors);
    const std::string log = bench.ErrorLog();
    EXPECT_EQ(log.find("an old error"), std::string::npos);
    EXPECT_NE(log.find("No such user\r\nFrom: Ann <ann@example.com>\r\nTo: p2@example.com\r\n"
                       "Subject: Hello\r\nDate: 3/15/2024 10:"),
              std::string::npos);
    EXPECT_NE(log.find("No such user\r\nTo: p2@example.com\r\nSubject: Hello\r\n"
                       "Date: 3/15/2024\r\n\r\n"),
              std::string::npos);
    ASSERT_EQ(bench.processes.opened.size(), 1u);
    EXPECT_EQ(bench.processes.opened[0].first, bench.wb.state.ProjectFolder + "/errorlog.txt");

    bench.server.answerToRecipient = nullptr;
    bench.Send();
    EXPECT_EQ(bench.Recipients("Outbox"), "") << "tried again by the next run";
}

TEST(SendRun, SomeRecipientsRefusedCountsAsSentAndNamesThem) {
    SendBench bench;
    bench.server.answerToRecipient = [](const std::string& address) {
        return address == "b@example.com" ? "550 Gone" : "";
    };
    bench.Queue("a@example.com,b@example.com");
    bench.AnswerErrorPrompt(false);
    bench.Send();
    EXPECT_EQ(bench.Delivered(), "a@example.com ");
    EXPECT_EQ(bench.Recipients("Outbox"), "");
    EXPECT_EQ(bench.ErrorLog(),
              "Error: 550 Gone\r\nTo: b@example.com\r\nSubject: Hello\r\nDate: 3/15/2024\r\n\r\n");
    EXPECT_TRUE(bench.processes.opened.empty());
}

TEST(SendRun, BadAddressFailsWithoutTheServer) {
    SendBench bench;
    bench.Queue("nobody");
    bench.AnswerErrorPrompt(false);
    bench.Send();
    EXPECT_EQ(bench.server.Connections(), 0);
    EXPECT_EQ(bench.ErrorLog(),
              "Error: Invalid e-mail address.\r\nTo: nobody\r\nSubject: Hello\r\n"
              "Date: 3/15/2024\r\n\r\n");
    EXPECT_EQ(bench.Rows("Outbox")[0].Retries, 1);
}

TEST(SendRun, LostAnswerKeepsTheMessageAndSaysThatItMayHaveBeenAccepted) {
    SendBench bench;
    bench.server.hangUpAtMessage = 1;
    bench.Queue("a@example.com");
    bench.AnswerErrorPrompt(false);
    bench.Send();
    EXPECT_EQ(bench.Recipients("Outbox"), "a@example.com ");
    EXPECT_NE(bench.ErrorLog().find("may have been accepted"), std::string::npos);
    EXPECT_NE(bench.promptText.find("1 message may have been accepted all the same"),
              std::string::npos);
}

TEST(SendRun, UndeliverablesAreDroppedAfterSoManyFailures) {
    SendBench bench;
    bench.settings.chkDeleteUndeliverables.SetChecked(true);
    bench.settings.txtDeleteUndeliverables.SetText("4");
    bench.wb.state.UnattendedRun = true;
    bench.Queue("two-failures");
    bench.Queue("three-failures");
    Database& store = *bench.wb.state.MessageStore;
    ASSERT_TRUE(store.Execute("UPDATE Outbox SET Retries = 2 WHERE [To] = 'two-failures'").Ok());
    ASSERT_TRUE(store.Execute("UPDATE Outbox SET Retries = 3 WHERE [To] = 'three-failures'").Ok());
    bench.Send();
    ASSERT_EQ(bench.Recipients("Outbox"), "two-failures ");
    EXPECT_EQ(bench.Rows("Outbox")[0].Retries, 3);
}

TEST(SendRun, MissingNumberOfAttemptsCountsFromZero) {
    SendBench bench;
    bench.wb.state.UnattendedRun = true;
    bench.Queue("nobody");
    ASSERT_TRUE(bench.wb.state.MessageStore->Execute("UPDATE Outbox SET Retries = Null").Ok());
    bench.Send();
    EXPECT_EQ(bench.Rows("Outbox")[0].Retries, 1);
}

TEST(SendRun, UnattendedRunShowsAndWritesNothing) {
    SendBench bench;
    bench.wb.state.UnattendedRun = true;
    bench.Queue("nobody");
    bench.Send();
    EXPECT_EQ(bench.ErrorLog(), "");
    EXPECT_TRUE(bench.Prompts().Shown().empty());
    EXPECT_FALSE(bench.wb.forms.IsFormLoaded("frmMSGSndRecvError"));

    bench.settings.txtSMTPServer.SetText("");
    bench.Send();
    EXPECT_TRUE(bench.Prompts().Shown().empty());
    EXPECT_FALSE(bench.settings.Visible());
}

TEST(SendRun, ErrorPromptClosesForAnAbsentUserAndStaysAwayWhenTold) {
    SendBench bench;
    bench.Queue("nobody");
    bench.Send();
    EXPECT_FALSE(bench.wb.forms.IsFormLoaded("frmMSGSndRecvError")) << "closed by its timer";
    EXPECT_FALSE(bench.settings.Timer1.Running());
    EXPECT_TRUE(bench.processes.opened.empty());

    SaveUserSetting(bench.wb, "Messages", "SndRecvError", "1");
    const auto before = bench.clock.Monotonic();
    bench.Send();
    EXPECT_LT((bench.clock.Monotonic() - before).count(), 10000);
    EXPECT_NE(bench.ErrorLog(), "");
}

// --- cancelling -------------------------------------------------------------------------------

TEST(SendRun, CancelBetweenMessagesKeepsWhatWasSentOutOfTheOutbox) {
    SendBench bench;
    bench.settings.chkSaveSentMessages.SetChecked(true);
    bench.QueueMany(5);
    const auto watch = bench.windows.yielded.Observe([&] {
        auto* status = bench.wb.forms.Find<frmStatusEmail>();
        if (status && status->Progress1.Value() == 2 && !bench.wb.state.CancelRequested &&
            bench.server.Messages().size() == 2)
            status->cmdCancel.Press();
    });
    bench.AnswerErrorPrompt(false);
    bench.Send();
    // The third message is stopped before, on or after its way: what counts is that each is in
    // exactly one place.
    EXPECT_EQ(bench.Recipients("Sent Items"), bench.Delivered());
    EXPECT_EQ(bench.Recipients("Sent Items") + bench.Recipients("Outbox"),
              "p1@example.com p2@example.com p3@example.com p4@example.com p5@example.com ");
    EXPECT_EQ(bench.shell.panel, "Canceled!");
    EXPECT_FALSE(bench.wb.state.CancelRequested);
    EXPECT_FALSE(bench.wb.forms.IsFormLoaded("frmStatusEmail"));
}

/// Presses something in the middle of the second message: the server holds its answer back until
/// the run has yielded after the recipient arrived.
void InTheSecondMessage(SendBench& bench, const std::function<void(frmStatusEmail&)>& press) {
    std::atomic<bool> waiting{false};
    std::atomic<bool> released{false};
    bench.server.answerToRecipient = [&](const std::string& address) {
        if (address == "p2@example.com") {
            waiting = true;
            for (int i = 0; i < 500 && !released; ++i)
                std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return std::string();
    };
    const auto watch = bench.windows.yielded.Observe([&] {
        auto* status = bench.wb.forms.Find<frmStatusEmail>();
        if (!status || !waiting || released) return;
        released = true;
        press(*status);
    });
    bench.QueueMany(3);
    bench.AnswerErrorPrompt(false);
    bench.Send();
}

TEST(SendRun, CancelWithinAMessageEndsTheRunThere) {
    SendBench bench;
    InTheSecondMessage(bench, [](frmStatusEmail& status) { status.OnCloseBox(); });
    EXPECT_EQ(bench.Delivered(), "p1@example.com ");
    EXPECT_EQ(bench.Recipients("Outbox"), "p2@example.com p3@example.com ");
    EXPECT_EQ(bench.Rows("Outbox")[0].Status, "error");
    EXPECT_EQ(bench.Rows("Outbox")[1].Retries, 0);
}

TEST(SendRun, NextGivesUpThePresentMessageOnly) {
    SendBench bench;
    InTheSecondMessage(bench, [](frmStatusEmail& status) { status.cmdNext.Press(); });
    EXPECT_EQ(bench.Delivered(), "p1@example.com p3@example.com ");
    EXPECT_EQ(bench.Recipients("Outbox"), "p2@example.com ");
    EXPECT_EQ(bench.shell.panel, SomeErrors);
}

TEST(SendRun, SilenceOfTheServerPressesNext) {
    SendBench bench;
    bench.settings.chkSndTimeOut.SetChecked(true);
    bench.settings.Slider1.SetValue(2);
    InTheSecondMessage(bench,
                       [&](frmStatusEmail&) { bench.clock.Advance(std::chrono::minutes(2)); });
    EXPECT_EQ(bench.Delivered(), "p1@example.com p3@example.com ");
}

TEST(SendRun, ProjectSwitchInTheMiddleEndsTheRunSafely) {
    SendBench bench;
    const std::string firstProject = bench.wb.state.ProjectFolder;
    InTheSecondMessage(bench, [&](frmStatusEmail&) {
        bench.wb.forms.UnloadAllExcept({"frmMain"});
        bench.UseProject("Other");
        bench.wb.forms.Get<frmSettings>();
        bench.wb.forms.Get<frmViewEmail>();
    });
    EXPECT_EQ(bench.Delivered(), "p1@example.com ");
    EXPECT_EQ(bench.Recipients("Outbox"), "p2@example.com p3@example.com ");
    EXPECT_EQ(bench.ErrorLog(), "") << "the other project has no errors";
    EXPECT_NE(ReadFileText(firstProject + "/errorlog.txt"), "");
    EXPECT_FALSE(bench.wb.state.RunBusy);
}

TEST(SendRun, SecondClickShowsTheRunInPlaceOfStartingOne) {
    SendBench bench;
    InTheSecondMessage(bench, [&](frmStatusEmail& status) {
        bench.Send();
        EXPECT_EQ(bench.windows.FocusedControl(), &status.cmdCancel);
    });
    EXPECT_EQ(bench.Delivered(), "p1@example.com p2@example.com p3@example.com ");
}

// --- interrupted runs -------------------------------------------------------------------------

TEST(SendRun, FinishesWhatADeadRunLeftBehind) {
    for (const bool copies : {true, false}) {
        SCOPED_TRACE(copies);
        SendBench bench;
        bench.settings.chkSaveSentMessages.SetChecked(copies);
        bench.QueueMany(3);
        // Row 2 was accepted when the program died; row 9 went away with its entry left.
        bench.RecordAccepted(2);
        bench.RecordAccepted(9);
        bench.Send();
        EXPECT_EQ(bench.Delivered(), "p1@example.com p3@example.com ");
        EXPECT_EQ(bench.Recipients("Sent Items"),
                  copies ? "p2@example.com p1@example.com p3@example.com " : "");
        EXPECT_EQ(bench.Recipients("Outbox"), "");
        EXPECT_TRUE(SentLedger::Entries(*bench.wb.state.MessageStore)->empty());
    }
}

TEST(SendRun, FinishingAloneSendsNothing) {
    SendBench bench;
    bench.QueueMany(1);
    bench.RecordAccepted(1);
    bench.Send();
    EXPECT_EQ(bench.server.Connections(), 0);
    EXPECT_EQ(bench.shell.panel, "Your Outbox folder is empty.");
    EXPECT_EQ(bench.Recipients("Outbox"), "");
}

TEST(SendRun, MessageWhoseCopyCannotBeKeptIsNeitherLostNorSentTwice) {
    SendBench bench;
    bench.settings.chkSaveSentMessages.SetChecked(true);
    bench.QueueMany(2);
    Database& store = *bench.wb.state.MessageStore;
    ASSERT_TRUE(store.RenameTable("Sent Items", "Elsewhere").Ok());
    bench.AnswerErrorPrompt(false);
    for (int run = 0; run < 2; ++run) {
        bench.Send();
        EXPECT_EQ(bench.Delivered(), "p1@example.com p2@example.com ") << run;
        EXPECT_EQ(bench.Recipients("Outbox"), "p1@example.com p2@example.com ") << run;
        EXPECT_NE(bench.ErrorLog(), "");
    }
    ASSERT_TRUE(store.RenameTable("Elsewhere", "Sent Items").Ok());
    bench.Send();
    EXPECT_EQ(bench.Recipients("Sent Items"), "p1@example.com p2@example.com ");
    EXPECT_EQ(bench.Recipients("Outbox"), "");
    EXPECT_EQ(bench.server.Messages().size(), 2u);
}

TEST(SendRun, StoreThatTakesNothingMoreStopsTheRunAndNothingIsSentTwice) {
    SendBench bench;
    std::optional<test::FullDisk> full;
    bench.server.answerToRecipient = [&](const std::string& address) {
        if (address == "p3@example.com" && !full) full.emplace();
        return std::string();
    };
    bench.QueueMany(5);
    bench.AnswerErrorPrompt(false);
    bench.Prompts().UseDefaults();
    bench.Send();
    EXPECT_EQ(bench.Delivered(), "p1@example.com p2@example.com p3@example.com ");
    ASSERT_FALSE(bench.Prompts().Shown().empty());
    const std::string& text = bench.Prompts().Shown()[0].text;
    EXPECT_TRUE(text.starts_with("The message store cannot be written: ")) << text;
    EXPECT_NE(text.find("accepted the last message"), std::string::npos);
    EXPECT_FALSE(bench.wb.state.RunBusy);
    EXPECT_FALSE(bench.wb.forms.IsFormLoaded("frmStatusEmail"));

    full.reset();
    bench.Send();
    EXPECT_EQ(bench.Delivered(),
              "p1@example.com p2@example.com p3@example.com p4@example.com p5@example.com ");
    EXPECT_EQ(bench.Recipients("Outbox"), "");
    EXPECT_TRUE(SentLedger::Entries(*bench.wb.state.MessageStore)->empty());
}

TEST(SendRun, FullDiskBeforeTheFirstMessageSendsNothing) {
    SendBench bench;
    bench.QueueMany(2);
    bench.AnswerErrorPrompt(false);
    bench.Prompts().UseDefaults();
    const test::FullDisk full;
    bench.Send();
    EXPECT_EQ(bench.Delivered(), "");
    ASSERT_FALSE(bench.Prompts().Shown().empty());
    EXPECT_TRUE(bench.Prompts().Shown()[0].text.starts_with("The message store cannot be written"));
}

// --- before the run ---------------------------------------------------------------------------

TEST(SendRun, ChecksTheSettingsFirst) {
    struct Case {
        const char* name;
        const char* server;
        const char* port;
        const char* box;
    };
    const Case cases[] = {
        {"three characters", " a.b ", "25", "Please supply a valid SMTP server."},
        {"port", "mail.example.com", "x", "Please supply a valid SMTP port."},
        {"server before port", "", "x", "Please supply a valid SMTP server."},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.name);
        SendBench bench;
        bench.Queue("a@example.com");
        bench.settings.txtSMTPServer.SetText(test.server);
        bench.settings.txtSMTPPort.SetText(test.port);
        bench.Prompts().QueueBox(BoxAnswer::Ok);
        bench.Send();
        EXPECT_TRUE(bench.Prompts().ExpectBox(test.box));
        EXPECT_TRUE(bench.settings.Visible());
        EXPECT_EQ(bench.settings.Tab1.Current(), frmSettings::SendingPage);
        EXPECT_FALSE(bench.wb.state.RunBusy);
    }
}

TEST(SendRun, InternalMailServerNeedsNeitherServerNorPort) {
    SendBench bench;
    bench.settings.chkServer.SetChecked(true);
    bench.settings.txtSMTPServer.SetText("");
    bench.settings.txtSMTPPort.SetText("x");
    SaveUserSetting(bench.wb, "MailServer", "Logs", "1");
    SaveUserSetting(bench.wb, "MailServer", "Port", std::to_string(bench.server.Port()));
    bench.server.answerToRecipient = [](const std::string& address) {
        return address[0] == 'a' ? "550 Unknown" : "";
    };
    bench.Queue("a@[127.0.0.1]");
    bench.Queue("b@[127.0.0.1]");
    bench.AnswerErrorPrompt(false);
    bench.Send();
    EXPECT_EQ(bench.settings.txtSMTPPort.Text(), "25");
    const std::string log =
        ReadFileText(bench.wb.state.ProjectFolder + "/Logs/3-15-2024 10.30.00 AM.txt");
    std::size_t at = 0;
    for (const char* part :
         {"SMTP:0: 220 fake ready\r\n", "SMTP:1: RCPT TO:<a@[127.0.0.1]>\r\n",
          "SMTP:0: 550 Unknown\r\n", "Error: [127.0.0.1]: 127.0.0.1: 550 Unknown\r\nFrom: Ann ",
          "Date: 3/15/2024\r\n\r\n\r\nSMTP:1: MAIL FROM:", "RCPT TO:<b@[127.0.0.1]>\r\n"}) {
        at = log.find(part, at);
        ASSERT_NE(at, std::string::npos) << part << " in its place of " << log;
    }
}

TEST(SendRun, ModemWithoutALineWarnsOnceACommand) {
    SendBench bench;
    SaveUserSetting(bench.wb, "Proxy", "Connection", "Modem");
    bench.Queue("a@example.com");
    const auto closing = bench.windows.idle.Observe([&] {
        if (Form* dial = bench.wb.forms.FindByName("frmDial")) dial->OnCloseBox();
    });
    bench.Prompts().QueueBox(BoxAnswer::Ok, "You are not connected to the Internet.");
    bench.Send();
    EXPECT_EQ(bench.Prompts().Shown().size(), 1u);
    EXPECT_EQ(bench.server.Connections(), 0);
    bench.Send();
    EXPECT_EQ(bench.Prompts().Shown().size(), 1u) << "tried without asking again";
    EXPECT_EQ(bench.Delivered(), "a@example.com ");
}

TEST(SendRun, PreparingDialogAppearsAboveTwentyMessages) {
    for (const int count : {20, 21}) {
        SCOPED_TRACE(count);
        SendBench bench;
        bench.QueueMany(count);
        long steps = 0;
        const auto watch = bench.wb.forms.created.Observe([&](Form& form) {
            if (dynamic_cast<frmMSGPreparing*>(&form)) steps = 1;
        });
        const auto yield = bench.windows.yielded.Observe([&] {
            if (auto* preparing = bench.wb.forms.Find<frmMSGPreparing>())
                steps = std::max(steps, preparing->Progress1.Value());
        });
        bench.Send();
        EXPECT_EQ(steps, count > 20 ? count : 0);
        EXPECT_FALSE(bench.wb.forms.IsFormLoaded("frmMSGPreparing"));
    }
}

TEST(SendRun, ManySentItemsRaiseTheQuestion) {
    SendBench bench;
    Database& store = *bench.wb.state.MessageStore;
    ASSERT_TRUE(store.Execute("INSERT INTO [Sent Items] (Subject) VALUES ('x')").Ok());
    MessageRecord record;
    ASSERT_TRUE(store
                    .Transaction([&]() -> DaoError {
                        for (int i = 1; i < 40000; ++i)
                            SaveMessageRecord(bench.wb, record, "", "Sent Items", false, 0, "",
                                              false);
                        return {};
                    })
                    .Ok());
    bench.Queue("a@example.com");
    bench.Send();
    EXPECT_TRUE(bench.Prompts().Shown().empty()) << "40000 exactly";
    SaveMessageRecord(bench.wb, record, "", "Sent Items", false, 0, "", false);
    bench.Queue("b@example.com");
    bench.Prompts().QueueBox(BoxAnswer::Yes);
    bench.Send();
    ASSERT_EQ(bench.Prompts().Shown().size(), 1u);
    EXPECT_EQ(bench.Rows("Sent Items").size(), 0u);
}

// --- the status form --------------------------------------------------------------------------

TEST(frmStatusEmail, ConversationIsCappedAndEndsOnItsLastLine) {
    test::TestBench bench;
    auto& status = bench.wb.forms.Get<frmStatusEmail>();
    for (int i = 1; i <= 70000; ++i)
        status.AddProtocolLine("line " + std::to_string(i));
    status.ShowProtocol();
    EXPECT_EQ(status.List1.Count(), 30001);
    EXPECT_EQ(status.List1.Text(), "line 70000");
    EXPECT_EQ(status.List1.FirstItem(), "line 40000");
}

TEST(frmStatusEmail, DetailsOpenAndClose) {
    test::TestBench bench;
    auto& status = bench.wb.forms.Get<frmStatusEmail>();
    status.SetRect({0, 0, 9000, 4000});
    EXPECT_FALSE(status.List1.Visible());
    status.cmdDetails.Press();
    EXPECT_TRUE(status.List1.Visible());
    EXPECT_EQ(status.cmdDetails.Text(), "<< &Details");
    EXPECT_GT(status.Rect().height, 4000);
    status.cmdDetails.Press();
    EXPECT_EQ(status.cmdDetails.Text(), "&Details >>");
    EXPECT_EQ(status.Rect().height, 4000);
}

}  // namespace
}  // namespace mailvane
