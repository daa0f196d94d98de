#include <gmock/gmock.h>

#include "core/Paths.h"
#include "merge/MergeBench.h"
#include "merge/tags/CgiTag.h"
#include "merge/tags/ExecuteTag.h"
#include "merge/tags/ProgramTag.h"
#include "platform/net/LoopbackServer.h"

namespace mailvane::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using Words = std::vector<std::string>;

struct ExecuteTagTest : testing::Test, MergeBench {
    ProgramTagRecord SaveProgram(std::int32_t number, const std::string& commandLine) {
        ProgramTagRecord tag;
        tag.TagNumber = number;
        tag.ProgramPath = program;
        tag.CommandLine = commandLine;
        tag.WaitForExit = true;
        EXPECT_TRUE(SaveTag(wb, tag));
        return tag;
    }
    void SaveScript(std::int32_t number, const std::string& url, const std::string& query) {
        CgiTagRecord tag;
        tag.TagNumber = number;
        tag.ScriptUrl = url;
        tag.QueryString = query;
        tag.SaveResult = true;
        tag.ResultFile = folder.File("result");
        EXPECT_TRUE(SaveTag(wb, tag));
    }

    std::string program = folder.Write("look up.sh", "");
    const TagList columns{{}};
};

TEST_F(ExecuteTagTest, RecordFilesAreTheirFieldsInOrder) {
    const ProgramTagRecord written{258, 1, "/p", "a", true, "r", false, 600, true, "Add"};
    ASSERT_TRUE(SaveTag(wb, written));
    const std::string_view programBytes(
        "\2\1\0\0\1\0\0\0\2\0/p\1\0a\xFF\xFF\1\0r\0\0\x58\2\0\0\xFF\xFF\3\0Add", 33);
    EXPECT_EQ(ReadFileText(InProject("pTags/258.ptg")), programBytes);
    EXPECT_EQ(LoadTag<ProgramTagRecord>(wb, "258"), written);

    const CgiTagRecord script{3, 0, "u", "q", false, true, "r", "f", "Head", "Edit"};
    ASSERT_TRUE(SaveTag(wb, script));
    const std::string_view scriptBytes(
        "\3\0\0\0\0\0\0\0\1\0u\1\0q\0\0\xFF\xFF\1\0r\1\0f\4\0Head\4\0Edit", 36);
    EXPECT_EQ(ReadFileText(InProject("cTags/3.ctg")), scriptBytes);
    EXPECT_EQ(LoadTag<CgiTagRecord>(wb, "3"), script);

    WriteFileText(InProject("cTags/3.ctg"), scriptBytes.substr(0, 13));
    EXPECT_EQ(LoadTag<CgiTagRecord>(wb, "3").ScriptUrl, "u");
    EXPECT_EQ(LoadTag<CgiTagRecord>(wb, "3").RequestMethod, "");
}

TEST_F(ExecuteTagTest, FindsProgramTags) {
    SaveProgram(1, "");
    SaveProgram(12, "");
    auto gone = SaveProgram(4, "");
    gone.ProgramPath = "/nowhere";
    SaveTag(wb, gone);
    WriteFileText(folder.File("1.ptg"), ReadFileText(InProject("pTags/1.ptg")));
    struct Row {
        const char* name;
        std::string body;
        std::string html;
        const char* number;
        std::string bodyAfter;
        std::string htmlAfter;
    };
    const std::string good = "##Execute Program 1##";
    const std::string dead = "##Execute Program 4##";
    const std::string unclosed = "##Execute Program 1# #";
    const std::string elsewhere = "##Execute Program ../../../../1##";
    const Row rows[] = {
        {"none", "a ## b", "", "-1", "a ## b", ""},
        {"a good one stays", "a" + good, good, "1", "a" + good, good},
        {"letter case", "##EXECUTE program 12##", "", "12", "##EXECUTE program 12##", ""},
        {"a dead one goes, everywhere", dead + "x##execute program 4##", "", "-1", "x", ""},
        {"only the first is looked at", dead + good, "", "-1", good, ""},
        {"the first good text wins", good, dead, "1", good, dead},
        {"code behind a dead one", dead + "x", good, "1", "x", good},
        {"both dead", dead + "x", dead + "y", "-1", "x", "y"},
        {"no record", "##Execute Program 77##x", "", "-1", "x", ""},
        {"no number", "##Execute Program ##x", "", "-1", "x", ""},
        {"no end", unclosed, "", "-1", unclosed, ""},
        {"the end of another tag", unclosed + good, "", "-1", good.substr(1), ""},
        {"a path in the number", elsewhere + "x", "", "-1", "x", ""},
        {"marks before it", "###" + good.substr(2), "", "1", "###" + good.substr(2), ""},
    };
    for (const Row& row : rows) {
        MessageRecord record;
        record.Body = row.body;
        record.HTMLCode = row.html;
        EXPECT_EQ(ProgramTag({wb, columns}).FindProgramTag(record), row.number) << row.name;
        EXPECT_EQ(record.Body, row.bodyAfter) << row.name;
        EXPECT_EQ(record.HTMLCode, row.htmlAfter) << row.name;
    }
    EXPECT_EQ(FileSize(InProject("pTags/77.ptg")), 0) << "the read leaves an empty file";
    EXPECT_EQ(FileSize(InProject("pTags/.ptg")), 0);
}

