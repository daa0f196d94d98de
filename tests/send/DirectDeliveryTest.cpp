#include <gmock/gmock.h>

#include <optional>

#include "core/text/Text.h"
#include "send/SendBench.h"
#include "send/direct/DirectDelivery.h"
#include "store/DeliveredRecipients.h"
#include "support/FakeDnsServer.h"
#include "support/FullDisk.h"

namespace mailvane {
namespace {

using test::FakeSmtpServer;
using testing::HasSubstr;

TEST(GroupByDomain, OrderCaseLiteralsAndWhatIsNoAddress) {
    const auto groups = GroupByDomain(
        {"a@One.test", "b@two.test", "c@one.TEST", "d", "e@[IPv6:::1]", "f@", "\"g@x\"@two.test"});
    std::string all;
    for (const DomainGroup& group : groups) {
        all += group.domain + ":";
        for (const std::string& address : group.addresses)
            all += " " + address;
        all += "; ";
    }
    EXPECT_EQ(all,
              "one.test: a@One.test c@one.TEST; two.test: b@two.test \"g@x\"@two.test; : d f@; "
              "[ipv6:::1]: e@[IPv6:::1]; ");
}

/// Mail servers on three addresses of the loopback, and a name server that knows them. The
/// exchangers of "a.test" are the first and the second, that of "b.test" is the third.
struct DirectBench : test::SendBench {
    DirectBench() {
        settings.chkServer.SetChecked(true);
        settings.txtSMTPServer.SetText("");
        dns.names["mx1.test"].address = "127.0.0.1";
        dns.names["mx2.test"].address = "127.0.0.2";
        dns.names["b.test"].address = "127.0.0.3";
        dns.names["dead.test"].address = "127.0.0.9";
        dns.names["a.test"].exchangers = {{10, "mx1.test"}, {20, "mx2.test"}};
        SaveUserSetting(wb, "MailServer", "Port", std::to_string(server.Port()));
        SaveUserSetting(wb, "MailServer", "Timeout", "1");
        SaveUserSetting(wb, "MailServer", "DefDNS", "false");
        SaveUserSetting(wb, "MailServer", "DNS", dns.Address());
        SaveUserSetting(wb, "MailServer", "Logs", "1");
    }

    std::string Log() const {
        return ReadFileText(wb.state.ProjectFolder + "/Logs/3-15-2024 10.30.00 AM.txt");
    }
    /// The text that the log of errors has for its message.
    std::string Error() const {
        const std::string log = ErrorLog();
        return log.substr(0, log.find("\r\n"));
    }
    std::size_t Noted() { return DeliveredLedger::Entries(*wb.state.MessageStore)->size(); }

