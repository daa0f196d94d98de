#include <gtest/gtest.h>

#include <algorithm>

#include "core/Text.h"
#include "send/AttachmentName.h"
#include "send/Logon.h"
#include "send/OutgoingMessage.h"
#include "send/SendBench.h"

namespace mailvane {
namespace {

using test::SendBench;

struct WireBench : SendBench {
    MessageRecord record;
    SmtpClient smtp;
    OutgoingMessage outgoing{wb, settings, smtp};

    WireBench() {
        record.From = "Ann <ann@example.com>";
        record.To = "bob@example.com";
        record.Subject = "S";
        record.Body = "Text";
    }
    std::string Send() {
        smtp.MailServer = settings.txtSMTPServer.Text();
        return outgoing.BuildOutgoingMessage(record);
    }
    /// The message as the server got it; "" when it got none.
    std::string Wire() {
        EXPECT_EQ(Send(), "");
        const auto messages = server.Messages();
        return messages.empty() ? std::string() : messages.back().data;
    }
    std::string Body(const std::string& wire) {
        const std::size_t end = wire.find("\r\n\r\n");
        return end == std::string::npos ? std::string() : wire.substr(end + 4);
    }
};

TEST(BuildExtraHeaders, OrderAndText) {
    struct Case {
        const char* name;
        void (*set)(WireBench&);
        const char* headers;
    };
    const Case cases[] = {
        {"default", [](WireBench&) {},
         "X-Mailer: Mailvane 1.50\r\nContent-Type: text/plain; charset=us-ascii\r\nReply-To: \r\n"},
        {"anonymous", [](WireBench& b) { b.settings.optIdentityAnonymous.SetValue(true); },
         "Content-Type: text/plain; charset=us-ascii\r\nReply-To: \r\n"},
        {"custom mailer",
         [](WireBench& b) {
             b.settings.optIdentityCustom.SetValue(true);
             b.settings.txtIdentityCustom.SetText("My\r\nBcc: x@y");
         },
         "X-Mailer: MyBcc: x@y\r\nContent-Type: text/plain; charset=us-ascii\r\nReply-To: \r\n"},
        {"html", [](WireBench& b) { b.record.ContentType = "HTML"; },
         "X-Mailer: Mailvane 1.50\r\nContent-Type: text/html; charset=us-ascii\r\nReply-To: \r\n"},
        {"attachment and high priority",
         [](WireBench& b) {
             b.record.Attach = "/tmp/a";
             b.record.Priority = "1";
         },
         "X-Mailer: Mailvane 1.50\r\nReply-To: \r\nX-Priority: 1\r\nX-MSMail-Priority: High"},
        {"normal priority", [](WireBench& b) { b.record.Priority = "3"; },
         "X-Mailer: Mailvane 1.50\r\nContent-Type: text/plain; charset=us-ascii\r\nReply-To: \r\n"
         "X-Priority: 3\r\nX-MSMail-Priority: Normal"},
        {"low priority", [](WireBench& b) { b.record.Priority = "5"; },
         "X-Mailer: Mailvane 1.50\r\nContent-Type: text/plain; charset=us-ascii\r\nReply-To: \r\n"
         "X-Priority: 5\r\nX-MSMail-Priority: Low"},
        {"other priority, hostile Reply-To",
         [](WireBench& b) {
             b.record.Priority = "2";
             b.record.ReplyTo = "r@example.com\r\nBcc: x@example.com";
         },
         "X-Mailer: Mailvane 1.50\r\nContent-Type: text/plain; charset=us-ascii\r\n"
         "Reply-To: r@example.comBcc: x@example.com\r\n"},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.name);
        WireBench bench;
        test.set(bench);
        EXPECT_EQ(BuildExtraHeaders(bench.settings, bench.record), test.headers);
    }
}

TEST(BuildOutgoingMessage, Recipients) {
    struct Case {
        const char* name;
        const char* to;
        const char* error;
        std::vector<std::string> envelope;
    };
    const Case cases[] = {
        {"five characters", " a@b.c ", "Invalid e-mail address.", {}},
        {"six characters", "a@b.cd", "", {"a@b.cd"}},
        {"no at sign", "somebody", "Invalid e-mail address.", {}},
        {"empty", "", "Invalid e-mail address.", {}},
        {"comma in the name", "\"Doe, John\" <john@example.com>", "", {"john@example.com"}},
        {"comma in an unquoted name", "Doe, John <john@example.com\r\n>", "", {"john@example.com"}},
        {"plain list", "a@example.com,b@example.com", "", {"a@example.com", "b@example.com"}},
        {"two in brackets",
         "<a@example.com>,<b@example.com>",
         "",
         {"a@example.com", "b@example.com"}},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.name);
        WireBench bench;
        bench.record.To = test.to;
        bench.smtp.MailServer = "127.0.0.1";
        EXPECT_EQ(bench.outgoing.BuildOutgoingMessage(bench.record), test.error);
        const auto messages = bench.server.Messages();
        ASSERT_EQ(messages.size(), test.envelope.empty() ? 0u : 1u);
        if (messages.empty()) {
            EXPECT_EQ(bench.server.Connections(), 0);
        } else {
            EXPECT_EQ(messages[0].to, test.envelope);
        }
    }
}

