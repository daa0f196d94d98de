#include "core/run/frmStatus.h"
#include "database/TableToolsTest.h"
#include "database/exchange/frmDatabasePrint.h"

namespace mailvane {
namespace {

class TablePrint : public test::TableToolsTest {
protected:
    void SetUp() override {
        TableToolsTest::SetUp();
        bench.windows.printAnswer = {PrintOutcome::Result::Printed};
    }
    void Print(std::function<void(frmDatabasePrint&)> set) {
        Act([this, set = std::move(set)] {
            auto& dialog = Form<frmDatabasePrint>();
            set(dialog);
            if (dialog.IsLoaded()) dialog.cmdAdd.Press();
        });
        view->cmdPrint.Press();
    }
    const PrintJob& Job() { return *bench.windows.lastPrinted; }
    std::string Printed(std::size_t first = 0, std::size_t count = 100) {
        std::string text;
        for (const auto& row : Job().readRows(first, count))
            for (const std::string& value : row)
                text += value + (&value == &row.back() ? "\n" : " ");
        return text;
    }
};

TEST_F(TablePrint, TheFourKindsOfRows) {
    Select({2, 0});
    view->Grid1.SetCurrentRow(1);
    const char* const rows[] = {"b@x.com Bob 32\n", test::PeopleRows.c_str(), "b@x.com Bob 32\n",
                                "a@x.com Ann 31\nc@x.com Cid 33\n"};
    for (std::size_t kind = 0; kind < 4; ++kind) {
        SCOPED_TRACE(kind);
        Print([&](frmDatabasePrint& dialog) {
            dialog.FindControl("optPrint" + std::to_string(kind))->SetByUser("1");
        });
        EXPECT_EQ(Printed(), rows[kind]);
        EXPECT_EQ(Job().readRows(Job().rowCount - 1, 1).size(), 1u);
        EXPECT_FALSE(bench.wb.forms.IsFormLoaded("frmDatabasePrint"));
    }
}

TEST_F(TablePrint, ColumnsStandAsOnTheScreen) {
    view->Grid1.SetColumnPosition(0, 2);
    view->Grid1.SetColumnPosition(2, 0);
    view->Grid1.SetColumnWidth(2, 720);
    Print([](frmDatabasePrint&) {});
    ASSERT_EQ(Job().columns.size(), 3u);
    EXPECT_EQ(Job().columns[0], (PrintColumn{"Age", 720}));
    EXPECT_EQ(Job().columns[2].caption, "Email");
    EXPECT_EQ(Printed(0, 1), "31 Ann a@x.com\n");
    EXPECT_EQ(Job().title, "People");
}

TEST_F(TablePrint, TheFormFillsInThePage) {
    Print([](frmDatabasePrint&) {});
    EXPECT_EQ(Job().header, "Page <page number>");
    EXPECT_TRUE(Job().footer.starts_with("Printed 3/15/2024 10:30:"));
    EXPECT_TRUE(Job().footer.ends_with(" AM"));
    EXPECT_EQ(Job().lines, PrintLines::ColumnHeaders);
    EXPECT_TRUE(!Job().colors && !Job().pageSetup && Job().printDialog);

    Print([](frmDatabasePrint& dialog) {
        dialog.cmbGrid.SetByUser("Borders around data cells (rows)");
        dialog.chkHeader.SetByUser("0");
        dialog.cmbFooter.SetByUser("Page number");
        dialog.chkColors.SetByUser("1");
        dialog.chkSetup.SetByUser("1");
        dialog.chkPrint.SetByUser("0");
    });
    EXPECT_EQ(Job().lines, PrintLines::Rows);
    EXPECT_EQ(Job().header, "");
    EXPECT_EQ(Job().footer, "Page <page number>");
    EXPECT_TRUE(Job().colors && Job().pageSetup && !Job().printDialog);
    Print([](frmDatabasePrint& dialog) { dialog.chkGrid.SetByUser("0"); });
    EXPECT_EQ(Job().lines, PrintLines::None);
}

TEST_F(TablePrint, FailuresAreToldAndCancelEndsIt) {
    bench.windows.printAnswer = {PrintOutcome::Result::Failed, "No paper."};
    AnswerBox(BoxAnswer::Ok, "No paper.");
    Print([this](frmDatabasePrint& dialog) {
        dialog.cmdPreview.Press();
        EXPECT_TRUE(Job().preview);
        EXPECT_TRUE(dialog.IsLoaded()) << "something else may be tried";
        bench.windows.printAnswer = {PrintOutcome::Result::Cancelled};
        dialog.cmdAdd.Press();
        EXPECT_TRUE(dialog.IsLoaded());
        dialog.cmdCancel.Press();
    });
}

}  // namespace
}  // namespace mailvane
