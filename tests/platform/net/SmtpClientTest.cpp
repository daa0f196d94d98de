#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "platform/net/smtp/SmtpClient.h"
#include "support/FakeDnsServer.h"
#include "support/FakeSmtpServer.h"

namespace mailvane {
namespace {

using test::FakeSmtpServer;
using Action = SmtpClient::Action;
using Lines = std::vector<std::string>;
using Message = FakeSmtpServer::Message;

const Lines Plain = {};
const Lines Pipelining = {"PIPELINING"};
const Lines Chunking = {"PIPELINING", "CHUNKING"};
constexpr const char* LostText =
    "The server's answer was lost; the message may have been accepted.";

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
        server.extensions = Plain;
    }
    static auto CountLines(const FakeSmtpServer& host, const std::string& start) {
        const Lines lines = host.Lines();
        return std::count_if(lines.begin(), lines.end(),
                             [&](const std::string& line) { return line.starts_with(start); });
    }

    FakeSmtpServer server;
    SmtpClient client;
    Lines errors;
};

TEST_F(SmtpClientTest, TwoMessagesOnOneConnectionInEachForm) {
    for (const Lines& extensions : {Plain, Pipelining, Chunking}) {
        SCOPED_TRACE(extensions.size());
        FakeSmtpServer host;
        host.extensions = extensions;
        host.answer = [](const std::string& step, const Message&) {
            return step == "(end)" ? "250 queued" : "";
        };
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
        EXPECT_EQ(CountLines(host, "RCPT"), 4);
        EXPECT_EQ(host.Lines().back(), "QUIT");
        EXPECT_EQ(host.Lines().front(), "EHLO me.test");
        const std::vector<Message> messages = host.Messages();
        ASSERT_EQ(messages.size(), 2U);
        EXPECT_NE(messages[0].data.find("To: b@x, B <b@x>"), std::string::npos);
        EXPECT_EQ(messages[0].data.find("hidden"), std::string::npos);
        EXPECT_NE(messages[1].data.find("second"), std::string::npos);
    }
}

