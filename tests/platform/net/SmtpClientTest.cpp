#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

#include "platform/net/LoopbackServer.h"
#include "platform/net/SmtpClient.h"

namespace mailvane {
namespace {

using test::LoopbackServer;
using test::MailServerScript;
using test::Peer;
using Action = SmtpClient::Action;
using Lines = std::vector<std::string>;

constexpr const char* Plain = "250 x";
constexpr const char* Pipelining = "250-x\r\n250 PIPELINING";
constexpr const char* Chunking = "250-x\r\n250-PIPELINING\r\n250 CHUNKING";
constexpr const char* LostText =
    "The server's answer was lost; the message may have been accepted.";

bool StartsWith(const std::string& text, const std::string& start) {
    return text.compare(0, start.size(), start) == 0;
}

class SmtpClientTest : public testing::Test {
protected:
    void SetUp() override {
        client.MailServer = "127.0.0.1";
        client.MailPort = server.Port();
        client.LocalName = "me.test";
        client.Timeout = 10;
        client.From = "Ann <a@x>";
        client.SendTo = "b@x";
        client.Subject = "s";
        client.MessageText = "text";
        client.onError = [this](int code, const std::string& text) {
            errors.push_back(std::to_string(code) + " " + text);
        };
    }
    static int CountLines(const MailServerScript& mail, const std::string& start) {
        return static_cast<int>(std::count_if(mail.lines.begin(), mail.lines.end(),
                                              [&](auto& line) { return StartsWith(line, start); }));
    }

