#include <sys/stat.h>

#include "core/Paths.h"
#include "merge/MergeBench.h"
#include "merge/check/MergeCheck.h"
#include "merge/check/frmMergeCheck.h"

namespace mailvane::test {
namespace {

using Lines = std::vector<std::string>;

struct CheckBeforeSending : testing::Test, MergeBench {
    CheckBeforeSending() {
        MakeTable("People", {{.name = "Email"}, {.name = "Name"}, {.name = "City"}},
                  {{"ann@example.com", "Ann", "Cork"},
                   {"bob@example.com", "", "Oslo"},
                   {Cell(), "Cy", "Bergen"},
                   {"not an address", "Di\r\nBcc: all@example.com", "Graz"},
                   {"Ann B <ANN@example.com>", "Ann", Cell()},
                   {"eve@example.com, two words@x", "Eve", "Rome"}});
        Message("");
    }

    void UseTable(const std::string& name) {
        auto& view = wb.forms.Get<frmViewMerge>();
        view.cmdRefresh.Press();
        view.cmbTable.SetText(name);
    }

    /// Each finding as "COUNT TEXT ROWS", the rows counted from 1.
    Lines Findings() {
        const MergePlan plan = MakeMergePlan(wb, options);
        Lines lines;
        for (const MergeFinding& finding : CheckMerge(wb, plan, [](auto) { return true; })) {
            std::string line = std::to_string(finding.count) + " " + finding.text;
            for (const Bookmark row : finding.rows)
                line += " " + std::to_string(*plan.recipients->PositionOf(row) + 1);
            lines.push_back(line);
        }
        return lines;
    }

    MergeOptions options{.rows = MergeOptions::Rows{1, 6}};
};

TEST_F(CheckBeforeSending, AddressesOfEachRow) {
    EXPECT_EQ(Findings(), (Lines{"1 No e-mail address 3", "2 Not an e-mail address 4 6",
                                 "1 The e-mail address stands in an earlier row already 5"}));
    options.rows = {2, 2};
    EXPECT_TRUE(Findings().empty()) << "only the rows of the run";
    options.rows = {6, 8};
    EXPECT_EQ(Findings(), (Lines{"2 A row beyond the last record", "1 Not an e-mail address 6"}));
}

TEST_F(CheckBeforeSending, AddressesAsSendingTakesThem) {
    MakeTable("Others", {{.name = "Email"}},
              {{"a@b.de"},
               {"a@b.c"},
               {"name@"},
               {"a@example..com"},
               {"@example.com"},
               {"ann@exa\r\nmple.com"},
               {"\"Smith, Al\" <al@example.com>"}});
    UseTable("Others");
    options.rows = {1, 7};
    EXPECT_EQ(Findings(), (Lines{"4 Not an e-mail address 2 3 4 5",
                                 "1 The e-mail address has a line break 6"}));
}

TEST_F(CheckBeforeSending, TagsAndValues) {
    options.rows = {1, 5};
    Message("[Town], [CITY], [town] [not a\r\ntag] [[Name]] [] ##Execute Program 9##",
            "News for [name] of [Town] [!SYSDATE]");
    const Lines expected = {"1 The program of the tag ##Execute Program 9## is not there",
                            "3 The tag [Town] names no column",
                            "1 No e-mail address 3",
                            "1 Not an e-mail address 4",
                            "1 The e-mail address stands in an earlier row already 5",
                            "1 The column 'Name' is empty 2",
                            "1 The column 'Name' has a line break in a header field 4",
                            "1 The column 'City' is empty 5"};
    EXPECT_EQ(Findings(), expected);
}

TEST_F(CheckBeforeSending, FilesOfEachRow) {
    WriteFileText(folder.File("Ann.pdf"), "x");
    WriteFileText(folder.File("Ann.html"), "<p>[Street] [City]</p>");
    options.rows = {1, 2};
    auto& view = Message("");
    view.lstAttach.SetItems({folder.File("[Name].pdf")});
    view.lstHTML.SetItems({folder.File("[Name].html")});
    EXPECT_EQ(Findings(),
              (Lines{"1 The tag [Street] names no column", "1 The attachment is not there 2",
                     "1 The HTML file is not there 2", "1 The column 'Name' is empty 2"}));
    ASSERT_EQ(mkfifo(folder.File("pipe").c_str(), 0600), 0);
    view.lstAttach.SetItems({folder.File("pipe")});
    EXPECT_EQ(Findings().at(1), "2 The attachment is not there 1 2") << "a pipe is no file";
}

TEST_F(CheckBeforeSending, TextsThatAreTooLong) {
    MakeTable("Long", {{.name = "Email"}, {.name = "Note", .type = FieldType::Memo}},
              {{"a@example.com", "short"},
               {"b@example.com", std::string(65530, 'x')},
               {"c@example.com", std::string(9 << 20, 'x')}});
    Message("[Note][Note]", "Subject [Note]");
    UseTable("Long");
    options.rows = {1, 3};
    EXPECT_EQ(Findings(), (Lines{"1 A text of the message grows past 16 MB by its values 3",
                                 "1 The subject is longer than the Outbox takes 2"}));
}

TEST_F(CheckBeforeSending, MessagesForMany) {
    options = {.personal = false, .packetSize = 4, .bulkTo = "all@example.com"};
    options.addressColumn = "Email";
    Message("Dear [Name]").lstAttach.SetItems({folder.Write("[Name].pdf", "")});
    EXPECT_EQ(Findings(), (Lines{"2 The tag [Name] is taken out of messages for many",
                                 "2 In no packet: the last one is not full 5 6",
                                 "1 No e-mail address 3", "2 Not an e-mail address 4 6",
                                 "1 The e-mail address stands in an earlier row already 5",
                                 "1 The attachment is not there"}));
}

TEST_F(CheckBeforeSending, WindowSelectsTheRowsConcerned) {
    Message("Dear [Name]");
    auto& dialog = Rows("2", "90");
    std::vector<std::string> lines;
    std::string summary;
    const Subscription shown = windows.idle.Observe([&] {
        auto* form = wb.forms.Find<frmMergeCheck>();
        if (!form || !form->Visible()) return;
        lines = form->lstFindings.Items();
        summary = form->lblSummary.Text();
        form->lstFindings.SetListIndex(2);
        form->lstFindings.onClick();
        form->cmdShow.Press();
    });
    dialog.cmdCheck.Press();
    EXPECT_EQ(summary, "These things were found in 5 records.");
    ASSERT_GE(lines.size(), 3u);
    EXPECT_EQ(lines[1] + "; " + lines[2], "1 x  No e-mail address; 2 x  Not an e-mail address");
    const auto& view = wb.forms.Get<frmViewDatabase>();
    EXPECT_EQ(view.Grid1.SelBookmarks().Count(), 2u);
    EXPECT_EQ(view.Grid1.CurrentRow(), 3u);
    EXPECT_TRUE(dialog.IsLoaded()) << "the run can still be started";
    EXPECT_TRUE(Outbox().empty());
}

TEST_F(CheckBeforeSending, CancelEndsItAtOnce) {
    int reports = 0;
    const MergePlan plan = MakeMergePlan(wb, {});
    EXPECT_TRUE(CheckMerge(wb, plan, [&](auto) { return ++reports > 1; }).empty());
    EXPECT_EQ(reports, 1);
}

}  // namespace
}  // namespace mailvane::test