TEST_F(SmtpClientTest, SomeRecipientsRefusedAndTheNextMessageGoesOn) {
    server.extensions = Pipelining;
    server.answerToRecipient = [](const std::string& address) {
        return address == "b@x" ? "550 no such user" : "";
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

// Where the server fails, for the second message on a kept connection. A failure before anything
// was promised is none: the message goes over a new connection.
TEST_F(SmtpClientTest, FailuresOfTheServer) {
    constexpr const char* Closed = "The server closed the connection.";
    const struct {
        const char* name;
        const Lines& extensions;
        const char* step;
        const char* answer;
        int code;
        const char* text;
    } rows[] = {
        {"hangs up at MAIL", Plain, "MAIL", "!", 0, ""},
        {"hangs up at pipelined MAIL", Pipelining, "MAIL", "!", 0, ""},
        {"421 at MAIL", Pipelining, "MAIL", "421 enough", 0, ""},
        {"hangs up at RCPT", Plain, "RCPT", "!", net_error::ConnectionLost, Closed},
        {"silent at RCPT", Plain, "RCPT", "?", net_error::TimedOut,
         "The server did not answer in time."},
        {"hangs up at BDAT", Chunking, "BDAT", "!", net_error::AnswerLost, LostText},
        {"silent after BDAT", Chunking, "(end)", "?", net_error::AnswerLost, LostText},
        {"silent, all of it sent", Chunking, "MAIL", "?", net_error::AnswerLost, LostText},
        {"garbage after the data", Plain, "(end)", "what", net_error::AnswerLost, LostText},
        {"silent after the data", Plain, "(end)", "?", net_error::AnswerLost, LostText},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        FakeSmtpServer host;
        host.extensions = row.extensions;
        host.answer = [&, seen = 0](const std::string& step, const Message&) mutable {
            return step.starts_with(row.step) && ++seen == 2 ? row.answer : "";
        };
        client.MailPort = host.Port();
        client.Timeout = 10;
        ASSERT_TRUE(client.SetAction(Action::Send).Ok());
        if (row.answer[0] == '?') client.Timeout = 1;
        const NetError error = client.SetAction(Action::Send);
        EXPECT_EQ(error.code, row.code);
        EXPECT_EQ(error.description, row.text);
        EXPECT_EQ(client.IsConnected(), row.code == 0);
        EXPECT_TRUE(client.SetAction(Action::Disconnect).Ok());
        EXPECT_EQ(host.Connections(), row.code == 0 ? 2 : 1);
        EXPECT_EQ(host.Messages().size(), row.code == 0 ? 2U : 1U);
    }
}

/// A server with room for two recipients in a transaction.
struct CrampedServer : FakeSmtpServer {
    explicit CrampedServer(const std::vector<std::string>& extensionsOffered) {
        extensions = extensionsOffered;
        answer = [this](const std::string& step, const Message& message) {
            const std::string other = change ? change(step) : "";
            if (!other.empty()) return other;
            return step.starts_with("RCPT") && message.to.size() == 2 ? full : "";
        };
    }
    /// The first letters of the addresses, transaction by transaction.
    std::string Delivered() const {
        std::string delivered;
        for (const Message& message : Messages()) {
            for (const std::string& recipient : message.to)
                delivered += recipient[0];
            delivered += ' ';
        }
        return delivered;
    }

    std::string full = "452 4.5.3 too many";
    std::function<std::string(const std::string& step)> change;
};

std::string Refused(const SmtpClient& client) {
    std::string all;
    for (const RefusedRecipient& recipient : client.RefusedRecipients())
        all += recipient.address.substr(0, 1) + "=" + recipient.answer + ";";
    return all;
}

TEST_F(SmtpClientTest, TooManyRecipientsGoInFurtherTransactions) {
    for (const Lines& extensions : {Plain, Pipelining, Chunking}) {
        for (const char* full : {"452 4.5.3 too many", "552 too many", "450 4.5.3 too many"}) {
            SCOPED_TRACE(std::to_string(extensions.size()) + full);
            CrampedServer cramped(extensions);
            cramped.full = full;
            cramped.change = [](const std::string& step) {
                return step.starts_with("RCPT TO:<d") ? "550 gone" : "";
            };
            client.MailPort = cramped.Port();
            client.SendTo = "a@x, b@x, c@x";
            client.BCc = "d@x, e@x, f@x";
            EXPECT_TRUE(client.SetAction(Action::Send).Ok());
            EXPECT_EQ(Refused(client), "d=550 gone;");
            EXPECT_TRUE(client.SetAction(Action::Disconnect).Ok());
            ASSERT_EQ(cramped.Delivered(), "ab ce f ");
            EXPECT_EQ(cramped.Connections(), 1);
            EXPECT_EQ(cramped.Messages()[2].data, cramped.Messages()[0].data);
        }
    }
    EXPECT_TRUE(errors.empty());
}

TEST_F(SmtpClientTest, FailureOfAFurtherTransactionIsNoneOfTheMessage) {
    const std::string lost = LostText;
    const struct {
        const char* name;
        const char* step;
        const char* answer;
        std::string refused;
        const char* delivered;
        int transactions;
        int connections;
    } rows[] = {
        {"MAIL refused", "MAIL", "450 later", "c=450 later;d=450 later;e=452 4.5.3 too many;",
         "ab ", 2, 1},
        {"nobody taken", "RCPT", "452 disk full",
         "c=452 disk full;d=452 disk full;e=452 disk full;", "ab ", 3, 1},
        {"message refused", "(end)", "554 spam", "c=554 spam;d=554 spam;e=452 4.5.3 too many;",
         "ab ", 2, 1},
        {"answer lost", "(end)", "!", "c=" + lost + ";d=" + lost + ";e=452 4.5.3 too many;", "ab ",
         2, 1},
        {"server leaves in between", "MAIL", "421 enough", "", "ab cd e ", 4, 2},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        CrampedServer cramped(Pipelining);
        cramped.change = [&](const std::string& step) {
            const bool later = cramped.Connections() == 1 && CountLines(cramped, "MAIL") > 1;
            return later && step.starts_with(row.step) ? row.answer : "";
        };
        client.MailPort = cramped.Port();
        client.SendTo = "a@x, b@x, c@x, d@x, e@x";
        EXPECT_TRUE(client.SetAction(Action::Send).Ok());
        EXPECT_EQ(Refused(client), row.refused);
        EXPECT_TRUE(client.SetAction(Action::Disconnect).Ok());
        EXPECT_EQ(cramped.Delivered(), row.delivered);
        EXPECT_EQ(CountLines(cramped, "MAIL"), row.transactions);
        EXPECT_EQ(cramped.Connections(), row.connections);
    }
    EXPECT_TRUE(errors.empty());
}

TEST_F(SmtpClientTest, IdleConnectionIsReopenedWithItsLogon) {
    server.extensions = {"PIPELINING", "CHUNKING", "AUTH GSSAPI PLAIN"};
    client.User = "user";
    client.Password = "pass";
    server.answer = [this](const std::string& step, const Message&) {
        // The server leaves with its answer to the first message.
        return step == "(end)" && server.Connections() == 1 ? "250 queued\r\n421 idle" : "";
    };
    ASSERT_TRUE(client.SetAction(Action::Connect).Ok());
    EXPECT_TRUE(client.LogOn().Ok());
    EXPECT_TRUE(client.SetAction(Action::Send).Ok());
    EXPECT_TRUE(client.SetAction(Action::Send).Ok());
    EXPECT_EQ(server.Connections(), 2);
    EXPECT_EQ(CountLines(server, "AUTH PLAIN AHVzZXIAcGFzcw=="), 2);
    EXPECT_TRUE(errors.empty());

    // Leaving on purpose ends the logon.
    EXPECT_TRUE(client.SetAction(Action::Disconnect).Ok());
    EXPECT_TRUE(client.SetAction(Action::Send).Ok());
    EXPECT_EQ(CountLines(server, "AUTH PLAIN"), 2);
}

TEST_F(SmtpClientTest, Commands) {
    EXPECT_EQ(client.Command("NOOP").description, "Socket is not connected.");
    server.answer = [](const std::string& step, const Message&) {
        return step == "wrong" ? "535 no" : "";
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
    EXPECT_EQ(told, (Lines{"EHLO me.test", "NOOPQUIT", "***"}));
}

TEST_F(SmtpClientTest, CancelFromInsideEvents) {
    server.answer = [](const std::string& step, const Message& message) {
        if (step == "(end)") return message.to.front() == "lost@x" ? "?" : "250 queued";
        return step == "RCPT TO:<silent@x>" ? "?" : "";
    };
    const struct {
        const char* name;
        const char* recipient;
        const char* at;  ///< the protocol line that cancels, "" for the wait
        Action action;
        int code;
    } rows[] = {
        {"while waiting", "silent@x", "", Action::Idle, net_error::Canceled},
        {"drop while waiting", "silent@x", "", Action::Disconnect, net_error::Canceled},
        {"while connecting", "b@x", "220 fake", Action::Idle, net_error::Canceled},
        {"between commands", "b@x", "RCPT TO:<b@x>", Action::Idle, net_error::Canceled},
        {"after the data", "lost@x", "", Action::Idle, net_error::AnswerLost},
        {"at the last answer", "b@x", "250 queued", Action::Disconnect, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        bool reached = false;
        client.SendTo = row.recipient;
        client.onProtocol = [&](Direction, const std::string& text) {
            if (text == "RCPT TO:<silent@x>") reached = true;
            if (row.at[0] != '\0' && text.starts_with(row.at)) {
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
            if (client.SendTo == "lost@x") reached = sent == total;
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
    const struct {
        const char* step;
        const char* answer;
        const char* told;
    } rows[] = {
        {"(greeting)", "554-go\r\n554 away", "554 go away"},
        {"EHLO me.test", "550 not you", "550 not you"},
        {"(greeting)", "SSH-2.0-x", "The server's answer cannot be understood: \"SSH-2.0-x\"."},
    };
    for (const auto& row : rows) {
        FakeSmtpServer host;
        host.answer = [&](const std::string& step, const Message&) {
            return step == row.step || step == "HELO me.test" ? row.answer : "";
        };
        client.MailPort = host.Port();
        EXPECT_EQ(client.SetAction(Action::Connect).description, row.told);
    }
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
    const FakeSmtpServer other;
    ASSERT_TRUE(client.SetAction(Action::Send).Ok());
    client.MailPort = other.Port();
    ASSERT_TRUE(client.SetAction(Action::Send).Ok());
    EXPECT_EQ(server.Lines().back(), "QUIT");
    EXPECT_EQ(other.Messages().size(), 1U);
    client.MailServer = "";
    EXPECT_EQ(client.SetAction(Action::Send).code, net_error::ConnectFailed);
    EXPECT_FALSE(client.IsConnected());
}

TEST_F(SmtpClientTest, SlowGreetingIsAnAnswerAndNotAConnection) {
    server.answer = [](const std::string& step, const Message&) {
        if (step == "(greeting)") std::this_thread::sleep_for(std::chrono::milliseconds(1500));
        return "";
    };
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

    test::FakeDnsServer dns;
    dns.names["silent.test"].silent = true;
    client.DnsServers = dns.Address();
    client.MailServer = "silent.test";
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

    client.MailServer = "unknown.test";
    const NetError error = client.SetAction(Action::Connect);
    EXPECT_EQ(error.code, net_error::NameNotFound) << error.description;
    EXPECT_NE(error.description.find("\"unknown.test\""), std::string::npos);
}

}  // namespace
}  // namespace mailvane
