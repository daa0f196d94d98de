#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <set>
#include <string_view>

#include "core/text/Text.h"
#include "platform/net/mime/TextCoding.h"
#include "platform/net/smtp/MessageSource.h"
#include "send/SendBench.h"

namespace mailvane {
namespace {

using namespace std::string_literals;
using testing::HasSubstr;

constexpr const char* InvalidAddress = "Invalid e-mail address.";
constexpr const char* Boundary = "--abcdfwefjsdvsdfg";
using Extensions = std::vector<std::string>;
const Extensions Forms[] = {{}, {"PIPELINING", "8BITMIME"}, {"PIPELINING", "CHUNKING"}};

// --- what arrives -----------------------------------------------------------------------------

/// A received message taken apart by the rules of RFC 5322; `fault` says what breaks them.
struct Arrived {
    std::map<std::string, std::string> headers;  ///< unfolded
    std::string body;                            ///< decoded
    std::string fault;
};

/// A header that the program writes.
bool IsKnown(const std::string& name) {
    static constexpr std::string_view known =
        ":Date:Message-ID:From:To:Cc:Subject:X-Mailer:Reply-To:Content-Type:X-Priority:"
        "X-MSMail-Priority:MIME-Version:Content-Transfer-Encoding:";
    return known.find(":" + name + ":") != known.npos;
}

std::string QuotedPrintableDecoded(const std::string& text) {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '=') {
            out += text[i];
        } else {
            const std::string code = text.substr(i + 1, 2);
            if (code != "\r\n") out += static_cast<char>(std::stoi(code, nullptr, 16));
            i += 2;
        }
    }
    return out;
}

void TakeHeaderLine(Arrived& arrived, const std::string& line, std::string& last) {
    if (line[0] == ' ' || line[0] == '\t') {
        if (last.empty() || Trimmed(line).empty()) arrived.fault = "folded: " + line;
        arrived.headers[last] += line;
        return;
    }
    const std::size_t colon = line.find(':');
    last = line.substr(0, colon);
    if (colon == line.npos || !IsKnown(last)) {
        arrived.fault = "added: " + line;
        return;
    }
    if (!IsAscii(line)) arrived.fault = "outside ASCII: " + line;
    const bool once = arrived.headers.emplace(last, line.substr(colon + 1)).second;
    if (!once) arrived.fault = "twice: " + last;
}

Arrived TakeApart(const std::string& raw) {
    Arrived arrived;
    if (!raw.ends_with("\r\n")) arrived.fault = "the last line has no end";
    std::string last;
    bool head = true;
    for (const std::string& line : Split(raw, "\r\n")) {
        if (line.find_first_of("\r\n\0"s) != line.npos) arrived.fault = "a bare CR, LF, NUL";
        if (line.size() > MaxMailLine) arrived.fault = "a line of " + std::to_string(line.size());
        if (line.empty()) head = false;
        if (head) TakeHeaderLine(arrived, line, last);
    }
    const std::size_t end = raw.find("\r\n\r\n");
    if (end != raw.npos) arrived.body = raw.substr(end + 4);
    const std::string& type = arrived.headers["Content-Type"];
    if (arrived.headers["Content-Transfer-Encoding"] == " quoted-printable")
        arrived.body = QuotedPrintableDecoded(arrived.body);
    if (type.find("multipart/") != std::string::npos &&
        !arrived.body.ends_with("\r\n"s + Boundary + "--\r\n"))
        arrived.fault = "the multipart is open";
    return arrived;
}

/// A text as it arrives: in UTF-8, its lines ended by CR LF.
std::string AsSent(const std::string& text) {
    std::string out;
    WireLines lines;
    lines.Append(out, ToUtf8(text), false);
    lines.Finish(out);
    return out;
}

// --- what is sent -----------------------------------------------------------------------------

std::string ManyLines(std::size_t size) {
    std::string text;
    while (text.size() < size)
        text += ".a line of a large text\n..and another one\r\n";
    return text;
}

