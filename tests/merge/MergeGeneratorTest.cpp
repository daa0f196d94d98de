#include "core/Machine.h"
#include "merge/MergeBench.h"
#include "merge/run/MergeGenerator.h"

namespace mailvane::test {
namespace {

using testing::Test;

struct MergeGeneratorTest : Test, MergeBench {
    /// One row: First Name "Ann", Email, Note, Joined ...; and a second one of Nulls but for Note
    /// and Member.
    MergeGeneratorTest() {
        MakeTable("People",
                  {{.name = "First Name"},
                   {.name = "Email"},
                   {.name = "Note", .type = FieldType::Memo},
                   {.name = "Joined", .type = FieldType::Date},
                   {.name = "Member", .type = FieldType::Boolean},
                   {.name = "Visits", .type = FieldType::Long},
                   {.name = "Paid", .type = FieldType::Double}},
                  {{"Ann", "ann@x", "[First Name][Joined]\r\n[!SYSDATE]", "2024-02-29 00:00:00",
                    "1", "-12", "1234567.5"},
                   {std::nullopt, std::nullopt, "second", std::nullopt, "0"}});
    }
};

TEST_F(MergeGeneratorTest, FillsInTags) {
    struct Row {
        const char* name;
        std::string text;
        std::string body;     ///< personal, first row
        std::string from;     ///< the same text as the sender line
        std::string nullRow;  ///< body of the second row
        std::string bulk;
    };
    const std::string twoPrograms = "##Execute Program 1####Execute Program 2##";
    const std::string second = "##Execute Program 2##";
    const std::string gone = "a##execute PROGRAM 4##b##Execute Program 4##";
    const std::string now = "10:30:00 AM 3/15/2024";
    const Row rows[] = {
        {"a tag in any letter case", "Hi [first NAME]!", "Hi Ann!", "Hi Ann!", "Hi !", "Hi !"},
        {"the default text of a date and a truth value", "[Joined] [Member]", "2/29/2024 True",
         "2/29/2024 True", " False", " "},
        {"numbers", "[Visits] [Paid]", "-12 1234567.5", "-12 1234567.5", " ", " "},
        {"an earlier tag in a value goes, a later one is filled in, a system tag too", "[Note]",
         "2/29/2024\r\n3/15/2024", "2/29/2024\r\n[!SYSDATE]", "second", ""},
        {"time and date", "[!systime] [!SYSDATE]", now, "[!systime] [!SYSDATE]", now, now},
        {"resources there are none", "a[!SYSRESOURCES]b", "ab", "a[!SYSRESOURCES]b", "ab", "ab"},
        {"a program that is not there", gone, "ab", gone, "ab", gone},
        {"only the first program is looked at", twoPrograms, second, twoPrograms, second,
         twoPrograms},
    };
    const auto check = [this](const Row& row) {
        Message(row.text, row.text, row.text);
        const auto personal = Merged();
        ASSERT_EQ(personal.size(), 2u) << row.name;
        EXPECT_EQ(personal[0].Body, row.body) << row.name;
        EXPECT_EQ(personal[0].From, row.from) << row.name;
        EXPECT_EQ(personal[1].Body, row.nullRow) << row.name;
        EmptyOutbox();
        const auto bulk = Merged(Packets("1"));
        ASSERT_EQ(bulk.size(), 2u) << row.name;
        EXPECT_EQ(bulk[0].Body, row.bulk) << row.name;
        EmptyOutbox();
    };
    for (const Row& row : rows)
        check(row);
    for (const char* text :
         {"[Nickname]", "[!SYSNAME]", "##Execute Program 1", "##Execute CGI 1##"})
        check({"no tag to fill in", text, text, text, text, text});
}

TEST_F(MergeGeneratorTest, SystemTagsStandInEveryTextButTheSender) {
    const std::string tags = "[!systime] [!SYSDATE] [!SysIP] [!SYSRESOURCES]";
    const std::string values = "10:30:00 AM 3/15/2024 " + GetLocalIpAddress() + " ";
    frmViewMerge& view = Message(tags, "##Execute Program 1##" + tags, tags);
    view.lstHTML.SetItems({folder.File("page.html")});
    folder.Write("page.html", tags);
    const auto messages = Merged();
    const MessageRecord& made = messages[0];
    EXPECT_EQ(std::tie(made.Body, made.Subject, made.HTMLCode, made.From),
              std::tuple(values, "##Execute Program 1##" + values, values, tags));
}

TEST_F(MergeGeneratorTest, FillsInTheOtherFields) {
    frmViewMerge& view = Message("four", "two");
    wb.forms.Get<frmSettings>().txtReplyTo.SetText("[Email]");
    view.ActiveBar1.Press("High");
    const auto messages = Merged();
    const MessageRecord& made = messages[0];
    EXPECT_EQ(made.Date, clock.Now());
    EXPECT_EQ(std::tie(made.ReplyTo, made.Size, made.Priority, made.ContentType, made.Status),
              std::tuple("[Email]", 7, "1", "text", "Read"));
}

TEST_F(MergeGeneratorTest, ARowWithoutAddressGetsTheOneBefore) {
    frmViewMerge& view = Message();
    EXPECT_EQ(Recipients(Merged()), "ann@x ann@x ");
    EmptyOutbox();
    MakeTable("Nobody", {{.name = "Email"}}, {{Cell()}, {"b@x"}});
    wb.forms.Get<frmViewDatabase>().cmdRefresh.Press();
    view.cmbTable.SetText("Nobody");
    EXPECT_EQ(Recipients(Merged()), " b@x ");
}

/// Files that are named like the tag are found by a row that has no value for it. The tag then goes
/// out of the attachment's path, and stays in the page's.
TEST_F(MergeGeneratorTest, FilesOfARow) {
    frmViewMerge& view = Message();
    folder.Write("Ann.html", "<p>[First Name] [Note]</p>");
    folder.Write("Ann.pdf", "");
    view.lstHTML.SetItems({folder.File("[First Name].html")});
    view.lstAttach.SetItems({folder.File("[first name].pdf")});
    for (const bool ofTheTag : {false, true}) {
        const auto messages = Merged();
        EXPECT_EQ(messages[0].HTML, folder.File("Ann.html"));
        EXPECT_EQ(messages[0].HTMLCode, "<p>Ann 2/29/2024\r\n3/15/2024</p>");
        EXPECT_EQ(messages[0].ContentType, "html");
        EXPECT_EQ(messages[0].Attach, folder.File("Ann.pdf"));
        EXPECT_EQ(messages[1].HTML, ofTheTag ? folder.File("[First Name].html") : "");
        // Without a file the code of the row before stays.
        EXPECT_EQ(messages[1].HTMLCode, ofTheTag ? "second" : messages[0].HTMLCode);
        EXPECT_EQ(messages[1].ContentType, ofTheTag ? "html" : "text");
        EXPECT_EQ(messages[1].Attach, ofTheTag ? folder.File(".pdf") : "");
        for (const char* name : {"[First Name].html", "[first name].pdf"})
            folder.Write(name, "[Note]");
        EmptyOutbox();
    }
}

TEST_F(MergeGeneratorTest, ValuesKnowTheirPlace) {
    using namespace std::string_literals;
    folder.Write("secret.csv", "");
    MakeFolders(folder.File("pages"));
    folder.Write("pages/ann.pdf", "");
    MakeTable("Hostile", {{.name = "Email"}, {.name = "Name"}, {.name = "Path"}},
              {{"a@x", "A \"B\" \\", "ann.pdf"},
               {"b@x", "B\0C"s, "../secret.csv"},
               {"c\0@x"s, "C", "../secret.csv\0"s},
               {"d@x", "D", folder.File("secret.csv")}});
    wb.forms.Get<frmSettings>().txtAccessDBPath.SetText(DatabasePath());
    const std::pair<std::string, std::string> rows[] = {
        {folder.File("pages/[Path]"), folder.File("pages/ann.pdf") + "   "},
        {folder.File("pages/x[Path]"), "   "},
        {"[Path]", "   " + folder.File("secret.csv")},
    };
    for (const auto& [path, attached] : rows) {
        frmViewMerge& view = Message("", "[Name]", "\"[Name]\" [Name] <me@here>");
        view.cmbTable.SetText("Hostile");
        view.lstAttach.SetItems({path});
        const auto messages = Merged();
        ASSERT_EQ(messages.size(), 4u);
        EXPECT_EQ(messages[0].From, "\"A \\\"B\\\" \\\\\" A \"B\" \\ <me@here>");
        EXPECT_EQ(messages[1].Subject, "BC");
        EXPECT_EQ(messages[2].To, "c@x");
        EXPECT_EQ(messages[0].Attach + " " + messages[1].Attach + " " + messages[2].Attach + " " +
                      messages[3].Attach,
                  attached);
        EmptyOutbox();
    }
}

TEST_F(MergeGeneratorTest, BulkTakesFilesAsTheyStand) {
    frmViewMerge& view = Message();
    view.lstHTML.SetItems({"/nowhere/[Email].html"});
    view.lstAttach.SetItems({"/nowhere/[Email].pdf"});
    const auto messages = Merged(Packets("1"));
    const MessageRecord& made = messages[0];
    EXPECT_EQ(std::tie(made.HTML, made.HTMLCode, made.ContentType, made.Attach),
              std::tuple("/nowhere/[Email].html", "", "html", "/nowhere/.pdf"));
}

}  // namespace
}  // namespace mailvane::test
