#include <gmock/gmock.h>

#include <atomic>

#include "core/text/Text.h"
#include "send/SendBench.h"

namespace mailvane {
namespace {

using test::SendBench;
using testing::HasSubstr;

struct Form {
    const char* name;
    std::vector<std::string> extensions;
};
const std::vector<Form> Forms = {
    {"one by one", {}}, {"pipelined", {"PIPELINING"}}, {"chunks", {"PIPELINING", "CHUNKING"}}};

constexpr const char* Lost = "The server's answer was lost; the message may have been accepted.";
constexpr const char* Closed = "The server closed the connection.";
constexpr const char* Endless = "The server's answer has a line without an end.";
constexpr const char* Canceled = "The operation was canceled.";
constexpr std::size_t LargeBody = 8 * 1024 * 1024;  // more than the buffers of two sockets

std::string Unclear(const std::string& line) {
    return "The server's answer cannot be understood: \"" + line + "\".";
}

constexpr const char* Greeting = "(greeting)";
constexpr const char* Hello = "LO ";  // EHLO and HELO

enum : unsigned {
    Always = 1,  ///< the server does it whenever it comes to the step, not only the first time
    Large = 2,   ///< the message is large
    Partly = 4   ///< one of the two recipients gets the message
};

/// How the server treats the second message, or the first connection.
struct Failure {
    const char* name;
    const char* step;           ///< a part of the step of FakeSmtpServer::answer
    const char* answer;         ///< the server's at that step
    std::string error;          ///< what the log says of it; "" when all is well in the end
    std::string chunked = "=";  ///< the same when the message goes in chunks, where that differs
    int connections = 2;
    unsigned flags = 0;

    const std::string& ErrorIn(const Form& form) const {
        return form.extensions.size() == 2 && chunked != "=" ? chunked : error;
    }
};

/// An Outbox of three messages, the second one with two recipients.
class FailureBench : public SendBench {
public:
    FailureBench(const Form& form, const Failure& row)
        : atConnection_(row.step == std::string(Greeting) || row.step == std::string(Hello)) {
        server.extensions = form.extensions;
        server.answer = [this, row](const std::string& step, const auto& message) -> std::string {
            const bool here =
                atConnection_ ? server.Connections() == 1 : message.from == "s2@example.com";
            if (!here || step.find(row.step) == std::string::npos) return "";
            const bool again = reached.exchange(true);
            return again && (row.flags & Always) == 0 ? "" : row.answer;
        };
        Queue(Message("p1@example.com", "s1@example.com"));
        MessageRecord second = Message("p2@example.com,q2@example.com", "s2@example.com");
        while ((row.flags & Large) != 0 && second.Body.size() < LargeBody)
            second.Body += "\r\n.a line of the body that begins with a dot";
        Queue(second);
        Queue(Message("p3@example.com", "s3@example.com"));
        EXPECT_TRUE(wb.state.MessageStore->Execute("UPDATE Outbox SET Retries = 2").Ok());
    }

    /// The run is over: the one message is left with `error`, the others went out once.
    void ExpectFailed(const std::string& error, bool canceled = false) {
        const std::string to = atConnection_ ? "p1@example.com" : "p2@example.com,q2@example.com";
        const std::vector<MessageRecord> rows = Rows("Outbox");
        ASSERT_EQ(rows.size(), canceled ? (atConnection_ ? 3u : 2u) : 1u);
        EXPECT_EQ(rows[0].To, to);
        EXPECT_EQ(rows[0].Status, "error");
        EXPECT_EQ(rows[0].Retries, 3);
        std::string untried;
        for (std::size_t i = 1; i < rows.size(); ++i) {
            EXPECT_EQ(rows[i].Retries, 2);
            untried += rows[i].To;
        }
        ExpectDelivered(to, untried, error == Lost);
        const std::string text = "Error: " + error + "\r\n";
        const std::string message = "To: " + to + "\r\nSubject: Hello\r\nDate: 3/15/2024";
        const std::string from = "From: " + rows[0].From + "\r\n";
        EXPECT_THAT(ErrorLog(), HasSubstr(text + message + "\r\n\r\n"));
        EXPECT_THAT(ErrorLog(), HasSubstr(text + from + message + " 10:"));
        const auto doubtful = CountOccurrences(promptText, "1 message may have been accepted");
        EXPECT_EQ(doubtful, error == Lost ? 1 : 0);
    }