const std::vector<std::pair<const char*, std::string>> HostileTexts = {
    {"CR", "a\rb"},
    {"LF", "a\nb"},
    {"a header more", "a\r\nBcc: evil@example.com"},
    {"the end of the header", "a\r\n\r\nb"},
    {"NUL", "a\0b"s},
    {"a dot", "a\r\n.\r\nb"},
    {"a bare dot", "a\n.\nb\r.\rc"},
    {"another message",
     "a\r\n.\r\nMAIL FROM:<evil@example.com>\r\nRCPT TO:<evil@example.com>\r\nDATA\r\n.\r\n"},
    {"leading dots", ".a\r\n..b\r\n...\r\n."},
    {"a long line", std::string(100000, 'x')},
    {"a long line of dots", std::string(100000, '.')},
    {"many blanks", "a" + std::string(5000, ' ') + "b"},
    {"no UTF-8", "caf\xE9 \x80\xFF \xC5"},
    {"long and no UTF-8", std::string(900, '\x80')},
    {"UTF-8", "\xC5\xBE\xE2\x82\xAC\xF0\x9F\x98\x80\r\n\xC5\xBE"},
    {"megabytes", ManyLines(3 * 1024 * 1024)},
};

using Member = std::string MessageRecord::*;
struct Field {
    const char* name;
    bool isLong;  ///< takes more than 65535 bytes
    Member member;
    const char* contentType = "";
    const char* before = "";  ///< what stands in the field before the text
};

const std::vector<Field> TextFields = {
    {"Subject", false, &MessageRecord::Subject},
    {"Body", true, &MessageRecord::Body},
    {"Body of an HTML message", true, &MessageRecord::Body, "html"},
    {"ReplyTo", false, &MessageRecord::ReplyTo},
    {"Priority", false, &MessageRecord::Priority},
    {"Mailer", false, &MessageRecord::Mailer},
    {"ContentType", false, &MessageRecord::ContentType},
    {"HTML", false, &MessageRecord::HTML, "html"},
    {"HTMLCode", true, &MessageRecord::HTMLCode, "HTML"},
    {"AllHeaders", true, &MessageRecord::AllHeaders},
    {"Attach", false, &MessageRecord::Attach, "", "/dev/null/"},
};

/// Every message comes from a sender of its own, by which it is found again.
class HostileMessage : public testing::TestWithParam<Extensions>, protected test::SendBench {
protected:
    HostileMessage() { server.extensions = GetParam(); }

    static MessageRecord Plain(const std::string& sender) {
        MessageRecord record = Message("to@example.com", sender);
        record.Body = ".plain";
        return record;
    }
    /// The message, and behind it one that must not suffer.
    void QueueWithOther(const MessageRecord& record) {
        Queue(record);
        Queue(Plain("other" + std::to_string(++queued_) + "@example.com"));
    }
    void SendAll() {
        Send();
        const auto messages = server.Messages();
        for (std::size_t i = arrived_.size(); i < messages.size(); ++i)
            EXPECT_TRUE(arrived_.emplace(messages[i].from, messages[i]).second) << messages[i].from;
        for (int i = 1; i <= queued_; ++i) {
            const std::string sender = "other" + std::to_string(i) + "@example.com";
            EXPECT_EQ(Expect(sender, "to@example.com ").body, ".plain\r\n");
        }
        EXPECT_THAT(server.Lines(), testing::Not(testing::Contains(HasSubstr("evil"))));
    }
    /// A valid message from `sender` arrived, for exactly these recipients.
    Arrived Expect(const std::string& sender, const std::string& recipients) {
        const auto found = arrived_.find(sender);
        EXPECT_EQ(found == arrived_.end(), recipients.empty()) << "from " << sender;
        if (found == arrived_.end()) return {};
        std::string all;
        for (const std::string& recipient : found->second.to)
            all += recipient + " ";
        EXPECT_EQ(all, recipients);
        Arrived arrived = TakeApart(found->second.data);
        EXPECT_EQ(arrived.fault, "");
        return arrived;
    }

private:
    int queued_ = 0;
    std::map<std::string, test::FakeSmtpServer::Message> arrived_;
};