TEST(BuildOutgoingMessage, HtmlText) {
    struct Case {
        const char* name;
        const char* contentType;
        const char* body;
        const char* code;
        bool comment;
        const char* text;
    };
    const Case cases[] = {
        {"file", "html", "", "  ", false, "<p>file</p>\r\n"},
        {"code wins over the file", "HTML", "", "<p>code</p>", false, "<p>code</p>\r\n"},
        {"text before", "html", "Dear", "<p>code</p>", false,
         "---\r\nDear<br><br>\r\n<p>code</p>\r\n"},
        {"comment", "html", "Dear", "<p>code</p>", true,
         "---\r\nDear<br><br>\r\n\r\n<!-- note -->\r\n<p>code</p>\r\n"},
        {"plain text with an HTML file", "text", "Dear", "<p>code</p>", true, "Dear\r\n"},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.name);
        WireBench bench;
        bench.settings.chkAddHTMLHeader.SetChecked(test.comment);
        bench.settings.txtAddHTMLHeader.SetText("note");
        bench.record.ContentType = test.contentType;
        bench.record.HTML = bench.folder.Write("page.html", "<p>file</p>");
        bench.record.HTMLCode = test.code;
        bench.record.Body = test.body;
        EXPECT_EQ(bench.Body(bench.Wire()), test.text);
    }
}

TEST(BuildOutgoingMessage, MultipartOfAPlainMessage) {
    WireBench bench;
    bench.record.Attach = bench.folder.Write("a.txt", "hello");
    bench.record.Priority = "5";
    const std::string wire = bench.Wire();
    EXPECT_NE(wire.find("X-MSMail-Priority: LowMIME-Version: 1.0\r\n"
                        "Content-Type: multipart/mixed; boundary=abcdfwefjsdvsdfg\r\n"),
              std::string::npos);
    EXPECT_NE(wire.find("\r\nMIME-Version: 1.0\r\n"), std::string::npos) << "a line of its own";
    EXPECT_EQ(bench.Body(wire),
              "This is a multi-part message in MIME format.\r\n"
              "--abcdfwefjsdvsdfg\r\n"
              "\r\n"
              "Text\r\n"
              "--abcdfwefjsdvsdfg\r\n"
              "Content-Type: application/octet-stream; name=a.txt\r\n"
              "Content-Transfer-Encoding: base64\r\n"
              "\r\n"
              "aGVsbG8=\r\n"
              "--abcdfwefjsdvsdfg--\r\n");
}

TEST(BuildOutgoingMessage, MultipartOfAnHtmlMessageKeepsItsPartHeaderOnOneLine) {
    WireBench bench;
    bench.record.ContentType = "html";
    bench.record.HTML = "unused";
    bench.record.HTMLCode = "<p>x</p>";
    bench.record.Body = "";
    bench.record.Attach = bench.folder.Write("a.txt", "hello");
    EXPECT_NE(bench.Wire().find("--abcdfwefjsdvsdfg\r\n"
                                "Content-Type: text/html;    charset=\"iso-8859-1\""
                                "Content-Transfer-Encoding: quoted-printable\r\n"
                                "<p>x</p>\r\n"
                                "--abcdfwefjsdvsdfg\r\n"),
              std::string::npos);
}

TEST(BuildOutgoingMessage, MissingAttachmentIsAnErrorAndNothingIsSent) {
    WireBench bench;
    bench.record.Attach = bench.folder.File("none.pdf");
    EXPECT_NE(bench.outgoing.BuildOutgoingMessage(bench.record).find("none.pdf"),
              std::string::npos);
    EXPECT_TRUE(bench.server.Messages().empty());
}

TEST(BuildOutgoingMessage, AttachmentOfOneMessageIsNotLeftForTheNext) {
    WireBench bench;
    bench.record.Attach = bench.folder.Write("a.txt", "hello");
    bench.Wire();
    bench.record.Attach = "";
    bench.record.Body = "Text";
    EXPECT_EQ(bench.Body(bench.Wire()), "Text\r\n");
}

TEST(BuildOutgoingMessage, TextOutsideAsciiIsDeclared) {
    WireBench bench;
    bench.record.Body =
        "Gr\xC3\xBC\xC3\x9F"
        "e";
    EXPECT_NE(bench.Wire().find("Content-Type: text/plain; charset=utf-8\r\n"
                                "Content-Transfer-Encoding: 8bit\r\n"),
              std::string::npos);
}

TEST(BuildOutgoingMessage, PortThatIsNoNumberBecomes25) {
    WireBench bench;
    bench.settings.txtSMTPPort.SetText("smtp");
    bench.settings.txtSMTPServer.SetText("");
    EXPECT_NE(bench.outgoing.BuildOutgoingMessage(bench.record), "");
    EXPECT_EQ(bench.settings.txtSMTPPort.Text(), "25");
}