    FakeSmtpServer second{"127.0.0.2", server.Port()};
    FakeSmtpServer third{"127.0.0.3", server.Port()};
    test::FakeDnsServer dns;
};

struct DirectRuns : testing::Test, DirectBench {};

TEST(DirectDelivery, TakesAnotherExchangerOnlyWhereThatIsRight) {
    struct Case {
        const char* name;
        const char* step;
        const char* answer;
        bool second;  ///< the other exchanger gets the message
        std::string error = {};
    };
    const std::string lost = "The server's answer was lost; the message may have been accepted.";
    const Case cases[] = {
        {"all is well", "none", "", false},
        {"refused greeting", "(greeting)", "554 No service here", true},
        {"silent", "(greeting)", "?", true},
        {"no SMTP", "(greeting)", "SSH-2.0", true},
        {"busy", "EHLO", "421 Too busy", true},
        {"greylisted", "RCPT", "450 Come back later", true},
        {"hangs up at once", "MAIL", "!", true},
        {"full", "(end)", "452 No room", true},
        {"nobody of that name", "RCPT", "550 No such user", false, "550 No such user"},
        {"unwanted", "(end)", "554 Looks like spam", false, "554 Looks like spam"},
        {"answer lost", "(end)", "!", false, lost},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.name);
        DirectBench bench;
        bench.server.answer = [&](const std::string& step, const auto&) {
            return step.starts_with(test.step) ? test.answer : "";
        };
        bench.Queue("p@a.test");
        bench.Send();
        EXPECT_EQ(bench.TakenBy(bench.second), test.second ? "p@a.test " : "");
        EXPECT_EQ(bench.second.Connections(), test.second ? 1 : 0);
        const bool sent = test.error.empty();
        EXPECT_EQ(bench.Error(), sent ? "" : "Error: a.test: mx1.test: " + test.error);
        EXPECT_EQ(bench.Recipients("Outbox"), sent ? "" : "p@a.test ");
    }
}

TEST_F(DirectRuns, DeadExchangerIsTriedOnceARun) {
    dns.names["a.test"].exchangers = {{1, "dead.test"}, {2, "mx1.test"}, {3, "mx2.test"}};
    for (const char* to : {"p1@a.test", "p2@A.test", "p3@a.test"})
        Queue(to);
    Send();
    EXPECT_EQ(TakenBy(server), "p1@a.test p2@A.test p3@a.test ");
    EXPECT_EQ(server.Connections(), 1);
    EXPECT_EQ(dns.ExchangerQuestions(), 1);
    EXPECT_EQ(CountOccurrences(Log(), "SMTP:2: dead.test: "), 1);
    EXPECT_EQ(ErrorLog() + Recipients("Outbox"), "");
}

TEST(DirectDelivery, DomainThatCannotBeReachedIsNotTriedAgainInTheRun) {
    struct Case {
        const char* name;
        const char* to;
        const char* error;
        int questions;
    };
    const Case cases[] = {
        {"no mail", "p@null.test", "Error: null.test: The domain takes no mail.", 1},
        {"literal that is none", "p@[127.0.0.x]",
         "Error: [127.0.0.x]: This is no address of a server.", 0},
        {"dead", "p@dead.test", "Error: dead.test: dead.test: Failed to connect", 1},
        {"unknown", "p@unknown.test",
         "Error: unknown.test: unknown.test: The name of the server \"unknown.test\" was not ", 1},
        {"broken name service", "p@broken.test",
         "Error: broken.test: The mail exchangers could not be looked up: ", -1},
        {"a bad name", "p p@a.test, q@", "Error: Invalid e-mail address.", 0},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.name);
        DirectBench bench;
        bench.dns.names["null.test"].exchangers = {{0, ""}};
        bench.dns.names["broken.test"].fails = true;
        bench.Queue(test.to);
        bench.Queue(test.to);
        bench.Send();
        EXPECT_EQ(CountOccurrences(bench.ErrorLog(), test.error), 4) << bench.ErrorLog();
        EXPECT_EQ(bench.Rows("Outbox").size(), 2u);
        EXPECT_TRUE(test.questions < 0 || bench.dns.ExchangerQuestions() == test.questions);
        EXPECT_LE(CountOccurrences(bench.Log(), "SMTP:2: dead.test: "), 1);
    }
}

TEST_F(DirectRuns, SessionLogTellsWhatHappenedInItsOrder) {
    settings.txtSMTPPort.SetText("x");
    SaveUserSetting(wb, "MailServer", "DefDNS", "true");
    SaveUserSetting(wb, "MailServer", "Timeout", "soon");
    Refuse("a@", "550 Unknown");
    Queue("a@[127.0.0.1]");
    Queue("b@[127.0.0.3]");
    Send();
    EXPECT_EQ(settings.txtSMTPPort.Text(), "25");
    EXPECT_EQ(TakenBy(third), "b@[127.0.0.3] ");
    EXPECT_EQ(dns.ExchangerQuestions(), 0);
    std::size_t at = 0;
    for (const char* part :
         {"SMTP:0: 220 fake ready\r\n", "SMTP:1: RCPT TO:<a@[127.0.0.1]>\r\n",
          "SMTP:0: 550 Unknown\r\n", "Error: [127.0.0.1]: 127.0.0.1: 550 Unknown\r\nFrom: Ann ",
          "Date: 3/15/2024\r\n\r\n\r\nSMTP:", "SMTP:1: MAIL FROM:",
          "RCPT TO:<b@[127.0.0.3]>\r\n"}) {
        at = Log().find(part, at);
        ASSERT_NE(at, std::string::npos) << part << " in its place of " << Log();
    }
}

