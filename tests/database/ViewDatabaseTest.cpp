#include "database/TableToolsTest.h"

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

    Show("Archive");
    EXPECT_EQ(CurrentDatabaseTable(bench.wb), "Archive");
    EXPECT_EQ(bench.shell.recordPanel, "0 records.");
    view->cmdRefresh.Press();
    EXPECT_EQ(Settings().cmbAccessTable.SetByUser("People"), ControlAnswer::Done);
    EXPECT_EQ(CurrentDatabaseTable(bench.wb), "People");
    EXPECT_EQ(view->cmbTable.Text(), "People");
}

TEST_F(ViewDatabase, GridRowAndRecordsetStayInLine) {
    view->Grid1.SetCurrentRow(1);
    EXPECT_EQ(*view->Data1.Recordset()->Get("Name"), DaoValue("Bob"));
    view->ActiveBar1.Press("First");
    EXPECT_EQ(*view->Data1.Recordset()->Get("Name"), DaoValue("Ann"));
}

TEST_F(ViewDatabase, RemembersTheLastTableAndFallsBackWhenItHasGone) {
    Show("Archive");
    Reopen();
    EXPECT_EQ(view->Data1.CurrentTable(), "Archive");
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

TEST_F(ViewDatabase, FilesThatAreNoDatabaseAreTold) {
    CloseView();
    AnswerBox(BoxAnswer::Ok, "Unrecognized database format");
    Settings().txtAccessDBPath.SetText(
        bench.folder.Write("notes.txt", "These are my notes, not a database."));
    EXPECT_EQ(Settings().cmbAccessTable.Count(), 0);
}

}  // namespace
}  // namespace mailvane