INSTANTIATE_TEST_SUITE_P(All, HostileMessage, testing::ValuesIn(Forms));

std::string Sender(std::size_t field, std::size_t value) {
    return "f" + std::to_string(field) + "v" + std::to_string(value) + "@example.com";
}

TEST_P(HostileMessage, TextInEveryField) {
    const auto forEach = [&](const auto& act) {
        for (std::size_t f = 0; f < TextFields.size(); ++f)
            for (std::size_t v = 0; v < HostileTexts.size(); ++v) {
                auto [name, text] = HostileTexts[v];
                if (!TextFields[f].isLong) text.resize(std::min<std::size_t>(60000, text.size()));
                SCOPED_TRACE(TextFields[f].name + ", "s + name);
                act(TextFields[f], text, Sender(f, v));
            }
    };
    forEach([&](const Field& field, const std::string& text, const std::string& sender) {
        MessageRecord record = Plain(sender);
        record.ContentType = field.contentType;
        if (field.member == &MessageRecord::HTMLCode) {
            record.HTML = "code";
            record.Body = "";
        }
        record.*field.member = field.before + text;
        QueueWithOther(record);
    });
    SendAll();
    forEach([&](const Field& field, const std::string& text, const std::string& sender) {
        const bool lost = field.member == &MessageRecord::Attach;
        const Arrived arrived = Expect(sender, lost ? "" : "to@example.com ");
        const bool sentAsItIs =
            field.member == &MessageRecord::Body || field.member == &MessageRecord::HTMLCode;
        EXPECT_TRUE(!sentAsItIs || arrived.body == AsSent(text)) << arrived.body.substr(0, 99);
    });
    // What could not be sent stays, and the log says why.
    const auto rows = Rows("Outbox");
    EXPECT_EQ(rows.size(), HostileTexts.size());
    const std::string log = ErrorLog();
    for (const MessageRecord& row : rows)
        EXPECT_THAT(log, HasSubstr("Error: The file \"" + row.Attach + "\" cannot be read"));
}

TEST_P(HostileMessage, TextInTheSettings) {
    settings.optIdentityCustom.SetValue(true);
    settings.chkAddHTMLHeader.SetChecked(true);
    for (std::size_t v = 0; v < HostileTexts.size(); ++v) {
        const auto& [name, text] = HostileTexts[v];
        SCOPED_TRACE(name);
        settings.txtIdentityCustom.SetText(text);
        settings.txtAddHTMLHeader.SetText(text);
        MessageRecord record = Plain(Sender(0, v));
        record.ContentType = "html";
        record.HTML = "code";
        record.HTMLCode = "<p>";
        QueueWithOther(record);
        SendAll();
        const Arrived arrived = Expect(Sender(0, v), "to@example.com ");
        EXPECT_TRUE(arrived.body ==
                    AsSent("---\r\n.plain<br><br>\r\n\r\n<!-- " + text + " -->\r\n<p>"));
        EXPECT_EQ(arrived.headers.count("X-Mailer"), 1u);
    }
}