TEST_F(ExecuteTagTest, FindsScriptTags) {
    const std::tuple<const char*, const char*, const char*, const char*> rows[] = {
        {"none", "a", "b", "-1"},
        {"a record that is not there", "a##execute cgi 5##", "##Execute CGI 6##", "5"},
        {"the code when the body has none", "##Execute Program 1##", "##Execute CGI 6##", "6"},
        {"no end", "##Execute CGI 5", "##Execute CGI 6##", ""},
    };
    for (const auto& [name, body, html, number] : rows) {
        MessageRecord record;
        record.Body = body;
        record.HTMLCode = html;
        EXPECT_EQ(CgiTag({wb, columns}).FindCgiTag(record), number) << name;
        EXPECT_EQ(record.Body, body) << name;
    }
}

TEST_F(ExecuteTagTest, AValueStaysOneArgument) {
    const std::string hostile = "a \"b\" ; $(touch x) | `y` [Email] \\\" 'c";
    MakeTable("People", {{.name = "First \"Name"}, {.name = "Email"}, {.name = "City"}},
              {{hostile, "ann@x", Cell()}, {"Bob", "bob@x", ""}});
    SaveProgram(1, "p=1 /[first \"name] \"x [Email] y\" [City] [Nobody] --");
    Message("##Execute Program 1##");
    Merged();
    const std::string filled = "/a \"b\" ; $(touch x) | `y` ann@x \\\" 'c";
    EXPECT_THAT(processes.ran,
                ElementsAre(Words{program, "p=1", filled, "x ann@x y", "[City]", "[Nobody]", "--"},
                            Words{program, "p=1", "/Bob", "x bob@x y", "", "[Nobody]", "--"}));
}

TEST_F(ExecuteTagTest, ProgramsRunOnceAMessageAndTheirTagsStay) {
    MakeRecipients(40);
    SaveProgram(1, "[Email]");
    SaveProgram(2, "second");
    Message("##execute program 1####Execute Program 2##[Name]", "##Execute Program 2##");
    const auto messages = Merged();
    ASSERT_EQ(messages.size(), 40u);
    EXPECT_EQ(messages[39].Body, "##execute program 1####Execute Program 2##N40");
    ASSERT_EQ(processes.ran.size(), 40u);
    EXPECT_EQ(processes.ran[0], (Words{program, "a1@x"}));
    EXPECT_EQ(processes.ran[39], (Words{program, "a40@x"}));
    EmptyOutbox();

    EXPECT_EQ(Merged(Packets("40")).at(0).Body, "##execute program 1####Execute Program 2##");
    EXPECT_EQ(processes.ran.size(), 40u) << "nothing runs for packets";
}

/// What a row brings in runs nothing, not even from the code that is left of the row before.
TEST_F(ExecuteTagTest, TagsCountOnlyWhereTheUserWroteThem) {
    SaveProgram(2, "");
    SaveScript(2, "127.0.0.1:1", "");
    const std::string tags = "##Execute Program 2####Execute CGI 2##";
    MakeTable("People", {{.name = "Email"}, {.name = "Name"}, {.name = "Page"}},
              {{"a@x", tags, "page"}, {"b@x", tags, "gone"}, {"c@x", "C", "gone"}});
    folder.Write("page.html", "[Name]");
    Message("Dear [Name]").lstHTML.SetItems({folder.File("[Page].html")});
    EXPECT_EQ(Merged().at(1).HTMLCode, tags);
    EXPECT_TRUE(processes.ran.empty());
    EXPECT_TRUE(shell.panels.end() == std::ranges::find(shell.panels, "Executing CGI script..."));
}

/// The program of the first row's code goes on running for rows that name none, with what it was
/// told for that row.
TEST_F(ExecuteTagTest, AFoundTagRunsForAllLaterMessages) {
    MakeRecipients(4);
    SaveProgram(7, "[Email]");
    folder.Write("N2.html", "##Execute Program 7##");
    folder.Write("N4.html", "nothing");
    frmViewMerge& view = Message();
    view.lstHTML.SetItems({folder.File("[Name].html")});
    const auto messages = Merged();
    ASSERT_EQ(messages.size(), 4u);
    EXPECT_THAT(processes.ran, ElementsAre(Words{program, "a2@x"}, Words{program, "a3@x"},
                                           Words{program, "a3@x"}));
    EXPECT_EQ(messages[2].HTMLCode, "##Execute Program 7##");
}

