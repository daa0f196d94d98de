#include "core/Paths.h"
#include "merge/MergeBench.h"
#include "merge/check/MergeCheck.h"
#include "merge/check/frmMergeCheck.h"

namespace mailvane {
namespace {

using test::Cell;
using test::MergeBench;
using Lines = std::vector<std::string>;

class CheckBeforeSending : public ::testing::Test {
protected:
    void SetUp() override {
        bench.MakeTable("People", {{.name = "Email"}, {.name = "Name"}, {.name = "City"}},
                        {{"ann@example.com", "Ann", "Cork"},
                         {"bob@example.com", "", "Oslo"},
                         {Cell(), "Cy", "Bergen"},
                         {"not an address", "Di\r\nBcc: all@example.com", "Graz"},
                         {"Ann B <ANN@example.com>", "Ann", Cell()},
                         {"eve@example.com, two words@x", "Eve", "Rome"}});
        rows.recipients = *bench.database->OpenRecordset("People");
        rows.count = 6;
        parts.addressColumn = "Email";
    }

    /// Each finding as "COUNT TEXT ROWS", the rows counted from 1.
    std::vector<std::string> Findings() {
        std::vector<std::string> lines;
        for (const MergeFinding& finding :
             CheckMerge(parts, rows, [](std::size_t) { return true; })) {
            std::string line = std::to_string(finding.count) + " " + finding.text;
            for (const Bookmark row : finding.rows)
                line += " " + std::to_string(*rows.recipients->PositionOf(row) + 1);
            lines.push_back(line);
        }
        return lines;
    }

    MergeBench bench;
    MergeParts parts;
    MergeRows rows;
};

TEST_F(CheckBeforeSending, AddressesOfEachRow) {
    EXPECT_EQ(Findings(), (Lines{"1 No e-mail address 3", "2 Not an e-mail address 4 6",
                                 "1 The e-mail address stands in an earlier row already 5"}));
    rows.first = 1;
    rows.count = 1;
    EXPECT_TRUE(Findings().empty()) << "only the rows of the run";
    rows.count = 2;
    EXPECT_EQ(Findings(), (Lines{"1 No e-mail address 3"}));
}

TEST_F(CheckBeforeSending, TagsAndValues) {
    rows.count = 5;
    parts.subject = "News for [name] of [Town] [!SYSDATE]";
    parts.body = "[Town], [CITY], [town] [not a\r\ntag] [[Name]] []";
    const Lines expected = {"3 The tag [Town] names no column",
                            "1 No e-mail address 3",
                            "1 Not an e-mail address 4",
                            "1 The e-mail address stands in an earlier row already 5",
                            "1 The column 'Name' is empty 2",
                            "1 The column 'Name' has a line break in a header field 4",
                            "1 The column 'City' is empty 5"};
    EXPECT_EQ(Findings(), expected);
}

TEST_F(CheckBeforeSending, FilesOfEachRow) {
    WriteFileText(bench.folder.File("Ann.pdf"), "x");
    WriteFileText(bench.folder.File("page.html"), "<p>[Street]</p>");
    rows.count = 2;
    parts.attachment = bench.folder.File("[Name].pdf");
    parts.htmlFile = bench.folder.File("page.html");
    EXPECT_EQ(Findings(),
              (Lines{"1 The tag [Street] names no column", "1 The attachment is not there 2",
                     "1 The column 'Name' is empty 2"}));
    parts.htmlFile = bench.folder.File("gone.html");
    EXPECT_EQ(Findings().at(1), "2 The HTML file is not there 1 2");
}

TEST_F(CheckBeforeSending, WindowSelectsTheRowsConcerned) {
    bench.Message("Dear [Name]");
    auto& dialog = bench.Dialog();
    dialog.chkFractional.SetChecked(true);
    dialog.txtFractional1.SetText("2");
    dialog.txtFractional2.SetText("90");
    std::vector<std::string> lines;
    std::string summary;
    const Subscription shown = bench.windows.idle.Observe([&] {
        auto* form = bench.wb.forms.Find<frmMergeCheck>();
        if (!form || !form->Visible()) return;
        lines = form->lstFindings.Items();
        summary = form->lblSummary.Text();
        form->lstFindings.SetListIndex(1);
        form->lstFindings.onClick();
        form->cmdShow.Press();
    });
    dialog.cmdCheck.Press();
    EXPECT_EQ(summary, "These things were found in 5 records.");
    ASSERT_GE(lines.size(), 2u);
    EXPECT_EQ(lines[0] + "; " + lines[1], "1 x  No e-mail address; 2 x  Not an e-mail address");
    const auto& view = bench.wb.forms.Get<frmViewDatabase>();
    EXPECT_EQ(view.Grid1.SelBookmarks().Count(), 2u);
    EXPECT_EQ(view.Grid1.CurrentRow(), 3u);
    EXPECT_TRUE(dialog.IsLoaded()) << "the run can still be started";
    EXPECT_TRUE(bench.Outbox().empty());
}

TEST_F(CheckBeforeSending, CancelEndsItAtOnce) {
    int reports = 0;
    EXPECT_TRUE(CheckMerge(parts, rows, [&](std::size_t) { return ++reports > 1; }).empty());
    EXPECT_EQ(reports, 1);
}

}  // namespace
}  // namespace mailvane
