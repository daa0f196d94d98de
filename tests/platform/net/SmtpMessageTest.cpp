#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/net/mime/NetCode.h"
#include "platform/net/mime/TextCoding.h"
#include "platform/net/smtp/MessageSource.h"
#include "platform/net/smtp/SmtpMessage.h"
#include "support/TempFolder.h"

namespace mailvane {
namespace {

using namespace std::string_literals;

std::string Wire(const MessageFields& fields, WireAbilities server, bool stuffDots = false) {
    SmtpMessage message;
    message.Compose(fields, server);
    MessageSource source;
    EXPECT_TRUE(source.Open(message.Head(), message.Body(), message.WireSize(), "").Ok());
    std::string out;
    EXPECT_TRUE(source.Read(out, out.max_size(), stuffDots).Ok());
    EXPECT_LE(ScanText(out).longestLine, MaxMailLine);
    return out;
}

TEST(SmtpMessage, Head) {
    const std::string wire = Wire(
        {"Ann <a@x.org>", "b@x", "", "Hi", "X-Mailer: m\n\r\n \nReply-To: \r\nX-A: 1\r\n\tb\0"s,
         "text", "Mon, 1 Jan 2024 00:00:00 +0000", "me"},
        {});
    const std::size_t id = wire.find("Message-ID: <");
    const std::size_t idEnd = wire.find('\n', id);
    ASSERT_NE(id, std::string::npos);
    EXPECT_EQ(wire.substr(idEnd - 8, 8), "@x.org>\r");
    EXPECT_EQ(wire.substr(0, id) + wire.substr(idEnd + 1),
              "Date: Mon, 1 Jan 2024 00:00:00 +0000\r\nFrom: Ann <a@x.org>\r\nTo: b@x\r\n"
              "Subject: Hi\r\nX-Mailer: m\r\nReply-To: \r\nX-A: 1\r\n\tb\r\n"
              "MIME-Version: 1.0\r\n\r\ntext\r\n");
}

MessageFields Block(std::string_view headers) {
    return {.from = "a@x", .otherHeaders = headers};
}

TEST(SmtpMessage, HeadLines) {
    const struct {
        const char* name;
        MessageFields fields;
        const char* present;
        const char* absent;
    } rows[] = {
        {"own MIME-Version", Block("mime-version: 1.0"), "mime-version: 1.0\r\n\r\n",
         "MIME-Version"},
        {"MIME-Version behind another text", Block("X-P: NormalMIME-Version: 1.0"),
         "X-P: NormalMIME-Version: 1.0\r\nMIME-Version: 1.0\r\n\r\n", "To:"},
        {"own Date", Block("Date: now"), "Date: now\r\n", " +0"},
        {"no empty lines", Block(""), "From: a@x\r\nMIME", "Subject"},
        {"injection by the subject",
         {.from = "a@x", .subject = "s\r\nBcc: e@x"},
         "Subject: sBcc: e@x\r\n",
         "\nBcc"},
        {"injection by the date",
         {.from = "a@x", .date = "d\r\n\r\nbody"},
         "Date: dbody\r\n",
         "\r\nbody"},
        {"encoded block", Block("X-Mailer: Ž\r\nReply-To: Ž <z@x>"),
         "X-Mailer: =?utf-8?B?xb0=?=\r\nReply-To: =?utf-8?B?xb0=?= <z@x>\r\n", "Ž"},
        {"an address outside ASCII",
         {.from = "a@x", .sendTo = "ž@x, b@x", .cc = "ž@x"},
         "To: b@x\r\n",
         "Cc"},
        {"local name in the Message-ID",
         {.from = "ž", .localName = "me.org"},
         "@me.org>\r\n",
         "From"},
    };
    for (const auto& row : rows) {
        const std::string wire = Wire(row.fields, {});
        EXPECT_NE(wire.find(row.present), std::string::npos) << row.name << "\n" << wire;
        EXPECT_EQ(wire.find(row.absent), std::string::npos) << row.name << "\n" << wire;
    }
    EXPECT_NE(Wire({.from = "ž@x"}, {true, true}).find("From: ž@x\r\n"), std::string::npos);
}

TEST(SmtpMessage, IdsDiffer) {
    SmtpMessage one;
    SmtpMessage other;
    std::vector<std::string> ids;
    for (SmtpMessage* message : {&one, &one, &other}) {
        message->Compose({"a@x", "", "", "", "", "", "d", "me"}, {});
        ids.emplace_back(message->Head());
    }
    other.Compose({"a@x", "", "", "", "", "", "d", "me", true}, {});
    EXPECT_EQ(other.Head(), ids[2]) << "the same message again";
    EXPECT_TRUE(ids[0] != ids[1] && ids[0] != ids[2] && ids[1] != ids[2]);
}

const std::string EightBit = "\r\nContent-Transfer-Encoding: 8bit\r\n";
const std::string QuotedPrintable = "\r\nContent-Transfer-Encoding: quoted-printable\r\n";

TEST(SmtpMessage, Body) {
    const std::string plain = "Content-Type: text/plain; charset=us-ascii\r\nX: y";
    const std::string plainEnd = "X: y\r\nMIME-Version: 1.0\r\n\r\n";
    const std::string longLine(999, 'x');
    std::string longCoded;
    AppendQuotedPrintable(longCoded, longLine);
    std::string grown;
    AppendQuotedPrintable(grown, ToUtf8(std::string(400, '\x80')));
    const std::string ascii = "Content-Type: text/plain; charset=us-ascii";
    const std::string utf8 = "Content-Type: text/plain; charset=utf-8";
    const struct {
        const char* name;
        std::string headers;
        std::string text;
        bool eightBit;
        std::string wire;  ///< from the first line of the block on
    } rows[] = {
        {"ASCII", plain, "a\nb\rc\r\n\r\nd", false,
         ascii + "\r\n" + plainEnd + "a\r\nb\r\nc\r\n\r\nd\r\n"},
        {"empty", plain, "", false, ascii + "\r\n" + plainEnd},
        {"8 bits taken", plain, "ž", true, utf8 + EightBit + plainEnd + "ž\r\n"},
        {"8 bits not taken", plain, "ž=\r\n.", false,
         utf8 + QuotedPrintable + plainEnd + "=C5=BE=3D\r\n.\r\n"},
        {"Windows-1252", plain, "\xE9", true, utf8 + EightBit + plainEnd + "é\r\n"},
        {"Windows-1252 that outgrows the line", plain, std::string(400, '\x80'), true,
         utf8 + QuotedPrintable + plainEnd + grown + "\r\n"},
        {"long line", plain, longLine, true,
         ascii + QuotedPrintable + plainEnd + longCoded + "\r\n"},
        {"NUL", plain, "a\0b"s, true, ascii + QuotedPrintable + plainEnd + "a=00b\r\n"},
        {"other parameters stay", "content-type: text/html;charset=\"iso-8859-1\" ; a=b", "ž", true,
         "Content-Type: text/html;charset=utf-8; a=b" + EightBit +
             "MIME-Version: 1.0\r\n\r\nž\r\n"},
        {"no type told", "Content-Transfer-Encoding: 7bit\r\nX: y", "ž", true,
         "X: y\r\n" + utf8 + EightBit + "MIME-Version: 1.0\r\n\r\nž\r\n"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const std::string wire =
            Wire({"a@x", "", "", "", row.headers, row.text, "", "me"}, {row.eightBit, false});
        EXPECT_EQ(wire.substr(wire.find("From: a@x\r\n") + 11), row.wire);
    }
}

TEST(SmtpMessage, Parts) {
    constexpr auto AsGiven = MessageParts::Form::AsGiven;
    constexpr auto Standard = MessageParts::Form::Standard;
    const auto body = [](const std::string& part, const std::string& boundary = "bnd") {
        return "Parts.\r\n--" + boundary + "\r\n" + part + "\r\n--" + boundary +
               "\r\nContent-Type: application/x; name=x\r\nContent-Transfer-Encoding: "
               "base64\r\n\r\n--" +
               boundary + "--\r\n";
    };
    const std::string given = "Content-Type: text/html;    charset=\"iso-8859-1\"Content-T: q";
    const std::string coded = "Content-Type: text/html;    charset=utf-8";
    const std::string type = "Content-Type: text/html; charset=";
    const std::string sevenBit = "us-ascii\r\nContent-Transfer-Encoding: 7bit\r\n\r\n";
    const struct {
        const char* name;
        MessageParts::Form form;
        std::string headers;
        std::string text;
        bool eightBit;
        std::string wire;
    } rows[] = {
        {"ASCII as given", AsGiven, given, "<p>a", true, body(given + "\r\n<p>a")},
        {"boundary inside the text as given", AsGiven, "", "--bnd", true, body("\r\n--bnd")},
        {"given, 8 bits taken", AsGiven, "", "ž", true,
         body("Content-Type: text/plain; charset=utf-8" + EightBit + "\r\nž")},
        {"given, 8 bits not taken", AsGiven, given, "ž", false,
         body(coded + QuotedPrintable + "\r\n=C5=BE")},
        {"standard", Standard, given, "<p>a", true, body(type + sevenBit + "<p>a")},
        {"boundary inside the text", Standard, given, "bnd, bnd1", true,
         body(type + sevenBit + "bnd, bnd1", "bnd2")},
        {"standard, 8 bits taken", Standard, given, "ž", true,
         body(type + "utf-8" + EightBit + "\r\nž")},
        {"standard, NUL", Standard, given, "a\0"s, true,
         body(type + "us-ascii" + QuotedPrintable + "\r\na=00")},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const MessageParts parts{row.form,    "bnd",       "Parts.\r\n",
                                 "text/html", row.headers, "application/x; name=x"};
        SmtpMessage message;
        message.Compose({.from = "a@x", .text = row.text, .parts = &parts}, {row.eightBit, false});
        EXPECT_EQ(std::string(message.Body()) + std::string(message.Tail()), row.wire);
        const std::string boundary = row.wire.substr(row.wire.rfind("\r\n--") + 4);
        EXPECT_NE(message.Head().find("multipart/mixed; boundary=" +
                                      boundary.substr(0, boundary.size() - 4)),
                  std::string::npos);
        EXPECT_EQ(message.WireSize(),
                  message.Head().size() + message.Body().size() + message.Tail().size());
    }
}

// Normalisation gives the same bytes wherever the pieces are cut.
TEST(MessageSource, LinesInPieces) {
    const struct {
        std::string text;
        std::string wire;
        std::string stuffed;
    } rows[] = {
        {"", "", ""},
        {".", ".\r\n", "..\r\n"},
        {"a\r\r\n\n\nb", "a\r\n\r\n\r\n\r\nb\r\n", "a\r\n\r\n\r\n\r\nb\r\n"},
        {".a\r.b\n.\r\n..c.\r", ".a\r\n.b\r\n.\r\n..c.\r\n", "..a\r\n..b\r\n..\r\n...c.\r\n"},
        {"a\r\n", "a\r\n", "a\r\n"},
    };
    for (const auto& row : rows) {
        for (std::size_t piece = 1; piece < 6; ++piece) {
            for (const bool stuff : {false, true}) {
                std::string out;
                WireLines lines;
                for (std::size_t i = 0; i < row.text.size(); i += piece)
                    lines.Append(out, std::string_view(row.text).substr(i, piece), stuff);
                lines.Finish(out);
                EXPECT_EQ(out, stuff ? row.stuffed : row.wire);
            }
        }
    }
}

class NetCodeTest : public testing::Test {
protected:
    void SetUp() override {
        code.DecodedFile = folder.File("in");
        code.EncodedFile = folder.File("out");
        code.Overwrite = true;
    }
    std::string Encoded(const std::string& bytes) {
        folder.Write("in", bytes);
        EXPECT_TRUE(code.SetAction(NetCode::Action::Encode).Ok());
        return folder.Read("out");
    }
    test::TempFolder folder;
    NetCode code;
};

TEST_F(NetCodeTest, Lines) {
    const std::pair<const char*, const char*> rows[] = {
        {"", ""}, {"a", "YQ==\r\n"}, {"ab", "YWI=\r\n"}, {"\xFF\xFE\xFD", "//79\r\n"}};
    for (const auto& [bytes, lines] : rows)
        EXPECT_EQ(Encoded(bytes), lines);
    const std::string large = Encoded(std::string(57 * 1024 + 58, '\0'));
    EXPECT_EQ(large.size(), 1025 * 78 + 6U);
    EXPECT_EQ(large.substr(large.size() - 10), "AA\r\nAA==\r\n");
}

TEST_F(NetCodeTest, Failures) {
    NetError error = code.SetAction(NetCode::Action::Encode);
    EXPECT_EQ(error.code, net_error::FileUnreadable);
    EXPECT_NE(error.description.find(code.DecodedFile), std::string::npos);

    EXPECT_EQ(Encoded("a"), "YQ==\r\n");
    code.DecodedFile += "\0.txt"s;
    EXPECT_EQ(code.SetAction(NetCode::Action::Encode).code, net_error::FileUnreadable);
    code.DecodedFile.resize(code.DecodedFile.size() - 5);
    code.Overwrite = false;
    EXPECT_EQ(code.SetAction(NetCode::Action::Encode).code, net_error::FileUnwritable);
    EXPECT_EQ(folder.Read("out"), "YQ==\r\n");
}

TEST_F(NetCodeTest, FileFollowsTheText) {
    folder.Write("in", std::string(200 * 1024, 'x') + "\n.y");
    MessageSource source;
    ASSERT_TRUE(source.Open("H: h\r\n\r\n", "text\r", 19, code.DecodedFile, "end\r\n").Ok());
    EXPECT_EQ(source.Size(), 19 + 200 * 1024 + 3);
    std::string out;
    std::size_t largest = 0;
    while (!source.AtEnd()) {
        const std::size_t before = out.size();
        ASSERT_TRUE(source.Read(out, 1000, true).Ok());
        largest = std::max(largest, out.size() - before);
    }
    EXPECT_EQ(out, "H: h\r\n\r\ntext\r\n" + std::string(200 * 1024, 'x') + "\r\n..yend\r\n");
    EXPECT_LE(largest, 70U * 1024);

    const NetError missing = source.Open("", "", 0, code.DecodedFile + "x");
    EXPECT_EQ(missing.code, net_error::FileUnreadable);
    EXPECT_NE(missing.description.find(code.DecodedFile + "x"), std::string::npos);
}

}  // namespace
}  // namespace mailvane
