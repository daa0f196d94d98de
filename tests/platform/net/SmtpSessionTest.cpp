#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "platform/net/smtp/SmtpSession.h"

namespace mailvane {
namespace {

using namespace std::string_literals;

constexpr const char* Head = "Subject: s\r\n\r\n";
constexpr const char* Text = ".dot\nend";
// The message above on the wire has 14 + 6 + 5 = 25 bytes.

constexpr const char* Plain = "250 x";
constexpr const char* Pipelining = "250-x\r\n250 PIPELINING";
constexpr const char* Chunking = "250-x\r\n250-PIPELINING\r\n250 CHUNKING";

struct Conversation {
    const char* name;
    const char* recipients;  ///< separated by blanks
    /// Lines ended by "|": "C " what the client writes in one go, "S " what the server answers, "s
    /// " bytes of the server's without a line end, "!" the connection breaks.
    std::string script;
    const char* description = "";  ///< of the error
    const char* refused = "";      ///< address=answer, each ended by ";"
    bool broken = false;
};

std::string TakeOutput(SmtpSession& session) {
    std::string all;
    while (true) {
        const std::string_view output = session.Output();
        if (output.empty()) return all;
        // An odd number of bytes at a time, as a full socket does it.
        const std::size_t count = std::min<std::size_t>(7, output.size());
        all += output.substr(0, count);
        session.Written(count);
    }
}

void Feed(SmtpSession& session, const std::string& bytes, std::size_t pieceSize) {
    for (std::size_t i = 0; i < bytes.size(); i += pieceSize)
        session.Receive(bytes.substr(i, pieceSize));
}

std::vector<std::string> Split(const std::string& text, char separator) {
    std::vector<std::string> pieces;
    std::istringstream stream(text);
    for (std::string piece; std::getline(stream, piece, separator);)
        pieces.push_back(piece);
    return pieces;
}

NetError Play(SmtpSession& session, const std::string& text, std::size_t pieceSize) {
    const std::vector<std::string> script = Split(text, '|');
    for (std::size_t i = 0; i < script.size();) {
        if (script[i] == "!") return session.Interrupted({net_error::ConnectionLost, "gone"});
        const bool client = script[i][0] == 'C';
        std::string bytes;
        for (; i < script.size() && script[i] != "!" && (script[i][0] == 'C') == client; ++i) {
            bytes += script[i].substr(2) + (script[i][0] == 's' ? "" : "\r\n");
        }
        if (client) {
            EXPECT_EQ(TakeOutput(session), bytes);
        } else {
            Feed(session, bytes, pieceSize);
        }
    }
    EXPECT_EQ(TakeOutput(session), "");
    EXPECT_TRUE(session.Done());
    return session.Result();
}

constexpr const char* LostText =
    "The server's answer was lost; the message may have been accepted.";

/// The code that goes with a description: the server's own, or that of what happened.
int CodeOf(const std::string& description) {
    if (description.empty()) return 0;
    if (description == LostText) return net_error::AnswerLost;
    if (description == "gone") return net_error::ConnectionLost;
    return description[0] == 'T' ? net_error::BadReply : std::stoi(description);
}

/// As the transport does it: greeting and EHLO.
void Greet(SmtpSession& session, const std::string& answer) {
    session.Open();
    EXPECT_TRUE(session.Observe(Direction::Sent, "EHLO me\r\n").Ok());
    EXPECT_TRUE(session.Observe(Direction::Received, answer + "\r\n").Ok());
}

void PlayMessage(const char* hello, const Conversation& row, std::size_t pieceSize) {
    SCOPED_TRACE(row.name + (" in pieces of " + std::to_string(pieceSize)));
    SmtpSession session([](Direction, std::string_view) {});
    Greet(session, hello);

    MessageSource source;
    ASSERT_TRUE(source.Open(Head, Text, 25, "").Ok());
    session.Send({"a@x", Split(row.recipients, ' '), false, false}, source);
    const NetError result = Play(session, row.script, pieceSize);
    EXPECT_EQ(result.code, CodeOf(row.description));
    EXPECT_EQ(result.description, row.description);
    EXPECT_EQ(session.Broken(), row.broken);
    std::string refused;
    for (const auto& item : session.Refused())
        refused += item.address + "=" + item.answer + ";";
    EXPECT_EQ(refused, row.refused);
}

void PlayAll(const char* hello, const std::vector<Conversation>& rows) {
    for (const Conversation& row : rows)
        for (const std::size_t pieceSize : {1U, 1000U})
            PlayMessage(hello, row, pieceSize);
}

const std::string Mail = "C MAIL FROM:<a@x>|";
const std::string Rcpt = "C RCPT TO:<b@x>|";
const std::string RcptC = "C RCPT TO:<c@x>|";
const std::string Ok = "S 250 ok|";
const std::string Data = "C DATA|";
const std::string Go = "S 354 go|";
const std::string Body = "C Subject: s|C |C ..dot|C end|C .|";
const std::string DataTaken = Mail + Ok + Rcpt + Ok + Data + Go + Body;
const std::string Chunk = "C BDAT 25 LAST|C Subject: s|C |C .dot|C end|";
const std::string Reset = "C RSET|S 250 ok|";

constexpr const char* Unclear = "The server's answer cannot be understood: \"250 ok\".";

TEST(SmtpSession, OneByOne) {
    const std::vector<Conversation> rows = {
        {"accepted", "b@x",
         Mail + Ok + Rcpt + "S 250-o|S 250 k|" + Data + Go + Body + "S 250 queued|"},
        {"MAIL refused", "b@x", Mail + "S 550-5.1.1 go|S 550 away|" + Reset, "550 5.1.1 go away"},
        {"all refused", "b@x c@x", Mail + Ok + Rcpt + "S 550 b|" + RcptC + "S 450 c|" + Reset,
         "450 c", "b@x=550 b;c@x=450 c;"},
        {"some refused", "b@x c@x",
         Mail + Ok + Rcpt + "S 550 b|" + RcptC + "S 251 c|" + Data + "S 354|" + Body +
             "S 250 queued|",
         "", "b@x=550 b;"},
        {"DATA refused", "b@x", Mail + Ok + Rcpt + Ok + Data + "S 451 later|" + Reset, "451 later"},
        {"message refused", "b@x", DataTaken + "S 554 spam|" + Reset, "554 spam"},
        {"RSET refused", "b@x", Mail + "S 550 no|C RSET|S 500 what|", "550 no", "", true},
        {"421 to RCPT", "b@x", Mail + Ok + Rcpt + "S 421 closing|", "421 closing", "", true},
        {"DATA answered by 250", "b@x", Mail + Ok + Rcpt + Ok + Data + Ok, Unclear, "", true},
        {"garbage", "b@x", Mail + "S HTTP/1.1 400|",
         "The server's answer cannot be understood: \"HTTP/1.1 400\".", "", true},
        {"an answer too many", "b@x", Mail + Ok + Ok, Unclear, "", true},
        {"lost before the data", "b@x", Mail + Ok + Rcpt + "!", "gone"},
        {"lost after a refusal", "b@x", Mail + "S 550 no|C RSET|!", "550 no"},
        {"lost after the data", "b@x", DataTaken + "s 25|!", LostText},
        {"garbage after the data", "b@x", DataTaken + "S what|", LostText, "", true},
        {"354 after the data", "b@x", DataTaken + Go, LostText, "", true},
        {"421 after the data", "b@x", DataTaken + "S 421 full|", "421 full", "", true},
        {"garbage after a refusal", "b@x", Mail + "S 550 no|C RSET|S what|", "550 no", "", true},
        {"an address that adds a parameter", "a@[x>NOTIFY=NEVER] b@x", DataTaken + Ok, "",
         "a@[x>NOTIFY=NEVER]=Invalid e-mail address.;"},
    };
    PlayAll(Plain, rows);
}

const std::string Pipe = Mail + Rcpt + Data;

TEST(SmtpSession, Pipelined) {
    const std::vector<Conversation> rows = {
        {"accepted", "b@x c@x",
         Mail + Rcpt + RcptC + Data + Ok + Ok + Ok + Go + Body + "S 250 queued|"},
        {"MAIL refused", "b@x", Pipe + "S 553 who|S 503 no|S 503 no|" + Reset, "553 who"},
        {"MAIL refused, data asked for", "b@x", Pipe + "S 553 who|" + Ok + Go + "C .|" + Ok + Reset,
         "553 who"},
        {"all refused", "b@x", Pipe + Ok + "S 550 no|S 554 nobody|" + Reset, "550 no",
         "b@x=550 no;"},
        {"all refused, data asked for", "b@x",
         Pipe + Ok + "S 550 no|" + Go + "C .|S 554 nobody|" + Reset, "550 no", "b@x=550 no;"},
        {"some refused", "b@x c@x",
         Mail + Rcpt + RcptC + Data + Ok + Ok + "S 550 c|" + Go + Body + "S 250 queued|", "",
         "c@x=550 c;"},
        {"garbage among the answers", "b@x", Pipe + Ok + "S what|",
         "The server's answer cannot be understood: \"what\".", "", true},
        {"421 among the answers", "b@x", Pipe + Ok + "S 421 bye|", "421 bye", "", true},
        {"all refused, lost after the empty data", "b@x", Pipe + Ok + "S 550 no|" + Go + "C .|!",
         "550 no", "b@x=550 no;"},
    };
    PlayAll(Pipelining, rows);
}

const std::string AllInOne = Mail + Rcpt + Chunk;

TEST(SmtpSession, Chunks) {
    const std::vector<Conversation> rows = {
        {"accepted", "b@x", AllInOne + Ok + Ok + "S 250 queued|"},
        {"MAIL refused", "b@x", AllInOne + "S 553 who|S 503 no|S 503 no|" + Reset, "553 who"},
        {"all refused", "b@x", AllInOne + Ok + "S 550 no|S 554 nobody|" + Reset, "550 no",
         "b@x=550 no;"},
        {"all refused, chunk taken", "b@x", AllInOne + Ok + "S 550 no|" + Ok + Reset, "550 no",
         "b@x=550 no;"},
        {"some refused", "b@x c@x",
         Mail + Rcpt + RcptC + Chunk + Ok + "S 550 b|" + Ok + "S 250 queued|", "", "b@x=550 b;"},
        {"message refused", "b@x", AllInOne + Ok + Ok + "S 552 full|" + Reset, "552 full"},
        {"lost without a word", "b@x", AllInOne + "!", LostText},
        {"garbage for an answer", "b@x", AllInOne + Ok + "S what|", LostText, "", true},
        {"421 for an answer", "b@x", AllInOne + Ok + Ok + "S 421 full|", "421 full", "", true},
        {"garbage after all were refused", "b@x", AllInOne + Ok + "S 550 no|S what|", "550 no",
         "b@x=550 no;", true},
        {"lost after all were refused", "b@x", AllInOne + Ok + "S 550 no|!", "550 no",
         "b@x=550 no;"},
    };
    PlayAll(Chunking, rows);
}

class SmtpSessionParts : public testing::Test {
protected:
    void Hello(const std::string& answer) { Greet(session, answer); }

