#include <gmock/gmock.h>

#include "send/SendBench.h"
#include "send/report/DeliveryNotes.h"
#include "send/report/frmDeliveryReport.h"

namespace mailvane {
namespace {

using test::SendBench;
using Outcomes = std::vector<DomainOutcome>;

const DateTime Morning = *DateTime::FromParts(2024, 3, 15, 9, 5, 7);

DeliveryRun SendOf(std::int64_t sent, DateTime began = Morning) {
    DeliveryRun run;
    run.began = began;
    run.domains = {{"example.com", sent, 0}};
    return run;
}

/// A report of its own, and what reading it gives.
struct DeliveryReport : testing::Test {
    std::vector<DeliveryRun> Read() {
        std::string error;
        std::vector<DeliveryRun> runs = ReadDeliveryRuns(path, error);
        EXPECT_EQ(error, "");
        return runs;
    }

    test::TempFolder folder;
    const std::string path = folder.File("delivery.txt");
};

TEST_F(DeliveryReport, KeepsTextsAsTheyAre) {
    const std::string tab = "tab\tquote\"comma,";
    const std::vector<std::string> texts = {
        "plain", "", " blanks ", tab, "550-one\r\n550 two", "\"", "\xC3\xA4\xF0\x9F\x98\x80",
        "=1+1"};
    DeliveryRun run = SendOf(3);
    run.table = tab;
    run.left = 2;
    run.domains.push_back({"", 0, 1});
    for (const std::string& text : texts)
        run.refused.push_back({text, text});
    ASSERT_EQ(AddDeliveryRun(path, run), "");

    const std::vector<DeliveryRun> runs = Read();
    ASSERT_EQ(runs.size(), 1u);
    EXPECT_EQ(runs[0].table, tab);
    EXPECT_EQ(runs[0].began, Morning);
    EXPECT_EQ(runs[0].left, 2);
    EXPECT_EQ(runs[0].domains, run.domains);
    ASSERT_EQ(runs[0].refused.size(), texts.size());
    for (std::size_t i = 0; i < texts.size(); ++i)
        EXPECT_EQ(runs[0].refused[i].address + runs[0].refused[i].answer, texts[i] + texts[i]);
}

TEST_F(DeliveryReport, TextsFromOutsideBecomeHarmless) {
    const std::pair<std::string, std::string> cases[] = {
        {std::string("550 a\0b\x1B[31m\x7F", 13), "550 a b [31m "},
        {"550 \xE4\xFF", "550 \xC3\xA4\xC3\xBF"},
        {std::string(499, 'x') + "\xC3\xA4", std::string(499, 'x')},
    };
    for (const auto& [text, harmless] : cases)
        EXPECT_EQ(ReportText(text), harmless);
}

TEST_F(DeliveryReport, KeepsTheLast20RunsAndTheLargestDomains) {
    DeliveryRun many = SendOf(1);
    for (int i = 0; i < 1500; ++i)
        many.domains.push_back({"d" + std::to_string(i) + ".example", 2, 1});
    for (int i = 0; i < 20; ++i)
        ASSERT_EQ(AddDeliveryRun(path, SendOf(i)), "");
    ASSERT_EQ(AddDeliveryRun(path, many), "");
    const std::vector<DeliveryRun> runs = Read();
    ASSERT_EQ(runs.size(), 20u);
    EXPECT_EQ(runs[0].Sent(), 1) << "the first one has gone";
    EXPECT_EQ(runs[19].domains.size(), DeliveryRun::MostDomains + 1);
    EXPECT_EQ(runs[19].Sent(), 3001);
    EXPECT_EQ(runs[19].Refused(), 1500);
    EXPECT_EQ(LargestDomains(runs[19].domains, 2),
              (Outcomes{{"d0.example", 2, 1}, {"d1.example", 2, 1}, {OtherDomains, 2997, 1498}}));
}

TEST_F(DeliveryReport, DamagedLinesArePassedOver) {
    ASSERT_EQ(AddDeliveryRun(path, SendOf(5)), "");
    const std::string good = ReadFileText(path);
    const std::string second =
        "2024-03-15 10:00:00,send,run,,,,0,1,\r\n"
        "2024-03-15 10:00:00,send,domain,b.example,7,0,,,\r\n";
    const std::string lines[] = {
        "",
        "nonsense\r\n",
        "Began,Run,Entry,Name,Sent,Refused,Generated,Left,Answer\r\n",
        "2024-03-15 09:05:07,send,domain,x.example,many,0,,,\r\n",
        "2024-03-15 09:05:07,send,domain,x.example,-1,99999999999999999999,,,\r\n",
        "2024-02-30 10:00:00,send,run,,,,0,0,\r\n2024-02-30 10:00:00,send,domain,x,9,9,,,\r\n",
        "2024-03-15 10:00:00,fetch,run,,,,0,0,\r\n2024-03-15 10:00:00,fetch,refused,x,,,,,y\r\n",
        "2024-03-15 09:05:07,send,domain,\xFF,9,9,,,\r\n",
        std::string(300, '\0') + "\r\n",
    };
    for (const std::string& line : lines) {
        SCOPED_TRACE(line);
        WriteFileText(path, good + line + second);
        const std::vector<DeliveryRun> runs = Read();
        ASSERT_EQ(runs.size(), 2u);
        EXPECT_EQ(runs[0].domains, (Outcomes{{"example.com", 5, 0}}));
        EXPECT_EQ(runs[1].domains, (Outcomes{{"b.example", 7, 0}}));
        EXPECT_TRUE(runs[0].refused.empty());
    }
    WriteFileText(path, good + "\"never closed\r\n" + second);
    ASSERT_EQ(AddDeliveryRun(path, SendOf(6)), "");
    EXPECT_EQ(Read().size(), 2u);
}

/// A send run through the server, and the report of the project.
struct DeliveryRuns : testing::Test, SendBench {
    DeliveryRuns() { wb.state.UnattendedRun = true; }

