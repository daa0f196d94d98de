#include <gtest/gtest.h>

#include "core/Settings.h"
#include "core/frmSettings.h"
#include "database/DatabaseService.h"
#include "database/frmViewDatabase.h"
#include "support/TestBench.h"

namespace mailvane {
namespace {

class ViewDatabase : public testing::Test {
protected:
    void SetUp() override {
        bench.UseProject();
        path = bench.InProgramFolder("lists.db");
        auto made = bench.wb.state.MainWorkspace->CreateDatabase(path);
        ASSERT_TRUE(made.Ok()) << made.Error().description;
        for (const char* table : {"Customers", "Prospects 1/2"}) {
            ASSERT_TRUE((*made)->AppendTable(TableNamed(table)).Ok());
            const std::string insert = std::string("INSERT INTO [") + table + "] ([Email]) VALUES ";
            for (const char* value : {"('a@example.com')", "('b@example.com')"})
                ASSERT_TRUE((*made)->Execute(insert + value).Ok());
        }
        ASSERT_TRUE((*made)->Execute("DELETE * FROM [Customers] WHERE Email Like 'b*'").Ok());
        (*made)->Close();
    }

    static TableDef TableNamed(const std::string& name) {
        TableDef table;
        table.name = name;
        table.fields = {{.name = "Email"}, {.name = "First Name"}};
        return table;
    }

    frmSettings& Settings() { return bench.wb.forms.Get<frmSettings>(); }
    frmViewDatabase& View() { return bench.wb.forms.Get<frmViewDatabase>(); }

    test::TestBench bench;
    DatabaseService service{bench.wb};
    std::string path;
};

TEST_F(ViewDatabase, ShowsTheProjectsTableAndFollowsIt) {
    Settings().txtAccessDBPath.SetText(path);
    frmViewDatabase& view = View();
    view.Show();
    EXPECT_TRUE(view.Connected());
    EXPECT_EQ(CurrentDatabaseTable(bench.wb), "Customers");
    EXPECT_EQ(view.cmbTable.Items(), (std::vector<std::string>{"Customers", "Prospects 1/2"}));
    EXPECT_EQ(view.Grid1.RowCount(), 1u);
    EXPECT_EQ(bench.shell.recordPanel, "1 records.");

    EXPECT_EQ(view.cmbTable.SetByUser("Prospects 1/2"), ControlAnswer::Done);
    EXPECT_EQ(CurrentDatabaseTable(bench.wb), "Prospects 1/2");
    EXPECT_EQ(view.Grid1.RowCount(), 2u);
    EXPECT_EQ(bench.shell.recordPanel, "2 records.");
    view.cmdRefresh.Press();
    EXPECT_EQ(Settings().cmbAccessTable.SetByUser("Customers"), ControlAnswer::Done);
    EXPECT_EQ(CurrentDatabaseTable(bench.wb), "Customers");
    EXPECT_EQ(view.cmbTable.Text(), "Customers");
}

TEST_F(ViewDatabase, SelectionShowsInTheStatusText) {
    Settings().txtAccessDBPath.SetText(path);
    View().Show();
    View().cmbTable.SetByUser("Prospects 1/2");
    View().Grid1.AddSelected(View().Grid1.Rows()->BookmarkAt(1));
    EXPECT_EQ(bench.shell.recordPanel, " Selected 1/2 records  ");
}

TEST_F(ViewDatabase, GridRowAndRecordsetStayInLine) {
    Settings().txtAccessDBPath.SetText(path);
    View().cmbTable.SetByUser("Prospects 1/2");
    View().Grid1.SetCurrentRow(1);
    EXPECT_EQ(*View().Data1.Recordset()->Get("Email"), DaoValue("b@example.com"));
    View().ActiveBar1.Press("First");
    EXPECT_EQ(*View().Data1.Recordset()->Get("Email"), DaoValue("a@example.com"));
}

TEST_F(ViewDatabase, RemembersTheLastTableAndFallsBackWhenItHasGone) {
    Settings().txtAccessDBPath.SetText(path);
    View().cmbTable.SetByUser("Prospects 1/2");
    View().Unload();
    bench.Settle();
    EXPECT_EQ(View().Data1.CurrentTable(), "Prospects 1/2");
    View().Unload();
    bench.Settle();
    IniWrite("Database", "LastTable", "Gone", bench.wb.state.ProjectFolder + "/project.ini");
    Settings().cmbAccessTable.SetText("Customers");
    EXPECT_EQ(View().Data1.CurrentTable(), "Customers");
}

TEST_F(ViewDatabase, WithoutAFileAsksForOne) {
    bench.Prompts().QueueBox(BoxAnswer::Yes, "local file name");
    EXPECT_FALSE(View().Connected());
    EXPECT_TRUE(Settings().Visible());
    EXPECT_EQ(bench.Prompts().Failure(), std::nullopt);
}

TEST_F(ViewDatabase, AnotherDatabaseReplacesTheFirst) {
    Settings().txtAccessDBPath.SetText(path);
    View().Show();
    const std::string other = bench.InProgramFolder("other.db");
    auto made = bench.wb.state.MainWorkspace->CreateDatabase(other);
    ASSERT_TRUE((*made)->AppendTable(TableNamed("Only")).Ok());
    (*made)->Close();
    int told = 0;
    const Subscription shown = View().tableShown.Observe([&told] { ++told; });
    Settings().txtAccessDBPath.SetText(other);
    EXPECT_EQ(View().Data1.CurrentTable(), "Only");
    EXPECT_EQ(View().cmbTable.Items(), std::vector<std::string>{"Only"});
    EXPECT_EQ(told, 1);
}

TEST_F(ViewDatabase, FilesThatAreNoDatabaseAreTold) {
    const std::string text = bench.folder.Write("notes.txt", "These are my notes, not a database.");
    bench.Prompts().QueueBox(BoxAnswer::Ok, "Unrecognized database format");
    Settings().txtAccessDBPath.SetText(text);
    EXPECT_EQ(bench.Prompts().Failure(), std::nullopt);
    EXPECT_EQ(Settings().cmbAccessTable.Count(), 0);
}

}  // namespace
}  // namespace mailvane