TEST_P(HostileMessage, NamesOfAttachedFiles) {
    const std::vector<std::string> names = {"a\r\nBcc: evil@example.com",
                                            "a\"; name=\"b",
                                            "caf\xE9 \xC5\xBE",
                                            "\xC5\xBE\r\n\r\n",
                                            std::string(255, 'x'),
                                            std::string(255, '\x80'),
                                            "--abcdfwefjsdvsdfg--",
                                            ";",
                                            "\\"};
    for (std::size_t i = 0; i < names.size(); ++i) {
        MessageRecord record = Plain(Sender(i, 0));
        record.Attach = folder.Write(names[i], "content");
        QueueWithOther(record);
    }
    SendAll();
    for (std::size_t i = 0; i < names.size(); ++i) {
        SCOPED_TRACE(names[i]);
        const Arrived arrived = Expect(Sender(i, 0), "to@example.com ");
        const std::size_t part = arrived.body.rfind("\r\n"s + Boundary + "\r\n");
        ASSERT_NE(part, std::string::npos);
        const Arrived file =
            TakeApart(arrived.body.substr(part + 2 + std::string(Boundary).size() + 2));
        EXPECT_EQ(file.fault, "");
        EXPECT_EQ(file.headers.size(), 2u) << "type and encoding";
        EXPECT_EQ(file.body, "Y29udGVudA==\r\n"s + Boundary + "--\r\n");
    }
}

// --- addresses --------------------------------------------------------------------------------

struct Addresses {
    const char* name;
    std::string list;
    const char* reached;       ///< the recipients
    const char* invalid = "";  ///< what the log calls an invalid address
    const char* asTo = "=";    ///< `reached` for the field To, where a name with a comma is no list
};

const std::vector<Addresses> HostileLists = {
    {"a header more", "a@example.com\r\nBcc: evil@example.com", "",
     "a@example.comBcc: evil@example.com"},
    {"a header more behind brackets", "<a@example.com>\r\nBcc: <evil@example.com>",
     "a@example.com "},
    {"a command before an address", "RCPT TO:<x@example.com>\r\nDATA", "x@example.com "},
    {"a parameter", "a@example.com> NOTIFY=NEVER", "", "a@example.com NOTIFY=NEVER"},
    {"a parameter in a literal", "b@example.com,a@[x> NOTIFY=NEVER]", "b@example.com ",
     "a@[x> NOTIFY=NEVER]"},
    {"NUL", "a@exam\0ple.com"s, "a@example.com "},
    {"open quote", "\"Ann <a@example.com>, b@example.com", "a@example.com b@example.com ", "",
     "a@example.com "},
    {"open bracket", "Ann <a@example.com, Ben <b@example.com>", "b@example.com ",
     "Ann a@example.com"},
    {"open comment", "(Ann <a@example.com>; b@example.com", "a@example.com b@example.com "},
    {"long name", std::string(5000, 'x') + " <a@example.com>", "a@example.com "},
    {"long comment", "a@example.com (" + std::string(5000, 'x') + ")", "a@example.com "},
    {"name that is no UTF-8", "caf\xE9 \"\x80 <a@example.com>", "a@example.com "},
    {"twice the same", "a@example.com, A <a@example.com>; a@example.com", "a@example.com ", "",
     "a@example.com "},
    {"five characters", " a@b.c ", "a@b.c ", "", ""},
    {"six characters", "a@b.cd", "a@b.cd "},
    {"no at sign", "somebody", "somebody ", "", ""},
    {"comma in an unquoted name", "Doe, J <a@example.com\r\n>", "a@example.com "},
    {"commas only", "a@example.com,,,;,,", "a@example.com "},
};

