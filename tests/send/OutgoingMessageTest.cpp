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

TEST_F(OneMessage, ExtraHeadersInTheirOrder) {
    const std::string mailer = "X-Mailer: Mailvane 1.50\r\n";
    const std::string plain = "Content-Type: text/plain; charset=us-ascii\r\n";
    const std::string html = "Content-Type: text/html; charset=us-ascii\r\n";
    const std::string noReply = "Reply-To: \r\n";
    const std::string all = mailer + plain + noReply;
    const struct {
        const char* name;
        std::string MessageRecord::*field;
        const char* value;
        std::string headers;
    } rows[] = {
        {"default", &MessageRecord::Priority, "", all},
        {"html", &MessageRecord::ContentType, "HTML", mailer + html + noReply},
        {"attachment", &MessageRecord::Attach, "/tmp/a", mailer + noReply},
        {"high", &MessageRecord::Priority, "1", all + "X-Priority: 1\r\nX-MSMail-Priority: High"},
        {"normal", &MessageRecord::Priority, "3",
         all + "X-Priority: 3\r\nX-MSMail-Priority: Normal"},
        {"low", &MessageRecord::Priority, "5", all + "X-Priority: 5\r\nX-MSMail-Priority: Low"},
        {"other priority", &MessageRecord::Priority, "2", all},
        {"hostile Reply-To", &MessageRecord::ReplyTo, "r@x.com\r\nBcc: b@x.com",
         mailer + plain + "Reply-To: r@x.comBcc: b@x.com\r\n"},
    };
    for (const auto& row : rows) {
        MessageRecord message = record;
        message.*row.field = row.value;
        EXPECT_EQ(BuildExtraHeaders(settings, message), row.headers) << row.name;
    }
    settings.optIdentityCustom.SetValue(true);
    settings.txtIdentityCustom.SetText("My\r\nBcc: x@y");
    EXPECT_EQ(BuildExtraHeaders(settings, record), "X-Mailer: MyBcc: x@y\r\n" + plain + noReply);
    settings.optIdentityAnonymous.SetValue(true);
    EXPECT_EQ(BuildExtraHeaders(settings, record), plain + noReply);
}

TEST_F(OneMessage, HtmlIsThatOfTheCodeOrElseOfTheFile) {
    const struct {
        const char* contentType;
        const char* code;
        const char* text;
    } rows[] = {{"html", "  ", "---\r\nText<br><br>\r\n\r\n<!-- a -->\r\n<p>file</p>\r\n"},
                {"HTML", "<p>code</p>", "---\r\nText<br><br>\r\n\r\n<!-- a -->\r\n<p>code</p>\r\n"},
                {"text", "<p>code</p>", "Text\r\n"}};
    settings.chkAddHTMLHeader.SetChecked(true);
    settings.txtAddHTMLHeader.SetText("a");
    record.HTML = folder.Write("page.html", "<p>file</p>");
    for (const auto& row : rows) {
        record.ContentType = row.contentType;
        record.HTMLCode = row.code;
        EXPECT_EQ(WireBody(), row.text);
    }
}

TEST_F(OneMessage, MultipartAsGiven) {
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

    record.ContentType = "html";
    record.HTML = "unused";
    record.HTMLCode = "<p>x</p>";
    record.Body = "";
    EXPECT_THAT(Wire(), HasSubstr("--abcdfwefjsdvsdfg\r\n"
                                  "Content-Type: text/html;    charset=\"iso-8859-1\""
                                  "Content-Transfer-Encoding: quoted-printable\r\n"
                                  "<p>x</p>\r\n"
                                  "--abcdfwefjsdvsdfg\r\n"));
    record.Attach = "";
    EXPECT_EQ(WireBody(), "<p>x</p>\r\n") << "an attachment is not left for the next message";
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
    // What the server says to a message without a logon, and what the user reads.
    const std::pair<const char*, std::string> cases[] = {
        {"530 Authentication required", failed},
        {"550 No such user", "550 No such user (" + failed + ")"},
        {"", ""}};
    for (const auto& [answer, error] : cases) {
        SCOPED_TRACE(answer);
        WireBench bench;
        bench.UseLogon("ann", "secret");
        bench.Refuse("bob@", answer);
        bench.server.answer = [](const std::string& step, const auto&) {
            return step == "AUTH LOGIN" ? "535 Wrong password" : "";
        };
        EXPECT_EQ(bench.Send(), failed);
        EXPECT_EQ(bench.Send(), error);
        EXPECT_EQ(bench.Send(), error);
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
    const std::pair<const char*, const char*> cases[] = {
        {"/home/ann/list.pdf", "name=list.pdf"},
        {"C:\\mail\\list.pdf", "name=list.pdf"},
        {"C:list.pdf", "name=list.pdf"},
        {"/tmp/my list.pdf", "name=\"my list.pdf\""},
        {"/tmp/a\"b.pdf", "name=\"a\\\"b.pdf\""},
        {"/tmp/a\r\nBcc: x@y", "name=\"aBcc: x@y\""},
        {"/tmp/a;b", "name=\"a;b\""},
        {"/tmp/\xC3\xA4 b.pdf", "name*=utf-8''%C3%A4%20b.pdf"},
        {"/tmp/", "name=\"\""},
    };
    for (const auto& [path, parameter] : cases)
        EXPECT_EQ(NameParameter(AttachmentName(path)), parameter) << path;
}

}  // namespace
}  // namespace mailvane