    MailServerScript script;
    LoopbackServer server{[this](Peer& peer, int number) { script.Talk(peer, number); }};
    SmtpClient client;
    Lines errors;
};

TEST_F(SmtpClientTest, TwoMessagesOnOneConnectionInEachForm) {
    for (const char* hello : {Plain, Pipelining, Chunking}) {
        SCOPED_TRACE(hello);
        MailServerScript mail{"220 ready", hello};
        LoopbackServer host([&](Peer& peer, int number) { mail.Talk(peer, number); });
        client.MailPort = host.Port();
        std::int64_t sent = 0;
        std::int64_t total = 0;
        client.onProgress = [&](std::int64_t part, std::int64_t all) { sent = part, total = all; };
        client.From = "a@x";
        client.SendTo = "b@x, B <b@x>";
        client.MessageText = "text";
        client.Cc = "c@x";
        client.BCc = "hidden@x";
        ASSERT_TRUE(client.SetAction(Action::Send).Ok());
        EXPECT_EQ(client.LastReply(), "250 queued");
        EXPECT_TRUE(client.IsConnected() && client.IsLocalPeer() && !client.IsSecured());
        EXPECT_TRUE(sent > 100 && sent == total);

        ASSERT_TRUE(client.SetAction(Action::Reset).Ok());
        EXPECT_EQ(client.SetAction(Action::Send).code, net_error::NoRecipients);
        client.From = "a@x";
        client.SendTo = "d@x";
        client.MessageText = "second";
        ASSERT_TRUE(client.SetAction(Action::Send).Ok());
        EXPECT_TRUE(client.SetAction(Action::Disconnect).Ok());
        EXPECT_FALSE(client.IsConnected());

        EXPECT_EQ(host.Connections(), 1);
        EXPECT_EQ(CountLines(mail, "RCPT"), 4);
        EXPECT_EQ(mail.lines.back(), "QUIT");
        EXPECT_EQ(mail.lines.front(), "EHLO me.test");
        ASSERT_EQ(mail.messages.size(), 2U);
        EXPECT_NE(mail.messages[0].find("To: b@x, B <b@x>"), std::string::npos);
        EXPECT_EQ(mail.messages[0].find("hidden"), std::string::npos);
        EXPECT_NE(mail.messages[1].find("second"), std::string::npos);
    }
}

TEST_F(SmtpClientTest, SomeRecipientsRefusedAndTheNextMessageGoesOn) {
    script.hello = Pipelining;
    script.answer = [](const std::string& line, int) -> std::string {
        return line == "RCPT TO:<b@x>" ? "550 no such user" : "";
    };
    client.SendTo = "b@x, c@x";
    EXPECT_TRUE(client.SetAction(Action::Send).Ok());
    ASSERT_EQ(client.RefusedRecipients().size(), 1U);
    EXPECT_EQ(client.RefusedRecipients()[0].answer, "550 no such user");

    client.SendTo = "b@x";
    EXPECT_EQ(client.SetAction(Action::Send).code, 550);
    EXPECT_EQ(client.LastReply(), "550 no such user");
    client.SendTo = "c@x";
    EXPECT_TRUE(client.SetAction(Action::Send).Ok());
    EXPECT_TRUE(client.RefusedRecipients().empty());
    EXPECT_EQ(errors, Lines{"550 550 no such user"});
    EXPECT_EQ(server.Connections(), 1);
}

// Where the server fails, for the second message on a kept connection.
TEST_F(SmtpClientTest, FailuresOfTheServer) {
    struct Row {
        const char* name;
        const char* hello;
        const char* line;
        const char* answer;
        int code;
        const char* text;
        int connections;
        unsigned messages;
    };
    const std::vector<Row> rows = {
        {"hangs up at MAIL", Plain, "MAIL", "!", 0, "", 2, 2},
        {"hangs up at pipelined MAIL", Pipelining, "MAIL", "!", 0, "", 2, 2},
        {"421 at MAIL", Pipelining, "MAIL", "421 enough", 0, "", 2, 2},
        {"hangs up at RCPT", Plain, "RCPT", "!", net_error::ConnectionLost,
         "The server closed the connection.", 1, 1},
        {"421 at RCPT", Plain, "RCPT", "421 enough", 421, "421 enough", 1, 1},
        {"hangs up at BDAT", Chunking, "BDAT", "!", net_error::AnswerLost, LostText, 1, 1},
        {"silent after BDAT", Chunking, "(mess", "?", net_error::AnswerLost, LostText, 1, 2},
        {"silent at MAIL, all of it sent", Chunking, "MAIL", "?", net_error::AnswerLost, LostText,
         1, 1},
        {"silent after pipelined data", Pipelining, "(mess", "?", net_error::AnswerLost, LostText,
         1, 2},
        {"garbage after the data", Plain, "(mess", "what", net_error::AnswerLost, LostText, 1, 2},
        {"hangs up at DATA", Plain, "DATA", "!", net_error::ConnectionLost,
         "The server closed the connection.", 1, 1},
        {"hangs up after the data", Plain, "(mess", "!", net_error::AnswerLost, LostText, 1, 2},
        {"silent after the data", Plain, "(mess", "?", net_error::AnswerLost, LostText, 1, 2},
        {"silent at RCPT", Plain, "RCPT", "?", net_error::TimedOut,
         "The server did not answer in time.", 1, 1},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        MailServerScript mail{"220 ready", row.hello};
        mail.answer = [&, seen = 0](const std::string& line, int) mutable -> std::string {
            return StartsWith(line, row.line) && ++seen == 2 ? row.answer : "";
        };
        LoopbackServer host([&](Peer& peer, int number) { mail.Talk(peer, number); });
        client.MailPort = host.Port();
        client.Timeout = 10;
        ASSERT_TRUE(client.SetAction(Action::Send).Ok());
        if (row.answer[0] == '?') client.Timeout = 1;
        const NetError error = client.SetAction(Action::Send);
        EXPECT_EQ(error.code, row.code);
        EXPECT_EQ(error.description, row.text);
        EXPECT_EQ(client.IsConnected(), row.code == 0);
        EXPECT_TRUE(client.SetAction(Action::Disconnect).Ok());
        EXPECT_EQ(host.Connections(), row.connections);
        EXPECT_EQ(mail.messages.size(), row.messages);
    }
}

// --- more recipients than a transaction takes -------------------------------------------------

/// A server with room for two recipients in a transaction.
struct CrampedServer {
    explicit CrampedServer(const char* hello) : mail{"220 ready", hello} {
        mail.answer = [this](const std::string& line, int connection) {
            const std::string other = change ? change(line, connection) : "";
            if (StartsWith(line, "MAIL")) {
                ++transactions;
                taken.clear();
            }
            if (StartsWith(line, "RCPT") && other.empty()) {
                if (taken.size() == 2) return full;
                taken.push_back(line.substr(9, 1));
            }
            if (line == "(message)" && other.empty() && !mail.messages.back().empty()) {
                for (const std::string& recipient : taken)
                    delivered += recipient;
                delivered += ' ';
            }
            return other;
        };
    }