TEST_P(HostileMessage, AddressesInEveryField) {
    const Member fields[] = {&MessageRecord::To, &MessageRecord::CC, &MessageRecord::BCC};
    const auto forEach = [&](const auto& act) {
        for (std::size_t f = 0; f < 3; ++f)
            for (std::size_t v = 0; v < HostileLists.size(); ++v)
                act(f, HostileLists[v], Sender(f, v));
    };
    forEach([&](std::size_t f, const Addresses& row, const std::string& sender) {
        MessageRecord record = Plain(sender);
        record.*fields[f] = row.list;
        QueueWithOther(record);
    });
    SendAll();
    const std::string log = ErrorLog();
    const std::string invalid = "Error: "s + InvalidAddress + "\r\nTo: ";
    std::size_t failed = 0;
    forEach([&](std::size_t f, const Addresses& row, const std::string& sender) {
        SCOPED_TRACE(row.name + ", field "s + std::to_string(f));
        const std::string reached =
            f > 0 ? "to@example.com "s + row.reached : (row.asTo == "="s ? row.reached : row.asTo);
        if (reached.empty()) ++failed;
        const Arrived arrived = Expect(sender, reached);
        EXPECT_FALSE(f == 2 && arrived.headers.contains("Cc"));
        const std::string told = invalid + row.invalid + "\r";
        EXPECT_TRUE(*row.invalid == '\0' || reached.empty() || ContainsText(log, told));
    });
    for (const MessageRecord& row : Rows("Outbox"))
        EXPECT_THAT(log, HasSubstr(invalid + row.To + "\r\nSubj"));
    EXPECT_EQ(Rows("Outbox").size(), failed);
}

TEST_P(HostileMessage, Senders) {
    struct Row {
        const char* name;
        std::string from;
        const char* sender;  ///< "" when the message cannot be sent
        std::string error;
    };
    const std::string invalid = " cannot be used: "s + InvalidAddress;
    const std::vector<Row> rows = {
        {"a header more", "a@example.com\r\nBcc: evil@example.com", "",
         "The sender's address a@example.comBcc: evil@example.com" + invalid},
        {"a header more behind a name", "Ann <b@example.com>\r\nBcc: evil@example.com",
         "b@example.com", ""},
        {"a parameter", "c@example.com> BODY=8BITMIME", "",
         "The sender's address c@example.com BODY=8BITMIME" + invalid},
        {"nothing", "", "", "No sender's address is given."},
        {"a long name", std::string(60000, 'x') + " <d@example.com>", "d@example.com", ""},
        {"no UTF-8", "\xE9\"\x80 <e@example.com>", "e@example.com", ""},
        {"outside ASCII", "\xC5\xBE@example.com", "",
         "The sender's address \xC5\xBE@example.com cannot be used: The server does not take "
         "addresses outside ASCII."},
    };
    for (const Row& row : rows)
        QueueWithOther(Plain(row.from));
    SendAll();
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        if (row.error.empty())
            Expect(row.sender, "to@example.com ");
        else
            EXPECT_THAT(ErrorLog(), HasSubstr("Error: " + row.error + "\r\nTo: to@"));
    }
    EXPECT_EQ(Rows("Outbox").size(), 4u);
}

TEST_P(HostileMessage, TenThousandHiddenRecipients) {
    MessageRecord record = Plain("many@example.com");
    std::multiset<std::string> wanted = {record.To};
    for (int i = 0; i < 10000; ++i) {
        const std::string number = std::to_string(i);
        wanted.insert("r" + number + "@example.com");
        record.BCC += "\"R, " + number + "\" <r" + number + "@example.com>, ";
    }
    std::ptrdiff_t before = 0;
    for (const std::size_t room : {100000u, 100u}) {
        SCOPED_TRACE(room);
        server.answer = [&](const std::string& step, const auto& message) {
            const bool full = step.starts_with("RCPT") && message.to.size() == room;
            return std::string(full ? "452 4.5.3 Too many recipients" : "");
        };
        Queue(record);
        Send();
        const auto messages = server.Messages();
        std::multiset<std::string> reached;
        for (auto it = messages.begin() + before; it != messages.end(); ++it) {
            reached.insert(it->to.begin(), it->to.end());
            EXPECT_EQ(it->data, messages[before].data);
        }
        EXPECT_EQ(std::ssize(messages) - before, room == 100 ? 101 : 1);
        EXPECT_TRUE(reached == wanted);
        EXPECT_EQ(TakeApart(messages[before].data).fault, "");
        EXPECT_EQ(Recipients("Outbox") + ErrorLog(), "");
        before = std::ssize(messages);
    }
}

}  // namespace
}  // namespace mailvane