    std::vector<DeliveryRun> Runs() {
        std::string error;
        return ReadDeliveryRuns(DeliveryReportPath(wb, wb.state.ProjectFolder), error);
    }
    frmDeliveryReport& Form() {
        ShowDeliveryReport(wb);
        return wb.forms.Get<frmDeliveryReport>();
    }
    static std::string Texts(const Grid& grid) {
        std::string text;
        for (const auto& row : grid.Rows()->Read(0, grid.RowCount())) {
            for (const std::string& cell : row)
                text += cell + "|";
            text += "\n";
        }
        return text;
    }
};

TEST_F(DeliveryRuns, EveryAddressIsCountedWithWhatBecameOfIt) {
    server.answerToRecipient = [](const std::string& address) {
        return address.starts_with("gone") ? "550 No <b>" + address + "</b> here" : "";
    };
    EXPECT_EQ(Form().lblSummary.Text(), "No run has been recorded yet.");
    for (const char* to : {"a@example.com, b@Example.COM, a@example.com",
                           "Doe, John <c@example.com>", "d@example.com, gone1@test.example",
                           "gone2@test.example, gone3@example.com", "nobody", ""})
        Queue(to);
    Send();

    EXPECT_EQ(Delivered(), "a@example.com b@Example.COM c@example.com d@example.com ");
    ASSERT_EQ(Runs().size(), 1u);
    const DeliveryRun run = Runs()[0];
    EXPECT_EQ(run.domains, (Outcomes{{"example.com", 4, 1}, {"", 0, 2}, {"test.example", 0, 2}}));
    EXPECT_EQ(run.left, 3);
    EXPECT_EQ(wb.forms.Get<frmDeliveryReport>().cmbRun.Count(), 0) << "still as it was opened";
    frmDeliveryReport& form = Form();
    EXPECT_EQ(form.cmbRun.Text().substr(9), " 10:30:00 AM  Send: 4 sent, 5 refused, 3 left");
    EXPECT_EQ(form.lblSummary.Text(),
              "Sent to 4 addresses, refused for 5. 3 messages were left in the Outbox.");
    EXPECT_EQ(form.chtDomains.ShownText(),
              "example.com: Sent 4, Refused 1\r\n(no valid address): Sent 0, Refused 2\r\n"
              "test.example: Sent 0, Refused 2");
    EXPECT_EQ(Texts(form.grdDomains),
              "example.com|4|1|\n(no valid address)|0|2|\ntest.example|0|2|\n");
    EXPECT_EQ(Texts(form.grdRefused),
              "gone1@test.example|550 No <b>gone1@test.example</b> here|\n"
              "gone2@test.example|550 No <b>gone2@test.example</b> here|\n"
              "gone3@example.com|550 No <b>gone3@example.com</b> here|\n"
              "nobody|Invalid e-mail address.|\n|Invalid e-mail address.|\n");

    server.answerToRecipient = nullptr;
    Send();
    Form().cmbRun.SetByUser("#1");
    EXPECT_EQ(form.grdRefused.RowCount(), 5u) << "the first run is still there";
}

TEST_F(DeliveryRuns, PartsOfAMessageAreCountedInTheRunThatSentThem) {
    MessageRecord record;
    record.To = "a@one.example, b@one.example, c@two.example";
    record.BCC = "d@three.example";
    DeliveryNotes first(Morning);
    first.NotePart({"a@one.example", "b@one.example"});
    first.NoteMessage(record, {}, {{"b@one.example", "550 Full"}}, "two.example: no route");
    const DeliveryRun part = first.Take(1);
    EXPECT_EQ(part.Sent(), 1);
    ASSERT_EQ(part.refused.size(), 3u);
    EXPECT_EQ(part.refused[0].answer, "550 Full");
    EXPECT_EQ(part.refused[1].address, "c@two.example");
    EXPECT_EQ(part.refused[2].answer, "two.example: no route");
    DeliveryNotes second(Morning);
    second.NoteMessage(record, {"a@one.example", "b@one.example"}, {}, "");
    EXPECT_EQ(LargestDomains(second.Take(0).domains, 9),
              (Outcomes{{"three.example", 1, 0}, {"two.example", 1, 0}}));
}

TEST_F(DeliveryRuns, HowARunEndsMakesNoDifference) {
    Send();
    EXPECT_TRUE(Runs().empty()) << "there was nothing to send";

    QueueMany(3);
    server.answer = [this](const std::string& step, const auto&) {
        if (step == "(end)" && server.Messages().size() == 1) wb.state.CancelRequested = true;
        return std::string();
    };
    Send();
    ASSERT_EQ(Runs().size(), 1u);
    EXPECT_EQ(Runs()[0].Sent(), 2);
    EXPECT_EQ(Runs()[0].left, 1);

    // A run that dies leaves its messages to the next one.
    const auto store = wb.state.MessageStore->OpenRecordset("SELECT min(ID) FROM [Outbox]");
    RecordAccepted(static_cast<std::int32_t>((*store)->Get(0)->NumberOr(0)));
    Send();
    ASSERT_EQ(Runs().size(), 2u);
    EXPECT_EQ(Runs()[1].Sent(), 1);
    EXPECT_EQ(Delivered(), "p1@example.com p2@example.com ");
}

TEST_F(DeliveryRuns, ReportThatCannotBeWrittenIsToldByTheForm) {
    const std::string path = DeliveryReportPath(wb, wb.state.ProjectFolder);
    ASSERT_TRUE(MakeFolders(path));
    QueueMany(1);
    wb.state.UnattendedRun = false;
    Send();
    EXPECT_EQ(ErrorLog() + FirstBox(), "");
    EXPECT_THAT(Form().lblSummary.Text(), testing::HasSubstr("The run of 3/15/2024"));
    EXPECT_THAT(Form().lblSummary.Text(), testing::HasSubstr("could not be added"));
}

}  // namespace
}  // namespace mailvane
