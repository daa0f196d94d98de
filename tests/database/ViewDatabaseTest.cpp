#include "database/TableToolsTest.h"
#include "database/view/ViewCells.h"

namespace mailvane {
namespace {

using ViewDatabase = test::TableToolsTest;

TEST_F(ViewDatabase, ShowsTheProjectsTableAndFollowsIt) {
    view->Show();
    EXPECT_TRUE(view->Connected());
    EXPECT_EQ(CurrentDatabaseTable(bench.wb), "People");
    EXPECT_EQ(view->cmbTable.Items(), (std::vector<std::string>{"People", "Archive"}));
    EXPECT_EQ(view->Grid1.RowCount(), 3u);
    EXPECT_EQ(bench.shell.recordPanel, "3 records.");

    view->ActiveBar1.Press("Last");
    EXPECT_EQ(*view->Data1.Recordset()->Get("Name"), DaoValue("Cid"));
    Show("Archive");
    EXPECT_EQ(bench.shell.recordPanel, "0 records.");
    view->cmdRefresh.Press();
    EXPECT_EQ(Settings().cmbAccessTable.SetByUser("People"), ControlAnswer::Done);
    EXPECT_EQ(CurrentDatabaseTable(bench.wb), "People");
    EXPECT_EQ(view->cmbTable.Text(), "People");
}

TEST_F(ViewDatabase, FallsBackToTheProjectsTableWhenTheLastOneHasGone) {
    CloseView();
    IniWrite("Database", "LastTable", "Gone", ProjectFile("project.ini"));
    Settings().cmbAccessTable.SetText("People");
    Reopen();
    EXPECT_EQ(view->Data1.CurrentTable(), "People");
}

TEST_F(ViewDatabase, WithoutAFileAsksForOne) {
    CloseView();
    Settings().txtAccessDBPath.SetText("");
    AnswerBox(BoxAnswer::Yes, "local file name");
    EXPECT_FALSE(bench.wb.forms.Get<frmViewDatabase>().Connected());
    EXPECT_TRUE(Settings().Visible());
}

TEST_F(ViewDatabase, AnotherDatabaseReplacesTheFirst) {
    view->Show();
    const std::string other = bench.InProgramFolder("other.db");
    auto made = bench.wb.state.MainWorkspace->CreateDatabase(other);
    ASSERT_TRUE((*made)->AppendTable({"Only", 0, {{.name = "Email"}}, {}}).Ok());
    (*made)->Close();
    int told = 0;
    const Subscription shown = view->tableShown.Observe([&told] { ++told; });
    Settings().txtAccessDBPath.SetText(other);
    EXPECT_EQ(view->Data1.CurrentTable(), "Only");
    EXPECT_EQ(view->cmbTable.Items(), std::vector<std::string>{"Only"});
    EXPECT_EQ(told, 1);
}

class ViewEditing : public test::TableToolsTest {
protected:
    void UseTypedTable() {
        TableDef typed;
        typed.name = "Typed";
        using enum FieldType;
        typed.fields = {{"Id", Long, 0, AutoIncrementAttribute},
                        {"Code", Text, 5},
                        {"Small", Byte},
                        {"Price", Currency},
                        {"Since", Date},
                        {"Active", Boolean},
                        {"Notes", Memo}};
        typed.fields[1].required = true;
        auto database = view->Data1.Database();
        ASSERT_TRUE(database->AppendTable(typed).Ok());
        ASSERT_TRUE(database->Execute("INSERT INTO Typed (Code, Small) VALUES ('a', 1)").Ok());
        view->cmdRefresh.Press();
        Show("Typed");
    }
    bool Edit(std::size_t row, std::size_t column, const std::string& text) {
        return view->Grid1.onCellEdit(row, column, text);
    }
    std::string Cell(std::size_t row, std::size_t column) {
        return view->Grid1.Rows()->Read(row, 1).at(0).at(column);
    }
};

TEST_F(ViewEditing, ValuesGoInByTheirType) {
    UseTypedTable();
    const std::tuple<std::size_t, const char*, const char*> cells[] = {
        {1, "00123", "00123"},
        {2, "255", "255"},
        {2, "", ""},
        {3, "12.34567", "12.3457"},
        {4, "2/29/2024 6:30 PM", "2/29/2024 6:30:00 PM"},
        {4, "2024-03-01", "3/1/2024"},
        {5, "True", "True"},
        {5, "", "False"},
        {6, "two\r\nlines", "two\r\nlines"},
    };
    for (const auto& [column, typed, shown] : cells) {
        EXPECT_TRUE(Edit(0, column, typed)) << typed;
        EXPECT_EQ(Cell(0, column), shown);
    }
    EXPECT_TRUE(view->Data1.Recordset()->Get("Small")->IsNull());
    EXPECT_TRUE(view->Grid1.Columns()[0].fixed);
    EXPECT_EQ(view->Grid1.Columns()[6].kind, CellKind::Memo);
}

TEST_F(ViewEditing, RefusedValuesAreExplained) {
    UseTypedTable();
    const std::tuple<std::size_t, std::string, const char*> cells[] = {
        {2, "256", "The column 'Small' takes whole numbers from 0 to 255."},
        {3, "12,5x", "The column 'Price' takes numbers, with a point before the decimals."},
        {4, "31.12.2024",
         "The column 'Since' takes dates: month/day/year, with a time behind if you like, as in "
         "12/31/2026 6:30 PM."},
        {5, "perhaps", "The column 'Active' takes Yes or No."},
        {1, "123456", "The column 'Code' takes 5 characters, and this text has 6."},
    };
    for (const auto& [column, typed, box] : cells) {
        const std::string before = Cell(0, column);
        AnswerBox(BoxAnswer::Ok, "");
        EXPECT_FALSE(Edit(0, column, typed)) << typed;
        ExpectBox(column == 1 ? box : "'" + typed + "': " + box);
        EXPECT_EQ(Cell(0, column), before);
    }
    AnswerBox(BoxAnswer::Ok, "");
    EXPECT_FALSE(Edit(0, 1, "")) << "the column must have a value";
}

TEST_F(ViewEditing, InsertAddsARowAtOnce) {
    view->ActiveBar1.Press("Insert");
    EXPECT_EQ(view->Grid1.CurrentRow(), 3u);
    EXPECT_TRUE(Edit(3, 0, "d@x.com"));
    EXPECT_EQ(Rows("People"), test::PeopleRows + "d@x.com  \n");
    UseTypedTable();
    AnswerBox(BoxAnswer::Ok, "Code");  // it must have a value
    view->ActiveBar1.Press("Insert");
    EXPECT_EQ(view->Grid1.RowCount(), 1u);
}

TEST_F(ViewEditing, BlocksAreCopiedAsTheyStandOnTheScreen) {
    EXPECT_TRUE(Edit(1, 1, "B\tob\r\n\"x\""));
    view->Grid1.SetColumnPosition(0, 2);
    view->Grid1.SetColumnPosition(1, 0);
    view->Grid1.SetColumnPosition(2, 1);
    Select({2, 1});
    EXPECT_EQ(view->Grid1.onCopy(), "\"B\tob\r\n\"\"x\"\"\"\t32\tb@x.com\nCid\t33\tc@x.com\n");
    view->Grid1.RemoveAllSelected();
    view->Grid1.SetCurrentRow(0);
    EXPECT_EQ(view->Grid1.onCopy(), "Ann\t31\ta@x.com\n");
}

TEST_F(ViewEditing, BlocksArePastedFromTheCurrentCellOnAndAddRows) {
    view->Grid1.SetCurrentRow(2);
    view->Grid1.SetCurrentColumn(1);
    AnswerBox(BoxAnswer::Yes, "You are about to paste 2 records.");
    view->Grid1.onPaste("Cyd\t34\r\n\"D\ta\"\t\r\n");
    EXPECT_EQ(Rows("People"), "a@x.com Ann 31\nb@x.com Bob 32\nc@x.com Cyd 34\n D\ta \n");
    view->Grid1.onPaste("Eve");
    EXPECT_EQ(Cell(2, 1), "Eve");
}

TEST_F(ViewEditing, ARefusedBlockLeavesNothing) {
    view->Grid1.SetCurrentRow(2);
    view->Grid1.SetCurrentColumn(1);
    AnswerBox(BoxAnswer::Yes, "3 records");
    AnswerBox(BoxAnswer::Ok, "Line 3: 'old': The column 'Age' takes whole numbers");
    view->Grid1.onPaste("x\t1\ny\t2\nz\told");
    EXPECT_EQ(Rows("People"), test::PeopleRows);
    EXPECT_EQ(view->Grid1.RowCount(), 3u);
    EXPECT_EQ(view->Grid1.CurrentRow(), 2u);
    AnswerBox(BoxAnswer::Ok,
              "The text has 3 columns, and there are only 2 from the current one on.");
    view->Grid1.onPaste("x\ty\tz");
    AnswerBox(BoxAnswer::No, "2 records");
    view->Grid1.onPaste("x\ny");
    EXPECT_EQ(Rows("People"), test::PeopleRows);
}

TEST_F(ViewEditing, ClipboardTexts) {
    const std::pair<const char*, TextBlock> cases[] = {
        {"", {}},
        {"a", {{"a"}}},
        {"\n", {{""}}},
        {"a\t\n\tb", {{"a", ""}, {"", "b"}}},
        {"a\r\nb\r\n", {{"a"}, {"b"}}},
        {"\"a\nb\"\tc", {{"a\nb", "c"}}},
        {"\"say \"\"no\"\"\"", {{"say \"no\""}}},
        {"\"open", {{"\"open"}}},
        {"\"a\" b\tc", {{"\"a\" b", "c"}}},
    };
    for (const auto& [text, block] : cases)
        EXPECT_EQ(ParseBlock(text), block) << text;
}

}  // namespace
}  // namespace mailvane
