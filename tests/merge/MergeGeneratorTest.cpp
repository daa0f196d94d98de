#include "core/Progress.h"
#include "merge/MergeBench.h"
#include "merge/MergeGenerator.h"

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

    std::vector<MessageRecord> Run(bool personal = true) {
        frmMerge& dialog = Dialog();
        if (!personal) {
            dialog.optBulk.SetValue(true);
            dialog.txtPacket.SetText("1");
        }
        dialog.cmdStart.Press();
        return Outbox();
    }
};

TEST_F(MergeGeneratorTest, FillsInTags) {
    struct Row {
        const char* name;
        const char* text;
        const char* body;     ///< personal, first row
        const char* from;     ///< the same text as the sender line
        const char* nullRow;  ///< body of the second row
        const char* bulk;
    };
    const Row rows[] = {
        {"a tag in any letter case", "Hi [first NAME]!", "Hi Ann!", "Hi Ann!", "Hi !", "Hi !"},
        {"no column", "[Nickname]", "[Nickname]", "[Nickname]", "[Nickname]", "[Nickname]"},
        {"the default text of a date and a truth value", "[Joined] [Member]", "2/29/2024 True",
         "2/29/2024 True", " False", " "},
        {"the default text of numbers", "[Visits] [Paid]", "-12 1234567.5", "-12 1234567.5", " ",
         " "},
        {"an earlier tag in a value goes, a later one is filled in, a system tag too", "[Note]",
         "2/29/2024\r\n3/15/2024", "2/29/2024\r\n[!SYSDATE]", "second", ""},
        {"time and date", "[!systime] [!SYSDATE]", "10:30:00 AM 3/15/2024", "[!systime] [!SYSDATE]",
         "10:30:00 AM 3/15/2024", "10:30:00 AM 3/15/2024"},
        {"resources there are none", "a[!SYSRESOURCES]b", "ab", "a[!SYSRESOURCES]b", "ab", "ab"},
        {"no system tag", "[!SYSNAME]", "[!SYSNAME]", "[!SYSNAME]", "[!SYSNAME]", "[!SYSNAME]"},
        {"a program that is not there", "a##execute PROGRAM 4##b##Execute Program 4##", "ab",
         "a##execute PROGRAM 4##b##Execute Program 4##", "ab",
         "a##execute PROGRAM 4##b##Execute Program 4##"},
        {"only the first program tag is looked at", "##Execute Program 1####Execute Program 2##",
         "##Execute Program 2##", "##Execute Program 1####Execute Program 2##",
         "##Execute Program 2##", "##Execute Program 1####Execute Program 2##"},
        {"a program tag without its end", "##Execute Program 1", "##Execute Program 1",
         "##Execute Program 1", "##Execute Program 1", "##Execute Program 1"},
        {"a script tag stays", "##Execute CGI 1##", "##Execute CGI 1##", "##Execute CGI 1##",
         "##Execute CGI 1##", "##Execute CGI 1##"},
    };
    for (const Row& row : rows) {
        Message(row.text, row.text, row.text);
        const auto personal = Run();
        ASSERT_EQ(personal.size(), 2u) << row.name;
        EXPECT_EQ(personal[0].Body, row.body) << row.name;
        EXPECT_EQ(personal[0].From, row.from) << row.name;
        EXPECT_EQ(personal[1].Body, row.nullRow) << row.name;
        EmptyOutbox();
        const auto bulk = Run(false);
        ASSERT_EQ(bulk.size(), 2u) << row.name;
        EXPECT_EQ(bulk[0].Body, row.bulk) << row.name;
        EmptyOutbox();
    }
}

TEST_F(MergeGeneratorTest, SystemTagsStandInEveryTextButTheSender) {
    const std::string tags = "[!systime] [!SYSDATE] [!SysIP] [!SYSRESOURCES]";
    const std::string values = "10:30:00 AM 3/15/2024 " + GetLocalIpAddress() + " ";
    frmViewMerge& view = Message(tags, "##Execute Program 1##" + tags, tags);
    view.lstHTML.SetItems({folder.File("page.html")});
    folder.Write("page.html", tags);
    const auto messages = Run();
    EXPECT_EQ(messages[0].Body, values);
    EXPECT_EQ(messages[0].Subject, "##Execute Program 1##" + values);
    EXPECT_EQ(messages[0].HTMLCode, values);
    EXPECT_EQ(messages[0].From, tags);
}