TEST_F(ExecuteTagTest, WaitsForSecondsOrTheEnd) {
    MakeRecipients(1);
    Message("##Execute Program 1##");
    struct Row {
        const char* name;
        bool waitForExit;
        const char* commandLine;
        std::int32_t seconds;
        bool starts;
        std::vector<std::size_t> calls;  ///< of programs run, programs started, documents opened
    };
    const Row rows[] = {
        {"the end", true, "", 5, true, {1, 0, 0}},
        {"seconds", false, "a b", 5, true, {0, 1, 0}},
        {"seconds, no arguments", false, "", 5, true, {0, 1, 0}},
        {"no seconds", false, "", 0, true, {0, 1, 0}},
        {"a document", false, "", 5, false, {0, 1, 1}},
        {"a document with arguments", false, "a", 0, false, {0, 1, 0}},
        {"a program that cannot be started", true, "", 5, false, {1, 0, 0}},
    };
    for (const Row& row : rows) {
        auto tag = SaveProgram(1, row.commandLine);
        tag.WaitForExit = row.waitForExit;
        tag.SecondsToWait = row.seconds;
        SaveTag(wb, tag);
        processes.ran.clear();
        processes.started.clear();
        processes.opened.clear();
        processes.succeeds = row.starts;
        const auto began = clock.Monotonic();
        EXPECT_EQ(Merged().size(), 1u) << row.name;
        EXPECT_THAT(row.calls, ElementsAre(processes.ran.size(), processes.started.size(),
                                           processes.opened.size()))
            << row.name;
        const std::chrono::seconds waited(row.waitForExit ? 0 : row.seconds);
        EXPECT_GE(clock.Monotonic() - began, waited) << row.name;
        EXPECT_LT(clock.Monotonic() - began, waited + std::chrono::seconds(1)) << row.name;
        EmptyOutbox();
    }
    EXPECT_TRUE(Prompts().Shown().empty()) << "nothing is reported";
    EXPECT_THAT(shell.panels, testing::Contains("Executing program look up..."));
}

TEST_F(ExecuteTagTest, CancelEndsTheWait) {
    LoopbackServer silent([](Peer& peer, int) {
        while (peer.ReadLine())
            continue;
    });
    MakeRecipients(3);
    SaveProgram(1, "");
    auto pausing = SaveProgram(2, "");
    pausing.WaitForExit = false;
    pausing.SecondsToWait = 600;
    SaveTag(wb, pausing);
    SaveScript(3, "127.0.0.1:" + std::to_string(silent.Port()), "");
    processes.runsOn = true;
    for (const char* tag :
         {"##Execute Program 1##", "##Execute Program 2##", "##Execute CGI 3##"}) {
        Message(tag);
        frmMerge& dialog = Dialog();
        int yields = 0;
        const auto pressed = windows.yielded.Observe([&] {
            if (++yields == 5) dialog.cmdCancel.Press();
        });
        const auto before = clock.Monotonic();
        Prompts().QueueBox(BoxAnswer::No, "Do you want to delete all generated messages");
        dialog.cmdStart.Press();
        EXPECT_EQ(Outbox().size(), 1u) << tag;
        EXPECT_LT(clock.Monotonic() - before, std::chrono::seconds(5)) << tag;
        EmptyOutbox();
    }
}

TEST_F(ExecuteTagTest, ScriptsGetEncodedValues) {
    std::vector<std::string> lines;
    LoopbackServer web([&](Peer& peer, int number) {
        lines.push_back(peer.ReadLine().value_or(""));
        while (!peer.ReadLine().value_or("").empty())
            continue;
        peer.Send("HTTP/1.1 200 OK\r\nContent-Length: 1\r\n\r\n" + std::to_string(number));
    });
    MakeTable("People", {{.name = "Email"}, {.name = "Name"}},
              {{"ann@x", "A&B=[Email] %/\"#"}, {"bob@x", Cell()}});
    SaveScript(1, "http://127.0.0.1:" + std::to_string(web.Port()) + "/s.pl", "n=[NAME]&m=[Email]");
    Message("##Execute CGI 1##");
    EXPECT_EQ(Merged().at(0).Body, "##Execute CGI 1##");
    EXPECT_THAT(lines, ElementsAre("GET /s.pl?n=A%26B%3D%5BEmail%5D+%25%2F%22%23&m=ann@x HTTP/1.1",
                                   "GET /s.pl?n=[NAME]&m=bob@x HTTP/1.1"));
    EXPECT_EQ(folder.Read("result"), "1");
    EXPECT_THAT(shell.panels, testing::Contains("Executing CGI script..."));
    EmptyOutbox();

    auto unsaved = LoadTag<CgiTagRecord>(wb, "1");
    unsaved.SaveResult = false;
    SaveTag(wb, unsaved);
    Merged();
    EXPECT_EQ(ReadFileText(InProgramFolder("tmp.tmp")), "3");
    EmptyOutbox();
    Message("##Execute CGI 99##");
    EXPECT_EQ(Merged().size(), 2u) << "an empty address is called in vain";
}

}  // namespace
}  // namespace mailvane::test
