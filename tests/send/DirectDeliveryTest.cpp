#include <gtest/gtest.h>

#include <optional>

#include "core/Text.h"
#include "send/DirectDelivery.h"
#include "send/SendBench.h"
#include "store/DeliveredRecipients.h"
#include "support/FakeDnsServer.h"
#include "support/FullDisk.h"

namespace mailvane {
namespace {

using test::FakeSmtpServer;

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
        const std::pair<const char*, std::string> values[] = {
            {"Port", std::to_string(server.Port())},
            {"Timeout", "1"},
            {"DefDNS", "false"},
            {"DNS", dns.Address()},
            {"Logs", "1"}};
        for (const auto& [key, value] : values)
            SaveUserSetting(wb, "MailServer", key, value);
        AnswerErrorPrompt(false);
    }

    static std::string TakenBy(const FakeSmtpServer& host) {
        std::string all;
        for (const auto& message : host.Messages())
            for (const std::string& to : message.to)
                all += to + " ";
        return all;
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

TEST(DirectDelivery, TakesAnotherExchangerOnlyWhereThatIsRight) {
    struct Case {
        const char* name;
        const char* step;
        const char* answer;
        bool second;  ///< the other exchanger gets the message
        const char* error;
    };
    const Case cases[] = {
        {"all is well", "none", "", false, ""},
        {"refused greeting", "(greeting)", "554 No service here", true, ""},
        {"silent", "(greeting)", "?", true, ""},
        {"no SMTP", "(greeting)", "SSH-2.0", true, ""},
        {"busy", "EHLO", "421 Too busy", true, ""},
        {"greylisted", "RCPT", "450 Come back later", true, ""},
        {"hangs up at once", "MAIL", "!", true, ""},
        {"full", "(end)", "452 No room", true, ""},
        {"nobody of that name", "RCPT", "550 No such user", false,
         "Error: a.test: mx1.test: 550 No such user"},
        {"unwanted", "(end)", "554 Looks like spam", false,
         "Error: a.test: mx1.test: 554 Looks like spam"},
        {"answer lost", "(end)", "!", false,
         "Error: a.test: mx1.test: The server's answer was lost; the message may have been "
         "accepted."},
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
        EXPECT_EQ(bench.Error(), test.error);
        EXPECT_EQ(bench.Recipients("Outbox"), *test.error == '\0' ? "" : "p@a.test ");
    }
}

TEST(DirectDelivery, DeadExchangerIsTriedOnceARun) {
    DirectBench bench;
    bench.dns.names["a.test"].exchangers = {{1, "dead.test"}, {2, "mx1.test"}, {3, "mx2.test"}};
    for (const char* to : {"p1@a.test", "p2@A.test", "p3@a.test"})
        bench.Queue(to);
    bench.Send();
    EXPECT_EQ(bench.TakenBy(bench.server), "p1@a.test p2@A.test p3@a.test ");
    EXPECT_EQ(bench.server.Connections(), 1);
    EXPECT_EQ(bench.dns.ExchangerQuestions(), 1);
    EXPECT_EQ(CountOccurrences(bench.Log(), "SMTP:2: dead.test: "), 1);
    EXPECT_EQ(bench.ErrorLog(), "");
    EXPECT_EQ(bench.Recipients("Outbox"), "");
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
         "Error: unknown.test: unknown.test: The name of the server \"unknown.test\" was not "
         "found",
         1},
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

TEST(DirectDelivery, AddressLiteralNeedsNoName) {
    DirectBench bench;
    bench.Queue("p@[127.0.0.3]");
    bench.Send();
    EXPECT_EQ(bench.TakenBy(bench.third), "p@[127.0.0.3] ");
    EXPECT_EQ(bench.dns.ExchangerQuestions(), 0);
}

TEST(DirectDelivery, WhatOneDomainTookIsNotSentAgainWhenAnotherFailed) {
    DirectBench bench;
    const auto isOf = [](const std::string& step, const char* name) {
        return step.find(name) != std::string::npos;
    };
    bench.server.answer = [&](const std::string& step, const auto&) {
        return isOf(step, "<gone@a.test>") ? "550 Gone" : "";
    };
    bool refuses = true;
    bench.third.answer = [&](const std::string& step, const auto&) {
        return refuses && isOf(step, "RCPT") ? "554 Not today" : "";
    };
    bench.settings.chkSaveSentMessages.SetChecked(true);
    MessageRecord record;
    record.From = "ann@example.com";
    record.To = "p@b.test";
    record.CC = "P <p@a.test>, gone@a.test";
    record.BCC = "q@B.test,p@mx2.test";
    record.Subject = "Parts";
    SaveMessageRecord(bench.wb, record, "", OutboxFolder, false, 0, "Read", false);

    bench.Send();
    EXPECT_EQ(bench.TakenBy(bench.server), "p@a.test ");
    EXPECT_EQ(bench.TakenBy(bench.second), "p@mx2.test ");
    ASSERT_EQ(bench.Rows("Outbox").size(), 1u);
    EXPECT_EQ(bench.Rows("Outbox")[0].Retries, 1);
    EXPECT_EQ(bench.Noted(), 1u);
    EXPECT_EQ(bench.wb.state.MessageStore->UserTableNames()->size(), 6u) << "no folder of its own";
    const std::string log = bench.ErrorLog();
    EXPECT_NE(log.find("Error: 550 Gone\r\nTo: gone@a.test\r\n"), std::string::npos);
    EXPECT_EQ(CountOccurrences(log, "Error: b.test: b.test: 554 Not today\r\n"), 2) << log;

    refuses = false;
    bench.Send();
    EXPECT_EQ(bench.TakenBy(bench.third), "p@b.test q@B.test ");
    EXPECT_EQ(bench.server.Messages().size() + bench.second.Messages().size(), 2u);
    EXPECT_EQ(bench.Rows("Outbox").size(), 0u);
    EXPECT_EQ(bench.Rows("Sent Items").size(), 1u);
    EXPECT_EQ(bench.Noted(), 0u);
    const std::string data = bench.third.Messages()[0].data;
    EXPECT_NE(data.find("Cc: P <p@a.test>, gone@a.test\r\n"), std::string::npos);
}

TEST(DirectDelivery, PartsOfOneMessageAreTheSameMessage) {
    DirectBench bench;
    bench.Queue("p@a.test,q@b.test");
    bench.Send();
    ASSERT_EQ(bench.server.Messages().size() * bench.third.Messages().size(), 1u);
    EXPECT_EQ(bench.server.Messages()[0].data, bench.third.Messages()[0].data);
    EXPECT_EQ(bench.Rows("Outbox").size(), 0u);
}

TEST(DirectDelivery, PartThatCannotBeNotedEndsTheRunAndIsNotSentAgain) {
    DirectBench bench;
    std::optional<test::FullDisk> full;
    bench.server.answerToRecipient = [&](const std::string&) {
        if (!full) full.emplace();
        return std::string();
    };
    bench.Queue("p@a.test,q@b.test");
    bench.Queue("r@b.test");
    bench.Prompts().UseDefaults();
    bench.Send();
    EXPECT_EQ(bench.TakenBy(bench.server) + bench.TakenBy(bench.third), "p@a.test ");
    ASSERT_FALSE(bench.Prompts().Shown().empty());
    EXPECT_TRUE(bench.Prompts().Shown()[0].text.starts_with("The message store cannot be written"));
    full.reset();
    bench.Send();
    EXPECT_EQ(bench.TakenBy(bench.server) + bench.TakenBy(bench.third),
              "p@a.test q@b.test r@b.test ");
    EXPECT_EQ(bench.Recipients("Outbox"), "");
}

TEST(DirectDelivery, RestOfAMessageMayGoOverAServerOfOnesOwn) {
    DirectBench bench;
    bench.Queue("p@b.test,q@dead.test");
    bench.Send();
    bench.settings.chkServer.SetChecked(false);
    bench.settings.txtSMTPServer.SetText("127.0.0.1");
    bench.Send();
    EXPECT_EQ(bench.TakenBy(bench.third) + bench.Delivered(), "p@b.test q@dead.test ");
}

TEST(DirectDelivery, NextWorksWhileTheNameServiceIsSilent) {
    DirectBench bench;
    SaveUserSetting(bench.wb, "MailServer", "Timeout", "60");
    bench.dns.names["silent.test"].silent = true;
    bench.Queue("p@silent.test,q@a.test");
    bench.Queue("r@a.test");
    bool pressed = false;
    const auto watch = bench.windows.yielded.Observe([&] {
        auto* status = bench.wb.forms.Find<frmStatusEmail>();
        if (!status || pressed || bench.dns.ExchangerQuestions() == 0) return;
        pressed = true;
        status->cmdNext.Press();
    });
    bench.Send();
    EXPECT_EQ(bench.Error(), "Error: silent.test: The look-up was canceled.");
    EXPECT_EQ(bench.Recipients("Outbox"), "p@silent.test,q@a.test ");
    EXPECT_EQ(bench.Delivered(), "r@a.test ");
}

TEST(DirectDelivery, CancelWhileAnExchangerIsSilentTriesNoOther) {
    DirectBench bench;
    SaveUserSetting(bench.wb, "MailServer", "Timeout", "60");
    bench.server.answer = [&](const std::string& step, const auto&) {
        return step == "(greeting)" ? "?" : "";
    };
    bench.Queue("p@a.test");
    bench.Queue("q@a.test");
    const auto watch = bench.windows.yielded.Observe([&] {
        auto* status = bench.wb.forms.Find<frmStatusEmail>();
        if (!status || bench.wb.state.CancelRequested || bench.server.Connections() == 0) return;
        status->cmdCancel.Press();
    });
    bench.Send();
    EXPECT_EQ(bench.Error(), "Error: a.test: mx1.test: The connection was canceled.");
    EXPECT_EQ(bench.Recipients("Outbox"), "p@a.test q@a.test ");
    EXPECT_EQ(bench.second.Connections(), 0);
    EXPECT_EQ(bench.shell.panel, "Canceled!");
}

}  // namespace
}  // namespace mailvane