TEST_F(MergeGeneratorTest, FillsInTheOtherFields) {
    frmViewMerge& view = Message("four", "two");
    wb.forms.Get<frmSettings>().txtReplyTo.SetText("[Email]");
    view.ActiveBar1.Press("High");
    const auto messages = Run();
    EXPECT_EQ(messages[0].To, "ann@x");
    EXPECT_EQ(messages[0].ReplyTo, "[Email]");
    EXPECT_EQ(messages[0].Date, clock.Now());
    EXPECT_EQ(messages[0].Size, 7);
    EXPECT_EQ(messages[0].Priority, "1");
    EXPECT_EQ(messages[0].ContentType, "text");
    EXPECT_EQ(messages[0].Status, "Read");
}

TEST_F(MergeGeneratorTest, ARowWithoutAddressGetsTheOneBefore) {
    Message();
    EXPECT_EQ(Recipients(Run()), (std::vector<std::string>{"ann@x", "ann@x"}));
}

TEST_F(MergeGeneratorTest, TheFirstRowWithoutAddressHasNone) {
    MakeTable("Nobody", {{.name = "Email"}}, {{Cell()}, {"b@x"}});
    frmViewMerge& view = Message();
    view.cmbTable.SetText("Nobody");
    EXPECT_EQ(Recipients(Run()), (std::vector<std::string>{"", "b@x"}));
}

TEST_F(MergeGeneratorTest, FilesOfARow) {
    frmViewMerge& view = Message();
    folder.Write("Ann.html", "<p>[First Name] [Note]</p>");
    folder.Write("Ann.pdf", "");
    view.lstHTML.SetItems({folder.File("[First Name].html")});
    view.lstAttach.SetItems({folder.File("[first name].pdf")});
    const auto messages = Run();
    EXPECT_EQ(messages[0].HTML, folder.File("Ann.html"));
    EXPECT_EQ(messages[0].HTMLCode, "<p>Ann 2/29/2024\r\n3/15/2024</p>");
    EXPECT_EQ(messages[0].ContentType, "html");
    EXPECT_EQ(messages[0].Attach, folder.File("Ann.pdf"));
    // The second row's name is Null: its files are not there, and the code of the first one stays.
    EXPECT_EQ(messages[1].HTML, "");
    EXPECT_EQ(messages[1].HTMLCode, messages[0].HTMLCode);
    EXPECT_EQ(messages[1].ContentType, "text");
    EXPECT_EQ(messages[1].Attach, "");
}

/// Files that are named like the tag are found by a row that has no value for it. The tag then goes
/// out of the attachment's path, and stays in the page's.
TEST_F(MergeGeneratorTest, FilesWithTheNameOfATag) {
    frmViewMerge& view = Message();
    for (const char* name : {"[First Name].html", "[First Name].pdf"})
        folder.Write(name, "[Note]");
    view.lstHTML.SetItems({folder.File("[First Name].html")});
    view.lstAttach.SetItems({folder.File("[First Name].pdf")});
    const auto messages = Run();
    EXPECT_EQ(messages[0].ContentType + messages[0].HTML + messages[0].Attach, "text");
    EXPECT_EQ(messages[1].HTML, folder.File("[First Name].html"));
    EXPECT_EQ(messages[1].HTMLCode, "second");
    EXPECT_EQ(messages[1].Attach, folder.File(".pdf"));
}

TEST_F(MergeGeneratorTest, BulkTakesFilesAsTheyStand) {
    frmViewMerge& view = Message();
    view.lstHTML.SetItems({"/nowhere/[Email].html"});
    view.lstAttach.SetItems({"/nowhere/[Email].pdf"});
    const auto messages = Run(false);
    EXPECT_EQ(messages[0].HTML, "/nowhere/[Email].html");
    EXPECT_EQ(messages[0].HTMLCode, "");
    EXPECT_EQ(messages[0].ContentType, "html");
    EXPECT_EQ(messages[0].Attach, "/nowhere/.pdf");
}

}  // namespace
}  // namespace mailvane::test