    std::string full = "452 4.5.3 too many";
    std::function<std::string(const std::string& line, int connection)> change;
    int transactions = 0;
    std::string delivered;  ///< the first letters of the addresses, transaction by transaction
    Lines taken;
    MailServerScript mail;
    LoopbackServer host{[this](Peer& peer, int number) { mail.Talk(peer, number); }};
};

std::string Refused(const SmtpClient& client) {
    std::string all;
    for (const RefusedRecipient& recipient : client.RefusedRecipients())
        all += recipient.address.substr(0, 1) + "=" + recipient.answer + ";";
    return all;
}

TEST_F(SmtpClientTest, TooManyRecipientsGoInFurtherTransactions) {
    for (const char* hello : {Plain, Pipelining, Chunking}) {
        for (const char* full : {"452 4.5.3 too many", "552 too many", "450 4.5.3 too many"}) {
            SCOPED_TRACE(std::string(hello) + ", " + full);
            CrampedServer cramped(hello);
            cramped.full = full;
            cramped.change = [](const std::string& line, int) {
                return StartsWith(line, "RCPT TO:<d") ? "550 gone" : "";
            };
            client.MailPort = cramped.host.Port();
            client.SendTo = "a@x, b@x, c@x";
            client.BCc = "d@x, e@x, f@x";
            EXPECT_TRUE(client.SetAction(Action::Send).Ok());
            EXPECT_EQ(Refused(client), "d=550 gone;");
            EXPECT_TRUE(client.SetAction(Action::Disconnect).Ok());
            EXPECT_EQ(cramped.delivered, "ab ce f ");
            EXPECT_EQ(cramped.host.Connections(), 1);
            ASSERT_EQ(cramped.mail.messages.size(), 3U);
            EXPECT_EQ(cramped.mail.messages[2], cramped.mail.messages[0]) << "the same message";
        }
    }
    EXPECT_TRUE(errors.empty());
}

TEST_F(SmtpClientTest, FailureOfAFurtherTransactionIsNoneOfTheMessage) {
    struct Row {
        const char* name;
        const char* line;
        const char* answer;
        const char* refused;
        const char* delivered;
        int transactions;
        int connections;
    };
    const std::vector<Row> rows = {
        {"MAIL refused", "MAIL", "450 later", "c=450 later;d=450 later;e=452 4.5.3 too many;",
         "ab ", 2, 1},
        {"nobody taken", "RCPT", "452 disk full",
         "c=452 disk full;d=452 disk full;e=452 disk full;", "ab ", 3, 1},
        {"message refused", "(message)", "554 spam", "c=554 spam;d=554 spam;e=452 4.5.3 too many;",
         "ab ", 2, 1},
        {"answer lost", "(message)", "!",
         "c=The server's answer was lost; the message may have been accepted.;"
         "d=The server's answer was lost; the message may have been accepted.;"
         "e=452 4.5.3 too many;",
         "ab ", 2, 1},
        {"server leaves in between", "MAIL", "421 enough", "", "ab cd e ", 4, 2},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        CrampedServer cramped(Pipelining);
        cramped.change = [&](const std::string& line, int connection) {
            const bool here = connection == 0 && StartsWith(line, row.line);
            const bool later = cramped.transactions > (StartsWith(line, "MAIL") ? 0 : 1);
            return here && later ? row.answer : "";
        };
        client.MailPort = cramped.host.Port();
        client.SendTo = "a@x, b@x, c@x, d@x, e@x";
        EXPECT_TRUE(client.SetAction(Action::Send).Ok());
        EXPECT_EQ(Refused(client), row.refused);
        EXPECT_TRUE(client.SetAction(Action::Disconnect).Ok());
        EXPECT_EQ(cramped.delivered, row.delivered);
        EXPECT_EQ(cramped.transactions, row.transactions);
        EXPECT_EQ(cramped.host.Connections(), row.connections);
    }
    EXPECT_TRUE(errors.empty());
}

TEST_F(SmtpClientTest, IdleConnectionIsReopenedWithItsLogon) {
    script.hello = Chunking;
    script.answer = [](const std::string& line, int connection) -> std::string {
        if (line == "AUTH LOGIN") return "334 VXNlcm5hbWU6";
        if (line == "dXNlcg==") return "334 UGFzc3dvcmQ6";
        if (line == "cGFzcw==") return "235 welcome";
        // The server leaves with its answer to the first message.
        return line == "(message)" && connection == 0 ? "250 queued\r\n421 idle" : "";
    };
    ASSERT_TRUE(client.SetAction(Action::Connect).Ok());
    EXPECT_TRUE(client.Command("AUTH LOGIN").Ok());
    EXPECT_EQ(client.LastReply(), "334 VXNlcm5hbWU6");
    EXPECT_TRUE(client.Command("dXNlcg==", true).Ok());
    EXPECT_TRUE(client.Command("cGFzcw==", true).Ok());
    EXPECT_TRUE(client.SetAction(Action::Send).Ok());
    EXPECT_TRUE(client.SetAction(Action::Send).Ok());
    EXPECT_EQ(server.Connections(), 2);
    EXPECT_EQ(CountLines(script, "cGFzcw=="), 2);
    EXPECT_TRUE(errors.empty());

    // Leaving on purpose ends the logon.
    EXPECT_TRUE(client.SetAction(Action::Disconnect).Ok());
    EXPECT_TRUE(client.SetAction(Action::Send).Ok());
    EXPECT_EQ(CountLines(script, "cGFzcw=="), 2);
}

TEST_F(SmtpClientTest, Commands) {
    EXPECT_EQ(client.Command("NOOP").description, "Socket is not connected.");
    script.answer = [](const std::string& line, int) -> std::string {
        return line == "wrong" ? "535 no" : "";
    };
    Lines told;
    client.onProtocol = [&](Direction direction, const std::string& text) {
        if (direction == Direction::Sent) told.push_back(text);
    };
    ASSERT_TRUE(client.SetAction(Action::Connect).Ok());
    EXPECT_TRUE(client.Command("NOOP\r\nQUIT").Ok());
    const NetError error = client.Command("wrong", true);
    EXPECT_EQ(error.code, 535);
    EXPECT_EQ(error.description, "535 no");
    EXPECT_TRUE(client.IsConnected());
    EXPECT_EQ(told, (Lines{"EHLO me.test", "EHLO me.test", "NOOPQUIT", "***"}));
}

TEST_F(SmtpClientTest, CancelFromInsideEvents) {
    script.answer = [lost = false](const std::string& line, int) mutable -> std::string {
        if (StartsWith(line, "RCPT")) lost = line == "RCPT TO:<lost@x>";
        return line == "RCPT TO:<silent@x>" || (line == "(message)" && lost) ? "?" : "";
    };
    struct Row {
        const char* name;
        const char* recipient;
        const char* at;  ///< the protocol line that cancels, "" for the wait
        Action action;
        int code;
    };
    const std::vector<Row> rows = {
        {"while waiting", "silent@x", "", Action::Idle, net_error::Canceled},
        {"drop while waiting", "silent@x", "", Action::Disconnect, net_error::Canceled},
        {"while connecting", "b@x", "220 ready", Action::Idle, net_error::Canceled},
        {"between commands", "b@x", "RCPT TO:<b@x>", Action::Idle, net_error::Canceled},
        {"after the data", "lost@x", "", Action::Idle, net_error::AnswerLost},
        {"at the last answer", "b@x", "250 queued", Action::Disconnect, 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        bool reached = false;
        client.SendTo = row.recipient;
        client.onProtocol = [&](Direction, const std::string& text) {
            if (text == "RCPT TO:<silent@x>") reached = true;
            if (row.at[0] != '\0' && StartsWith(text, row.at)) {
                EXPECT_EQ(client.SetAction(Action::Send).code, net_error::Busy);
                EXPECT_TRUE(client.SetAction(row.action).Ok());
                reached = true;
            }
        };
        client.onIdle = [&] {
            if (row.at[0] != '\0' || !reached) return;
            EXPECT_TRUE(client.SetAction(row.action).Ok());
        };
        client.onProgress = [&](std::int64_t sent, std::int64_t total) {
            if (std::string(row.recipient) == "lost@x") reached = sent == total;
        };
        const auto start = std::chrono::steady_clock::now();
        const NetError error = client.SetAction(Action::Send);
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(3));
        EXPECT_TRUE(reached);
        EXPECT_EQ(error.code, row.code) << error.description;
        EXPECT_FALSE(client.IsConnected());
    }
}

TEST_F(SmtpClientTest, ConnectionsThatDoNotCome) {
    EXPECT_EQ(client.SetAction(Action::Idle).code, 0);
    script.greeting = "554-go\r\n554 away";
    EXPECT_EQ(client.SetAction(Action::Connect).description, "554 go away");
    script.greeting = "220 ready";
    script.answer = [](const std::string& line, int) -> std::string {
        return StartsWith(line, "EHLO") || StartsWith(line, "HELO") ? "550 not you" : "";
    };
    EXPECT_EQ(client.SetAction(Action::Connect).description, "550 not you");
    script.greeting = "SSH-2.0-x";
    EXPECT_EQ(client.SetAction(Action::Connect).description,
              "The server's answer cannot be understood: \"SSH-2.0-x\".");

    client.MailServer = "host name";
    EXPECT_EQ(client.SetAction(Action::Connect).code, net_error::ConnectFailed);
    client.MailServer = "";
    EXPECT_EQ(client.SetAction(Action::Send).description, "No mail server is given.");
    client.MailServer = "127.0.0.1";
    client.MailPort = 1;
    EXPECT_EQ(client.SetAction(Action::Connect).code, net_error::ConnectFailed);
    EXPECT_FALSE(client.IsConnected());
    EXPECT_EQ(errors.size(), 6U);
}

TEST_F(SmtpClientTest, ChangedServerClosesTheConnection) {
    MailServerScript otherScript;
    LoopbackServer other([&](Peer& peer, int number) { otherScript.Talk(peer, number); });
    ASSERT_TRUE(client.SetAction(Action::Send).Ok());
    client.MailPort = other.Port();
    ASSERT_TRUE(client.SetAction(Action::Send).Ok());
    EXPECT_EQ(script.lines.back(), "QUIT");
    EXPECT_EQ(otherScript.messages.size(), 1U);
    client.MailServer = "";
    EXPECT_EQ(client.SetAction(Action::Send).code, net_error::ConnectFailed);
    EXPECT_FALSE(client.IsConnected());
}

TEST_F(SmtpClientTest, SlowGreetingIsAnAnswerAndNotAConnection) {
    LoopbackServer slow([this](Peer& peer, int number) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1500));
        script.Talk(peer, number);
    });
    client.MailPort = slow.Port();
    client.ConnectTimeout = 1;
    EXPECT_TRUE(client.SetAction(Action::Connect).Ok());
    EXPECT_TRUE(client.SetAction(Action::Disconnect).Ok());
    client.Timeout = 1;
    EXPECT_EQ(client.SetAction(Action::Connect).code, net_error::TimedOut);
}