TEST_F(DirectRuns, WhatOneDomainTookIsNotSentAgainWhenAnotherFailed) {
    Refuse("gone@", "550 Gone");
    third.answerToRecipient = [](const std::string&) { return "554 Not today"; };
    settings.chkSaveSentMessages.SetChecked(true);
    MessageRecord record = Message("p@b.test");
    record.CC = "P <p@a.test>, gone@a.test";
    record.BCC = "q@B.test,p@mx2.test";
    Queue(record);

    Send();
    EXPECT_EQ(TakenBy(server), "p@a.test ");
    EXPECT_EQ(TakenBy(second), "p@mx2.test ");
    EXPECT_EQ(second.Messages().at(0).data, server.Messages().at(0).data) << "the same message";
    ASSERT_EQ(Rows("Outbox").size(), 1u);
    EXPECT_EQ(Rows("Outbox")[0].Retries, 1);
    EXPECT_EQ(Noted(), 1u);
    EXPECT_EQ(wb.state.MessageStore->UserTableNames()->size(), 6u) << "no folder of its own";
    EXPECT_THAT(ErrorLog(), HasSubstr("Error: 550 Gone\r\nTo: gone@a.test\r\n"));
    EXPECT_EQ(CountOccurrences(ErrorLog(), "Error: b.test: b.test: 554 Not today\r\n"), 2);

    third.answerToRecipient = nullptr;
    Send();
    EXPECT_EQ(TakenBy(third), "p@b.test q@B.test ");
    EXPECT_EQ(server.Messages().size() + second.Messages().size(), 2u);
    EXPECT_EQ(Rows("Outbox").size(), 0u);
    EXPECT_EQ(Rows("Sent Items").size(), 1u);
    EXPECT_EQ(Noted(), 0u);
    EXPECT_THAT(third.Messages()[0].data, HasSubstr("Cc: P <p@a.test>, gone@a.test\r\n"));
}

TEST_F(DirectRuns, PartThatCannotBeNotedEndsTheRunAndIsNotSentAgain) {
    std::optional<test::FullDisk> full;
    server.answerToRecipient = [&](const std::string&) {
        if (!full) full.emplace();
        return std::string();
    };
    Queue("p@a.test,q@b.test");
    Queue("r@b.test");
    Prompts().UseDefaults();
    Send();
    EXPECT_EQ(TakenBy(server) + TakenBy(third), "p@a.test ");
    EXPECT_THAT(FirstBox(), testing::StartsWith("The message store cannot be written"));
    full.reset();
    Send();
    EXPECT_EQ(TakenBy(server) + TakenBy(third), "p@a.test q@b.test r@b.test ");
    EXPECT_EQ(Recipients("Outbox"), "");
}

TEST_F(DirectRuns, RestOfAMessageMayGoOverAServerOfOnesOwn) {
    Queue("p@b.test,q@dead.test");
    Send();
    settings.chkServer.SetChecked(false);
    settings.txtSMTPServer.SetText("127.0.0.1");
    Send();
    EXPECT_EQ(TakenBy(third) + Delivered(), "p@b.test q@dead.test ");
}

TEST_F(DirectRuns, NextWorksWhileTheNameServiceIsSilent) {
    SaveUserSetting(wb, "MailServer", "Timeout", "60");
    dns.names["silent.test"].silent = true;
    Queue("p@silent.test,q@a.test");
    Queue("r@a.test");
    PressOnce([&] { return dns.ExchangerQuestions() > 0; },
              [](frmStatusEmail& status) { status.cmdNext.Press(); });
    Send();
    EXPECT_EQ(Error(), "Error: silent.test: The look-up was canceled.");
    EXPECT_EQ(Recipients("Outbox"), "p@silent.test,q@a.test ");
    EXPECT_EQ(Delivered(), "r@a.test ");
}

TEST_F(DirectRuns, CancelWhileAnExchangerIsSilentTriesNoOther) {
    SaveUserSetting(wb, "MailServer", "Timeout", "60");
    server.answer = [&](const std::string& step, const auto&) {
        return step == "(greeting)" ? "?" : "";
    };
    Queue("p@a.test");
    Queue("q@a.test");
    PressOnce([&] { return server.Connections() > 0; },
              [](frmStatusEmail& status) { status.cmdCancel.Press(); });
    Send();
    EXPECT_EQ(Error(), "Error: a.test: mx1.test: The connection was canceled.");
    EXPECT_EQ(Recipients("Outbox"), "p@a.test q@a.test ");
    EXPECT_EQ(second.Connections(), 0);
    EXPECT_EQ(shell.panel, "Canceled!");
}

}  // namespace
}  // namespace mailvane
