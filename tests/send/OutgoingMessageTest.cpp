#include <gmock/gmock.h>

#include <algorithm>

#include "connection/Logon.h"
#include "core/text/Text.h"
#include "send/SendBench.h"
#include "send/message/AttachmentName.h"
#include "send/message/OutgoingMessage.h"

namespace mailvane {
namespace {

using testing::HasSubstr;

struct WireBench : test::SendBench {
    MessageRecord record = Message("bob@example.com");
    SmtpClient smtp;
    OutgoingMessage outgoing{wb, settings, smtp};

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
    std::string WireBody() {
        const std::string wire = Wire();
        const std::size_t end = wire.find("\r\n\r\n");
        return end == std::string::npos ? std::string() : wire.substr(end + 4);
    }
    /// From now on with a logon.
    void UseLogon(const std::string& user, const std::string& password) {
        settings.chkSMTPAuth.SetChecked(true);
        MakeFolders(wb.state.ProjectFolder + "/Import");
        EXPECT_TRUE(WriteLogon(wb, {user, password}));
    }
    std::int64_t Logons() const {
        const std::vector<std::string> lines = server.Lines();
        return std::count(lines.begin(), lines.end(), "AUTH LOGIN");
    }
};

struct OneMessage : testing::Test, WireBench {};

TEST(BuildExtraHeaders, OrderAndText) {
    const std::string mailer = "X-Mailer: Mailvane 1.50\r\n";
    const std::string plain = "Content-Type: text/plain; charset=us-ascii\r\n";
    const std::string noReply = "Reply-To: \r\n";
    struct Case {
        const char* name;
        void (*set)(frmSettings&, MessageRecord&);
        std::string headers;
    };
    const Case cases[] = {
        {"default", [](auto&, auto&) {}, mailer + plain + noReply},
        {"anonymous", [](auto& settings, auto&) { settings.optIdentityAnonymous.SetValue(true); },
         plain + noReply},
        {"custom mailer",
         [](auto& settings, auto&) {
             settings.optIdentityCustom.SetValue(true);
             settings.txtIdentityCustom.SetText("My\r\nBcc: x@y");
         },
         "X-Mailer: MyBcc: x@y\r\n" + plain + noReply},
        {"html", [](auto&, auto& record) { record.ContentType = "HTML"; },
         mailer + "Content-Type: text/html; charset=us-ascii\r\n" + noReply},
        {"attachment", [](auto&, auto& record) { record.Attach = "/tmp/a"; }, mailer + noReply},
        {"high priority", [](auto&, auto& record) { record.Priority = "1"; },
         mailer + plain + noReply + "X-Priority: 1\r\nX-MSMail-Priority: High"},
        {"normal priority", [](auto&, auto& record) { record.Priority = "3"; },
         mailer + plain + noReply + "X-Priority: 3\r\nX-MSMail-Priority: Normal"},
        {"low priority", [](auto&, auto& record) { record.Priority = "5"; },
         mailer + plain + noReply + "X-Priority: 5\r\nX-MSMail-Priority: Low"},
        {"other priority", [](auto&, auto& record) { record.Priority = "2"; },
         mailer + plain + noReply},
        {"hostile Reply-To",
         [](auto&, auto& record) { record.ReplyTo = "r@x.com\r\nBcc: b@x.com"; },
         mailer + plain + "Reply-To: r@x.comBcc: b@x.com\r\n"},
    };
    for (const Case& test : cases) {
        WireBench bench;
        test.set(bench.settings, bench.record);
        EXPECT_EQ(BuildExtraHeaders(bench.settings, bench.record), test.headers) << test.name;
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
        EXPECT_EQ(bench.WireBody(), test.text);
    }
}

TEST_F(OneMessage, MultipartOfAPlainMessageAsGiven) {
    settings.chkStandardParts.SetChecked(false);
    record.Attach = folder.Write("a.txt", "hello");
    record.Priority = "5";
    EXPECT_EQ(WireBody(),
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
    const std::string wire = server.Messages()[0].data;
    EXPECT_THAT(wire, HasSubstr("X-MSMail-Priority: LowMIME-Version: 1.0\r\n"
                                "Content-Type: multipart/mixed; boundary=abcdfwefjsdvsdfg\r\n"));
    EXPECT_THAT(wire, HasSubstr("\r\nMIME-Version: 1.0\r\n")) << "a line of its own";
    record.Attach = "";
    EXPECT_EQ(WireBody(), "Text\r\n") << "an attachment is not left for the next message";
}

TEST_F(OneMessage, MultipartOfHtmlAsGivenKeepsItsPartHeaderOnOneLine) {
    settings.chkStandardParts.SetChecked(false);
    record.ContentType = "html";
    record.HTML = "unused";
    record.HTMLCode = "<p>x</p>";
    record.Body = "";
    record.Attach = folder.Write("a.txt", "hello");
    EXPECT_THAT(Wire(), HasSubstr("--abcdfwefjsdvsdfg\r\n"
                                  "Content-Type: text/html;    charset=\"iso-8859-1\""
                                  "Content-Transfer-Encoding: quoted-printable\r\n"
                                  "<p>x</p>\r\n"
                                  "--abcdfwefjsdvsdfg\r\n"));
}

TEST_F(OneMessage, MissingAttachmentIsAnErrorAndNothingIsSent) {
    record.Attach = folder.File("none.pdf");
    EXPECT_THAT(Send(), HasSubstr("none.pdf"));
    EXPECT_EQ(Delivered(), "");
}

TEST_F(OneMessage, TextOutsideAsciiIsDeclared) {
    record.Body = "caf\xC3\xA9";
    EXPECT_THAT(Wire(), HasSubstr("Content-Type: text/plain; charset=utf-8\r\n"
                                  "Content-Transfer-Encoding: 8bit\r\n"));
}

TEST_F(OneMessage, PortThatIsNoNumberBecomes25) {
    settings.txtSMTPPort.SetText("smtp");
    settings.txtSMTPServer.SetText("");
    EXPECT_NE(Send(), "");
    EXPECT_EQ(settings.txtSMTPPort.Text(), "25");
}

TEST_F(OneMessage, LogonHappensOnceAndShowsNoPassword) {
    UseLogon("ann", "s3cret; +%");
    std::string shown;
    smtp.onProtocol = [&](Direction, const std::string& line) { shown += line + "\n"; };
    Wire();
    Wire();
    const std::vector<std::string> lines = server.Lines();
    const auto logon = std::find(lines.begin(), lines.end(), "AUTH LOGIN");
    ASSERT_NE(logon, lines.end());
    EXPECT_EQ(*(logon + 1), "YW5u");
    EXPECT_EQ(*(logon + 2), "czNjcmV0OyArJQ==");
    EXPECT_EQ(Logons(), 1);
    EXPECT_EQ(server.Messages().size(), 2u);
    EXPECT_THAT(shown, Not(HasSubstr("czNjcmV0")));
}

TEST_F(OneMessage, WithoutUserOrPasswordGoesWithoutLogon) {
    settings.chkSMTPAuth.SetChecked(true);
    EXPECT_NE(Wire(), "") << "no logon store at all";
    for (const auto& [user, password] : {std::pair("ann", ""), std::pair("", "secret")}) {
        UseLogon(user, password);
        outgoing.FirstMessage = true;
        EXPECT_NE(Wire(), "");
    }
    EXPECT_EQ(Logons(), 0);
}

TEST(SmtpLogon, IsNotTriedAgainAndLaterRefusalsArePutDownToIt) {
    const std::string failed = "The logon failed: 535 Wrong password";
    struct Case {
        const char* name;
        const char* answer;  ///< to a message without a logon
        std::string error;
    };
    const Case cases[] = {
        {"logon wanted", "530 Authentication required", failed},
        {"another reason", "550 No such user", "550 No such user (" + failed + ")"},
        {"no logon wanted", "", ""},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.name);
        WireBench bench;
        bench.UseLogon("ann", "secret");
        bench.Refuse("bob@", test.answer);
        bench.server.answer = [](const std::string& step, const auto&) {
            return step == "AUTH LOGIN" ? "535 Wrong password" : "";
        };
        EXPECT_EQ(bench.Send(), failed);
        EXPECT_EQ(bench.Send(), test.error);
        EXPECT_EQ(bench.Send(), test.error);
        EXPECT_EQ(bench.Logons(), 1);
    }
}

TEST_F(OneMessage, LogonWaitsForAServerThatCannotBeReached) {
    UseLogon("ann", "secret");
    server.answer = [&](const std::string& step, const auto&) {
        return step == "(greeting)" && server.Connections() == 1 ? "421 Too busy" : "";
    };
    EXPECT_EQ(Send(), "421 Too busy");
    EXPECT_EQ(Send(), "");
    EXPECT_EQ(Logons(), 1);
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