TEST_F(SmtpClientTest, NamesAreLookedUpWithoutBlocking) {
    client.MailServer = "localhost";
    EXPECT_TRUE(client.SetAction(Action::Connect).Ok());
    EXPECT_TRUE(client.SetAction(Action::Disconnect).Ok());

    // A name server that never answers.
    const int silent = socket(AF_INET, SOCK_DGRAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    ASSERT_EQ(bind(silent, reinterpret_cast<sockaddr*>(&address), size), 0);
    getsockname(silent, reinterpret_cast<sockaddr*>(&address), &size);
    client.DnsServers = "127.0.0.1:" + std::to_string(ntohs(address.sin_port));
    client.MailServer = "mail.test";
    client.ConnectTimeout = 1;
    EXPECT_EQ(client.SetAction(Action::Connect).code, net_error::TimedOut);
    client.ConnectTimeout = 30;
    int idle = 0;
    client.onIdle = [&] {
        if (++idle < 3) return;
        EXPECT_TRUE(client.SetAction(Action::Idle).Ok());
    };
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(client.SetAction(Action::Connect).code, net_error::Canceled);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(3));
    client.onIdle = nullptr;

    // And one that answers every question with "no such name".
    std::thread answering([silent] {
        std::string question(512, '\0');
        sockaddr_in asker{};
        socklen_t askerSize = sizeof asker;
        for (pollfd polled{silent, POLLIN, 0}; poll(&polled, 1, 1000) > 0;) {
            askerSize = sizeof asker;
            const ssize_t count = recvfrom(silent, question.data(), question.size(), 0,
                                           reinterpret_cast<sockaddr*>(&asker), &askerSize);
            if (count < 4) break;
            question[2] = '\x81';
            question[3] = '\x83';
            sendto(silent, question.data(), static_cast<std::size_t>(count), 0,
                   reinterpret_cast<sockaddr*>(&asker), askerSize);
        }
    });
    const NetError error = client.SetAction(Action::Connect);
    EXPECT_EQ(error.code, net_error::NameNotFound) << error.description;
    EXPECT_NE(error.description.find("\"mail.test\""), std::string::npos);
    answering.join();
    close(silent);
}

}  // namespace
}  // namespace mailvane