    /// The text stays the caller's.
    void Send(std::string_view head = Head, std::string_view text = Text, std::size_t size = 25) {
        EXPECT_TRUE(source.Open(head, text, size, "").Ok());
        session.Send({"a@x", {"b@x"}, false, false}, source);
    }

    std::vector<std::string> lines;
    SmtpSession session{[this](Direction direction, std::string_view text) {
        lines.push_back("<> "[static_cast<int>(direction)] + std::string(text));
    }};
    MessageSource source;
};

TEST_F(SmtpSessionParts, OnlyTheLastGreetingTellsExtensions) {
    Hello("250-x\r\n250-STARTTLS\r\n250 CHUNKING");
    EXPECT_TRUE(session.Extensions().Offers("CHUNKING"));
    EXPECT_TRUE(session.Observe(Direction::Sent, "STARTTLS\r\n").Ok());
    EXPECT_TRUE(session.Observe(Direction::Received, "220-go\r\n220 PIPELINING\r\n").Ok());
    EXPECT_TRUE(session.Observe(Direction::Sent, "EHLO me\r\n").Ok());
    EXPECT_TRUE(session.Observe(Direction::Received, "250-x\r\n250 8BITMIME\r\n").Ok());
    EXPECT_TRUE(session.Extensions().Offers("8BITMIME"));
    EXPECT_FALSE(session.Extensions().Offers("CHUNKING") ||
                 session.Extensions().Offers("PIPELINING"));
}

TEST_F(SmtpSessionParts, ExtensionsWithTheirParameters) {
    Hello("250-PIPELINING is my name\r\n250-size 100\r\n250-AUTH=LOGIN\r\n250-AUTH PLAIN\r\n250 X");
    std::string parameters;
    EXPECT_FALSE(session.Extensions().Offers("PIPELINING"));
    EXPECT_TRUE(session.Extensions().Offers("Auth", &parameters));
    EXPECT_EQ(parameters, "LOGIN");
    EXPECT_EQ(session.Extensions().SizeLimit(), 100);
    EXPECT_TRUE(session.Extensions().Offers("x"));
    EXPECT_FALSE(session.Broken());
    session.Receive("421 nobody asked\r\n");
    EXPECT_TRUE(session.Broken());
}

TEST_F(SmtpSessionParts, EndlessAnswersAreRefused) {
    const std::string longLine(1000, 'x');
    for (const std::string& piece : {"250" + longLine, "250-" + longLine + "\r\n", "250-\r\n"s}) {
        Hello("250 ok");
        session.Command("NOOP", false);
        for (int i = 0; i < 20000 && !session.Done(); ++i)
            session.Receive(piece);
        EXPECT_EQ(session.Result().code, net_error::BadReply);
        EXPECT_TRUE(session.Broken());
    }
}

TEST_F(SmtpSessionParts, ParametersOfMail) {
    Hello("250-x\r\n250-SIZE\r\n250-8BITMIME\r\n250 SMTPUTF8");
    ASSERT_TRUE(source.Open(Head, Text, 25, "").Ok());
    session.Send({"a@x", {"b@x"}, true, false}, source);
    EXPECT_EQ(TakeOutput(session), "MAIL FROM:<a@x> SIZE=25 BODY=8BITMIME\r\n");
    Feed(session, "421 x\r\n", 9);

    Hello("250-x\r\n250-8BITMIME\r\n250 SMTPUTF8");
    session.Send({"a@x", {"b\xC5\xBE@x"}, false, false}, source);
    EXPECT_EQ(TakeOutput(session), "MAIL FROM:<a@x> BODY=8BITMIME SMTPUTF8\r\n");
}

TEST_F(SmtpSessionParts, WhatTheServerCannotTakeIsRefusedBeforeAnythingIsSent) {
    Hello("250-x\r\n250 SIZE 24");
    Send();
    EXPECT_EQ(session.Result().code, net_error::TooLarge);
    EXPECT_EQ(session.Result().description,
              "The message has 25 bytes, and the server takes no more than 24.");

    Hello("250 x");
    session.Send({"a@x", {"\xC5\xBE@x", "b@x"}, false, false}, source);
    ASSERT_EQ(session.Refused().size(), 1U);
    EXPECT_EQ(session.Refused()[0].address, "\xC5\xBE@x");
    EXPECT_EQ(TakeOutput(session), "MAIL FROM:<a@x>\r\n");
    Feed(session, "421 x\r\n", 9);

    Hello("250 x");
    session.Send({"a@x", {"\xC5\xBE@x"}, false, false}, source);
    EXPECT_EQ(session.Result().code, net_error::BadAddress);
    session.Send({"\xC5\xBE@x", {"b@x"}, false, false}, source);
    EXPECT_EQ(session.Result().code, net_error::BadAddress);
    EXPECT_EQ(TakeOutput(session), "");
    EXPECT_FALSE(session.Broken());
}

TEST_F(SmtpSessionParts, LargeMessageGoesChunkByChunk) {
    const std::string text(1200 * 1024, 'x');
    Hello(Chunking);
    Send("", text, text.size());
    std::string body = TakeOutput(session);
    EXPECT_NE(body.find("\r\nBDAT 524288\r\n"), std::string::npos);
    Feed(session, "250 ok\r\n250 ok\r\n250 more\r\n", 1000);
    EXPECT_EQ(TakeOutput(session).substr(0, 13), "BDAT 524288\r\n");
    Feed(session, "250 more\r\n", 1000);
    EXPECT_EQ(TakeOutput(session).substr(0, 18), "BDAT 180226 LAST\r\n");
    EXPECT_EQ(session.BytesSent(), 1200 * 1024 + 2);
    Feed(session, "250 queued\r\n", 1000);
    EXPECT_TRUE(session.Done() && session.Result().Ok());

    Send("", text, text.size());
    TakeOutput(session);
    Feed(session, "250 ok\r\n550 no\r\n503 no\r\n", 1000);
    EXPECT_EQ(TakeOutput(session), "RSET\r\n");
}

TEST_F(SmtpSessionParts, RefusalInTheMiddleOfTheDataEndsTheConnection) {
    const std::string text(200 * 1024, 'x');
    Hello(Plain);
    Send("", text, text.size());
    for (const char* answer : {"250 ok\r\n", "250 ok\r\n", "354 go\r\n"}) {
        TakeOutput(session);
        session.Receive(answer);
    }
    session.Written(session.Output().size());
    session.Receive("552 too much\r\n");
    EXPECT_EQ(session.Result().description, "552 too much");
    EXPECT_TRUE(session.Broken());
    EXPECT_EQ(session.Output(), "");
}

TEST_F(SmtpSessionParts, LinesOfTheProtocol) {
    Hello(Chunking);
    session.Command("cGFzc3dvcmQ=", true);
    EXPECT_EQ(TakeOutput(session), "cGFzc3dvcmQ=\r\n");
    Feed(session, "235 ok\r\n", 1000);
    Send();
    TakeOutput(session);
    Feed(session, "250 1\r\n250 2\r\n250 3\r\n", 1000);
    EXPECT_EQ(lines, (std::vector<std::string>{
                         ">EHLO me", "<250-x", "<250-PIPELINING", "<250 CHUNKING", ">***",
                         "<235 ok", ">MAIL FROM:<a@x>", ">RCPT TO:<b@x>", ">BDAT 25 LAST",
                         " DATA (25 bytes)", "<250 1", "<250 2", "<250 3"}));
}

}  // namespace
}  // namespace mailvane