    /// Every recipient has the message once, but for those of `failed` and `untried`; with
    /// `perhaps` the failed ones may have it.
    void ExpectDelivered(const std::string& failed, const std::string& untried, bool perhaps) {
        const std::string delivered = Delivered();
        for (const char* name : {"p1", "p2", "q2", "p3"}) {
            const auto count = CountOccurrences(delivered, name);
            const bool doubtful = ContainsText(failed, name);
            const bool wanted = !doubtful && !ContainsText(untried, name);
            EXPECT_TRUE(count == (wanted ? 1 : 0) || (doubtful && perhaps && count == 1))
                << name << " in " << delivered;
        }
        EXPECT_FALSE(wb.state.RunBusy);
        EXPECT_FALSE(wb.forms.IsFormLoaded("frmStatusEmail"));
        EXPECT_TRUE(reached);
    }

    std::atomic<bool> reached{false};

private:
    const bool atConnection_;
};

/// Each failure in each form in which it can happen.
void PlayFailures(const std::vector<Failure>& rows) {
    for (const Failure& row : rows) {
        for (const Form& form : Forms) {
            const bool chunks = form.extensions.size() == 2;
            if (row.step == std::string(chunks ? "DATA" : "(chunk)")) continue;
            SCOPED_TRACE(std::string(row.name) + ", " + form.name);
            FailureBench bench(form, row);
            bench.Send();
            const std::string& error = row.ErrorIn(form);
            if ((row.flags & Partly) != 0) {
                bench.ExpectDelivered("q2@example.com", "", false);
                EXPECT_EQ(bench.Recipients("Outbox"), "");
                EXPECT_EQ(bench.ErrorLog(), "Error: " + error +
                                                "\r\nTo: q2@example.com\r\nSubject: Hello\r\n"
                                                "Date: 3/15/2024\r\n\r\n");
            } else if (error.empty()) {
                bench.ExpectDelivered("", "", false);
                EXPECT_EQ(bench.Recipients("Outbox") + bench.ErrorLog(), "");
            } else {
                bench.ExpectFailed(error);
            }
            const bool onceInChunks = chunks && error == Lost && (row.flags & Always) != 0;
            EXPECT_EQ(bench.server.Connections(), onceInChunks ? 2 : row.connections);
        }
    }
}

TEST(SendFailures, TheServerDoesNotWantToTalk) {
    PlayFailures({
        {"greeting 554", Greeting, "554 go away", "554 go away"},
        {"greeting 421", Greeting, "421-busy\r\n421 later", "421 busy later"},
        {"EHLO and HELO refused", Hello, "550 not you", "550 not you", "=", 2, Always},
        {"drop at the greeting", Greeting, "!", Closed},
        {"garbage for a greeting", Greeting, "SSH-2.0-x", Unclear("SSH-2.0-x")},
        {"endless line for a greeting", Greeting, "*x", "The server's answer has no end."},
        {"endless answer to EHLO", Hello, "*250-\r\n", "The server's answer has no end."},
    });
}

TEST(SendFailures, TheServerRefusesTheMessage) {
    PlayFailures({
        {"MAIL 4xx", "MAIL", "451 later", "451 later", "=", 1},
        {"MAIL 5xx", "MAIL", "553 who", "553 who", "=", 1},
        {"one recipient 4xx", "RCPT TO:<q2", "450 busy", "450 busy", "=", 1, Partly | Always},
        {"one recipient 5xx", "RCPT TO:<q2", "550-no\r\n550 user", "550 no user", "=", 1, Partly},
        {"all recipients 4xx", "RCPT", "451 later", "451 later", "=", 1, Always},
        {"all recipients 5xx", "RCPT", "550 no user", "550 no user", "=", 1, Always},
        {"DATA 4xx", "DATA", "451 later", "451 later", "=", 1},
        {"DATA 5xx", "DATA", "554 no", "554 no", "=", 1},
        {"end of data 4xx", "(end)", "452 full", "452 full", "=", 1},
        {"end of data 5xx", "(end)", "554 spam", "554 spam", "=", 1},
        {"a chunk", "(chunk)", "552 too much", "552 too much", "=", 1, Large},
        {"421 at MAIL", "MAIL", "421 enough", ""},
        {"421 at every MAIL", "MAIL", "421 enough", "421 enough", "=", 3, Always},
        {"421 at RCPT", "RCPT", "421 enough", "421 enough"},
        {"421 at DATA", "DATA", "421 enough", "421 enough"},
        {"421 at the end of data", "(end)", "421 enough", "421 enough"},
        {"421 in the middle of the data", "(body)", "421 enough", "421 enough", "=", 2, Large},
    });
}

TEST(SendFailures, TheServerHangsUpOrTalksNonsense) {
    PlayFailures({
        {"at MAIL", "MAIL", "!", "", Lost},
        {"at every MAIL", "MAIL", "!", Closed, Lost, 3, Always},
        {"at MAIL of a large message", "MAIL", "!", "", "=", 2, Large},
        {"at every MAIL of a large message", "MAIL", "!", Closed, "=", 3, Always | Large},
        {"at RCPT", "RCPT", "!", Closed, Lost},
        {"at DATA", "DATA", "!", Closed},
        {"in the middle of the data", "(body)", "!", Closed, "=", 2, Large},
        {"after the end of data", "(end)", "!", Lost},
        {"nonsense at MAIL", "MAIL", "what", Unclear("what"), Lost},
        {"nonsense at DATA", "DATA", "250 fine", Unclear("250 fine")},
        {"nonsense after the end of data", "(end)", "<html>", Lost},
        {"endless line at DATA", "DATA", "*354 x", Endless},
        {"endless line after the end of data", "(end)", "*250 x", Lost},
        {"endless answer at RCPT", "RCPT", "*250-\r\n", Unclear("250-"), Lost},
        {"endless line in the middle of the data", "(body)", "*x", Endless, "=", 2, Large},
    });
}

// The server falls silent, and the user, or the time-out on silence, gives the message up.
TEST(SendFailures, TheUserLosesPatience) {
    const std::vector<Failure> rows = {
        {"at the greeting", Greeting, "?", "The connection was canceled."},
        {"after EHLO", Hello, "?", "The connection was canceled."},
        {"at MAIL", "MAIL", "?", Canceled, Lost},
        {"at RCPT", "RCPT", "?", Canceled, Lost},
        {"in the middle of the data", "(body)", "?", Canceled, "=", 2, Large},
        {"waiting for the last answer", "(end)", "?", Lost},
    };
    const std::vector<std::pair<const char*, void (*)(SendBench&, frmStatusEmail&)>> ways = {
        {"Next", [](SendBench&, frmStatusEmail& status) { status.cmdNext.Press(); }},
        {"Cancel", [](SendBench&, frmStatusEmail& status) { status.OnCloseBox(); }},
        {"time-out",
         [](SendBench& bench, frmStatusEmail&) { bench.clock.Advance(std::chrono::minutes(3)); }},
    };
    for (const Failure& row : rows) {
        for (const Form& form : Forms) {
            for (const auto& [way, giveUp] : ways) {
                SCOPED_TRACE(std::string(row.name) + ", " + form.name + ", " + way);
                FailureBench bench(form, row);
                bench.settings.chkSndTimeOut.SetChecked(true);
                bench.settings.Slider1.SetValue(3);
                bench.PressOnce([&] { return bench.reached.load(); },
                                [&](frmStatusEmail& status) { giveUp(bench, status); });
                bench.Send();
                const bool canceled = std::string(way) == "Cancel";
                bench.ExpectFailed(row.ErrorIn(form), canceled);
                EXPECT_EQ(bench.server.Connections(), canceled ? 1 : 2);
                EXPECT_FALSE(bench.wb.state.CancelRequested);
            }
        }
    }
}

}  // namespace
}  // namespace mailvane
