#include "core/run/frmStatus.h"
#include "database/TableToolsTest.h"
#include "database/upkeep/SuspendedConnection.h"
#include "database/view/frmFind.h"
#include "database/view/frmMSGDeleteDatabase.h"
#include "database/view/frmMSGMemo.h"

namespace mailvane {
namespace {

class ViewCommands : public test::TableToolsTest {
protected:
    std::string Names() {
        std::string names;
        for (const auto& row : view->Grid1.Rows()->Read(0, 100))
            names += row[1] + " ";
        return names;
    }
    std::string Marks() {
        std::string marks;
        for (const GridColumn& column : view->Grid1.Columns())
            marks += column.headStyle + ",";
        return marks;
    }
    void Fill(int rows) {
        auto database = view->Data1.Database();
        for (int i = 0; i < rows; ++i)
            ASSERT_TRUE(database->Execute("INSERT INTO Archive (Age) VALUES (1)").Ok());
        Show("Archive");
    }
};

TEST_F(ViewCommands, TheHeadTogglesAndNamesTheOtherDirection) {
    view->Grid1.SetCurrentRow(2);
    view->Grid1.onHeadClick(1);
    EXPECT_EQ(Names(), "Ann Bob Cid ");
    EXPECT_EQ(Marks(), ",DESC,,");
    EXPECT_EQ(view->Data1.RecordSource, "SELECT * FROM [People] ORDER BY [Name] ASC");
    view->Grid1.onHeadClick(1);
    EXPECT_EQ(Names(), "Cid Bob Ann ");
    EXPECT_EQ(Marks(), ",ASC,,");
    EXPECT_EQ(view->Grid1.CurrentRow(), 0u) << "the row stays current";
    EXPECT_EQ(*view->Data1.Recordset()->Get("Name"), DaoValue("Cid"));
    view->Grid1.onHeadClick(2);
    EXPECT_EQ(Marks(), ",,DESC,");
    EXPECT_EQ(CurrentDatabaseTable(bench.wb), "People");
    view->cmdRefresh.Press();
    EXPECT_EQ(Marks(), ",,DESC,") << "the order is the same after a refresh";
}

TEST_F(ViewCommands, ToolsForceTheDirection) {
    ASSERT_TRUE(view->Data1.Database()->RenameTable("People", "List ORDER BY me").Ok());
    view->Data1.RecordSource = "List ORDER BY me";
    view->cmdRefresh.Press();
    view->Grid1.SetCurrentColumn(1);
    for (int i = 0; i < 2; ++i) {
        view->ActiveBar1.Press("Sort Descending");
        EXPECT_EQ(Names(), "Cid Bob Ann ");
    }
    view->ActiveBar1.Press("Sort Ascending");
    EXPECT_EQ(Names(), "Ann Bob Cid ");
    EXPECT_EQ(CurrentDatabaseTable(bench.wb), "List ORDER BY me");
}

TEST_F(ViewCommands, MemoColumnsAreNotSorted) {
    ASSERT_TRUE(view->Data1.Database()->AppendField("People", {"Notes", FieldType::Memo}).Ok());
    view->cmdRefresh.Press();
    view->Grid1.onHeadClick(1);
    const std::string before = view->Data1.RecordSource;
    Act([this] {
        auto& box = Form<frmMSGMemo>();
        EXPECT_EQ(box.Caption(), "Can't sort Memo data");
        EXPECT_TRUE(box.Visible());
        box.Check1.SetByUser("1");
        box.cmdOk.Press();
    });
    for (int i = 0; i < 2; ++i)
        view->Grid1.onHeadClick(3);
    EXPECT_EQ(GetUserSetting(bench.wb, "Messages", "MemoSort"), "1");
    EXPECT_EQ(view->Data1.RecordSource, before);
    EXPECT_EQ(Marks(), ",DESC,,,");
}

TEST_F(ViewCommands, SelectAllCountsAndCanBeCancelled) {
    view->Show();
    EXPECT_TRUE(view->Grid1.onKey("Ctrl+A"));
    EXPECT_EQ(view->Grid1.SelBookmarks().Count(), 3u);
    EXPECT_EQ(bench.shell.recordPanel, " Selected 3/3 records  ");
    const Subscription yields = bench.windows.yielded.Observe([this] {
        auto& status = bench.wb.forms.Get<frmStatus>();
        if (status.Progress1.Value() == 2) status.cmdCancel.Press();
        EXPECT_FALSE(view->Grid1.Redraw() || view->cmbTable.Enabled());
        EXPECT_EQ(view->ActiveBar1.Press("Delete"), ControlAnswer::Disabled);
        EXPECT_EQ(Settings().txtAccessDBPath.SetByUser(""), ControlAnswer::Disabled);
        EXPECT_EQ(Settings().cmbAccessTable.SetByUser("Archive"), ControlAnswer::Disabled);
    });
    view->ActiveBar1.Press("Select All");
    EXPECT_EQ(view->Grid1.SelBookmarks().Count(), 2u);
    EXPECT_FALSE(bench.wb.state.CancelRequested);
    EXPECT_TRUE(view->Grid1.Redraw());
    Show("Archive");
    view->ActiveBar1.Press("Select All");
    EXPECT_EQ(view->Grid1.SelBookmarks().Count(), 0u);
}

TEST_F(ViewCommands, DeletingAsksAndTells) {
    view->Grid1.onKey("Del");  // nothing is selected
    const auto answer = [this](const std::string& things, bool yes) {
        Act([this, things, yes] {
            auto& box = Form<frmMSGDeleteDatabase>();
            EXPECT_EQ(box.Caption(), "Delete " + things.substr(2));
            EXPECT_EQ(box.lblText.Text(), "You are about to delete " + things +
                                              ". \r\nAre you sure you want to do this?");
            box.Check1.SetByUser(yes ? "1" : "0");
            (yes ? box.cmdYes : box.cmdNo).Press();
        });
    };
    Select({1});
    answer("1 record", false);
    view->Grid1.onKey("Del");
    EXPECT_EQ(Rows("People"), test::PeopleRows);
    Select({0});
    answer("2 records", true);
    AnswerBox(BoxAnswer::Ok, "2 records are successfully deleted from the 'People' table.");
    view->ActiveBar1.Press("Delete");
    EXPECT_EQ(Rows("People"), "c@x.com Cid 33\n");
    EXPECT_EQ(view->Grid1.SelBookmarks().Count(), 0u);
    EXPECT_EQ(*view->Data1.Recordset()->Get("Name"), DaoValue("Cid")) << "a row is current";
    Select({0});
    AnswerBox(BoxAnswer::Ok, "1 record is successfully deleted from the 'People' table.");
    view->cmdDeleteSelected.Press();  // the box need not come again
    EXPECT_EQ(view->Grid1.RowCount(), 0u);
    EXPECT_EQ(bench.Prompts().Shown().size(), 2u);
}

TEST_F(ViewCommands, AllRowsOfASortedTableGoByOneStatement) {
    view->Show();
    view->Grid1.onHeadClick(1);
    view->ActiveBar1.Press("Select All");
    const Subscription yields = bench.windows.yielded.Observe([] { FAIL() << "row by row"; });
    view->cmdDeleteSelectedNoStatus.Press();
    EXPECT_EQ(Rows("People"), "");
    EXPECT_EQ(view->Grid1.RowCount(), 0u);
    EXPECT_EQ(bench.shell.recordPanel, "0 records.");
    EXPECT_EQ(CurrentDatabaseTable(bench.wb), "People");
}

TEST_F(ViewCommands, ACancelledDeletionKeepsTheRest) {
    Fill(10);
    view->Grid1.onHeadClick(1);
    Select({9, 8, 7, 6, 5, 4});
    view->Grid1.SetCurrentRow(2);
    const Subscription yields = bench.windows.yielded.Observe([this] {
        auto& status = bench.wb.forms.Get<frmStatus>();
        if (status.Progress1.Value() == 4) status.cmdCancel.Press();
    });
    view->cmdDeleteSelectedNoStatus.Press();
    EXPECT_EQ(view->Grid1.RowCount(), 6u);
    EXPECT_EQ(view->Grid1.SelBookmarks().Count(), 2u);
    EXPECT_EQ(view->Grid1.CurrentRow(), 2u);
    EXPECT_EQ(view->Data1.Recordset()->GetBookmark().ValueOr(0), view->Grid1.Rows()->BookmarkAt(2));
    EXPECT_EQ(view->Data1.Database()->OpenRecordset("Archive").ValueOr(nullptr)->RecordCount(), 6);
}

TEST_F(ViewCommands, ClosingTheViewInTheMiddleOfADeletion) {
    Fill(10);
    Select({9, 8, 7, 6});
    const Subscription yields = bench.windows.yielded.Observe([this] {
        if (bench.wb.forms.Get<frmStatus>().Progress1.Value() == 2) {
            EXPECT_FALSE(view->Unload());
        }
    });
    AnswerBox(BoxAnswer::Ok, "Deleting records was ended early: 2 of 4 records are deleted.");
    view->cmdDeleteSelectedNoStatus.Press();
    bench.Settle();
    EXPECT_FALSE(bench.wb.forms.IsFormLoaded("frmViewDatabase"));
    Reopen();
    EXPECT_EQ(view->Grid1.RowCount(), 8u);
}

TEST_F(ViewCommands, FindSelectsTheNextRowThatHoldsTheText) {
    view->ActiveBar1.Press("Alt+D");
    auto& find = Form<frmFind>();
    EXPECT_FALSE(find.cmdFind.Enabled());
    find.txtFind.SetByUser("X.COM");
    std::vector<std::size_t> rows;
    for (int i = 0; i < 3; ++i) {
        find.cmdFind.Press();
        rows.push_back(view->Grid1.CurrentRow().value());
        EXPECT_EQ(view->Grid1.SelBookmarks().All(),
                  std::vector<std::int64_t>{view->Grid1.Rows()->BookmarkAt(rows.back())});
    }
    EXPECT_EQ(rows, (std::vector<std::size_t>{1, 2, 0}));
    AnswerBox(BoxAnswer::Ok, "Not Found");
    find.chkMatchCase.SetByUser("1");
    find.cmdFind.Press();
    ExpectBox("'X.COM' Not Found.");
    Reopen();
    EXPECT_FALSE(bench.wb.forms.IsFormLoaded("frmFind"));
}

TEST_F(ViewCommands, KeysStepThroughTheTables) {
    const std::pair<const char*, const char*> steps[] = {{"Alt+Left", "People"},  // the first
                                                         {"Alt+Down", "Archive"},
                                                         {"Alt+Right", "Archive"},
                                                         {"Alt+Up", "People"}};
    for (const auto& [key, table] : steps) {
        view->ActiveBar1.Press(key);
        EXPECT_EQ(CurrentDatabaseTable(bench.wb), table) << key;
    }
}

TEST_F(ViewCommands, RowColumnAndLayoutComeBack) {
    view->Grid1.SetCurrentColumn(2);
    view->Grid1.SetCurrentRow(1);
    view->Grid1.SetColumnWidth(0, 4321);
    Reopen();
    EXPECT_EQ(view->Grid1.CurrentRow(), 1u);
    EXPECT_EQ(view->Grid1.CurrentColumn(), 2u);
    EXPECT_EQ(view->Grid1.Columns()[0].width, 4321);
    DeleteFile(ProjectFile("dbgd.lyt"));
    Reopen();
    EXPECT_EQ(view->Grid1.CurrentRow(), 1u);
    Show("Archive");
    EXPECT_FALSE(FileExists(ProjectFile("tbkm.dat"))) << "the place was another table's";
    Reopen();
    EXPECT_EQ(CurrentDatabaseTable(bench.wb), "Archive");
    Show("People");
    view->Grid1.SetCurrentRow(2);
    view->ForgetPlace();
    Reopen();
    EXPECT_EQ(view->Grid1.CurrentRow(), 0u);
}

TEST_F(ViewCommands, AStaleBookmarkIsIgnored) {
    for (const char* content : {"", "x", "\xff\xff\xff\xff\xff\xff\xff\x7f"}) {
        CloseView();
        WriteFileText(ProjectFile("tbkm.dat"), content);
        IniWrite("Database", "LastCell", "99", ProjectFile("project.ini"));
        Reopen();
        EXPECT_EQ(view->Grid1.CurrentRow(), 0u);
        EXPECT_EQ(view->Grid1.CurrentColumn(), 0u);
    }
}

class Suspension : public ViewCommands {
protected:
    DaoResult<std::shared_ptr<Database>> OpenExclusive(const SuspendedConnection& suspended) {
        return bench.wb.state.MainWorkspace->OpenDatabase(suspended.Path(), OpenMode::Exclusive);
    }
    /// Works on the file alone, while the connection is suspended.
    void Alone(const std::function<DaoError(Database&)>& work, const std::string& show = {}) {
        SuspendedConnection suspended(bench.wb);
        auto own = OpenExclusive(suspended);
        EXPECT_TRUE(work(**own).Ok());
        (*own)->Close();
        if (!show.empty()) suspended.ShowTable(show);
    }
};

TEST_F(Suspension, GivesTheFileAndBringsTheTableBack) {
    view->Grid1.onHeadClick(1);
    view->Grid1.onHeadClick(1);
    DataControl other(bench.wb);  // as a form of an upper layer has it
    other.DatabaseName = path;
    other.RecordSource = "People";
    ASSERT_TRUE(other.Refresh().Ok());
    const Subscription closes = view->Data1.aboutToClose.Observe([&] { other.Close(); });
    int shown = 0;
    const Subscription shows = view->tableShown.Observe([&] { ++shown; });
    {
        const SuspendedConnection suspended(bench.wb);
        const SuspendedConnection inner(bench.wb);
        auto own = OpenExclusive(inner);
        ASSERT_TRUE(own.Ok()) << own.Error().description;
        view->cmdRefresh.Press();
        view->ActiveBar1.Press("Insert");
        view->Grid1.onHeadClick(0);
        view->Grid1.onKey("Del");
        bench.clock.Advance(std::chrono::seconds(2));
        bench.Settle();
        EXPECT_EQ(view->Data1.Database(), nullptr) << "nothing opens the file meanwhile";
        (*own)->Close();
    }
    EXPECT_EQ(Names(), "Cid Bob Ann ");
    EXPECT_EQ(shown, 1);
}

TEST_F(Suspension, ATableThatHasGoneGivesWayToTheFirst) {
    Show("Archive");
    Alone([](Database& own) { return own.DeleteTable("Archive"); });
    EXPECT_EQ(CurrentDatabaseTable(bench.wb), "People");
    EXPECT_EQ(view->cmbTable.Items(), std::vector<std::string>{"People"});
    Alone(
        [](Database& own) {
            return own.AppendTable({"New", 0, {{.name = "Email"}}, {}});
        },
        "New");
    EXPECT_EQ(CurrentDatabaseTable(bench.wb), "New");
    EXPECT_EQ(view->cmbTable.Text(), "New");
}

TEST_F(Suspension, WorksWithoutAView) {
    CloseView();
    const SuspendedConnection suspended(bench.wb);
    EXPECT_EQ(suspended.Path(), path);
    EXPECT_TRUE(OpenExclusive(suspended).Ok());
}

TEST_F(Suspension, AnOrderByAColumnThatHasGoneIsDropped) {
    view->Grid1.onHeadClick(1);
    Alone([](Database& own) { return own.DeleteField("People", "Name"); });
    EXPECT_EQ(view->Data1.RecordSource, "People");
    EXPECT_EQ(view->Grid1.RowCount(), 3u);
    EXPECT_EQ(Marks(), ",,");
}

}  // namespace
}  // namespace mailvane