void StoreLogon(WireBench& bench, const std::string& user, const std::string& password) {
    MakeFolders(bench.wb.state.ProjectFolder + "/Import");
    EXPECT_TRUE(WriteLogon(bench.wb, {user, password}));
}

TEST(SmtpLogon, HappensOnceAndShowsNoPassword) {
    WireBench bench;
    bench.settings.chkSMTPAuth.SetChecked(true);
    StoreLogon(bench, "ann", "s3cret; +%");
    std::string shown;
    bench.smtp.onProtocol = [&](Direction, const std::string& line) { shown += line + "\n"; };
    bench.Wire();
    bench.Wire();
    const std::vector<std::string> lines = bench.server.Lines();
    const auto logon = std::find(lines.begin(), lines.end(), "AUTH LOGIN");
    ASSERT_NE(logon, lines.end());
    EXPECT_EQ(*(logon + 1), "YW5u");
    EXPECT_EQ(*(logon + 2), "czNjcmV0OyArJQ==");
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "AUTH LOGIN"), 1);
    EXPECT_EQ(bench.server.Messages().size(), 2u);
    EXPECT_EQ(shown.find("czNjcmV0"), std::string::npos);
}

TEST(SmtpLogon, WithoutUserOrPasswordTheMessageGoesWithoutIt) {
    struct Case {
        const char* user;
        const char* password;
    };
    for (const Case& test : {Case{"ann", ""}, Case{"", "secret"}}) {
        WireBench bench;
        bench.settings.chkSMTPAuth.SetChecked(true);
        StoreLogon(bench, test.user, test.password);
        bench.Wire();
        for (const std::string& line : bench.server.Lines())
            EXPECT_NE(line, "AUTH LOGIN");
    }
    WireBench bench;
    bench.settings.chkSMTPAuth.SetChecked(true);
    EXPECT_NE(bench.Wire(), "") << "no logon store at all";
}

TEST(SmtpLogon, IsNotTriedAgainAndLaterRefusalsArePutDownToIt) {
    struct Case {
        const char* name;
        const char* answer;  ///< to a message without a logon
        const char* error;
    };
    const Case cases[] = {
        {"logon wanted", "530 Authentication required", "The logon failed: 535 Wrong password"},
        {"another reason", "550 No such user",
         "550 No such user (The logon failed: 535 Wrong password)"},
        {"no logon wanted", "", ""},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.name);
        WireBench bench;
        bench.settings.chkSMTPAuth.SetChecked(true);
        StoreLogon(bench, "ann", "secret");
        bench.server.answer = [&](const std::string& step, const auto&) {
            return step == "AUTH LOGIN"       ? "535 Wrong password"
                   : step.starts_with("RCPT") ? test.answer
                                              : "";
        };
        EXPECT_EQ(bench.Send(), "The logon failed: 535 Wrong password");
        EXPECT_EQ(bench.Send(), test.error);
        EXPECT_EQ(bench.Send(), test.error);
        const std::vector<std::string> lines = bench.server.Lines();
        EXPECT_EQ(std::count(lines.begin(), lines.end(), "AUTH LOGIN"), 1);
    }
}

TEST(SmtpLogon, WaitsForAServerThatCannotBeReached) {
    WireBench bench;
    bench.settings.chkSMTPAuth.SetChecked(true);
    StoreLogon(bench, "ann", "secret");
    bench.server.answer = [&](const std::string& step, const auto&) {
        return step == "(greeting)" && bench.server.Connections() == 1 ? "421 Too busy" : "";
    };
    EXPECT_EQ(bench.Send(), "421 Too busy");
    EXPECT_EQ(bench.Send(), "");
    const std::vector<std::string> lines = bench.server.Lines();
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "AUTH LOGIN"), 1);
}

TEST(AttachmentName, BareNameAndItsParameter) {
    struct Case {
        const char* name;
        const char* path;
        const char* parameter;
    };
    const Case cases[] = {
        {"path", "/home/ann/list.pdf", "name=list.pdf"},
        {"path of another system", "C:\\mail\\list.pdf", "name=list.pdf"},
        {"drive without a folder", "C:list.pdf", "name=list.pdf"},
        {"blank", "/tmp/my list.pdf", "name=\"my list.pdf\""},
        {"quotes", "/tmp/a\"b.pdf", "name=\"a\\\"b.pdf\""},
        {"line end", "/tmp/a\r\nBcc: x@y", "name=\"aBcc: x@y\""},
        {"semicolon", "/tmp/a;b", "name=\"a;b\""},
        {"outside ASCII", "/tmp/\xC3\xA4 b.pdf", "name*=utf-8''%C3%A4%20b.pdf"},
        {"no name", "/tmp/", "name=\"\""},
    };
    for (const Case& test : cases)
        EXPECT_EQ(NameParameter(AttachmentName(test.path)), test.parameter) << test.name;
}

}  // namespace
}  // namespace mailvane
