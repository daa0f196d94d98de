#include <gtest/gtest.h>

#include "core/Settings.h"
#include "core/frmSettings.h"
#include "database/DatabaseService.h"
#include "database/frmDataWizard.h"
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

class DataWizard : public ViewDatabase {
protected:
    void SetUp() override {
        ViewDatabase::SetUp();
        list = bench.folder.Write("people.csv", "Email,Name\nx@example.com,\"Ana, B.\"\n");
        // The wizard is modal: what the user does in it happens while it stands open.
        whileOpen = bench.windows.idle.Observe([this] {
            if (auto* wizard = bench.wb.forms.Find<frmDataWizard>(); wizard && act) {
                const auto once = std::exchange(act, nullptr);
                once(*wizard);
            }
        });
    }
    std::string list;
    std::function<void(frmDataWizard&)> act;
    Subscription whileOpen;
};

TEST_F(DataWizard, NewDatabaseBecomesTheProjects) {
    const std::string made = bench.InProgramFolder("new.db");
    bench.Prompts().QueueFile(made);
    bench.Prompts().QueueBox(BoxAnswer::Ok, "1 records imported into the 'people' table.");
    act = [this](frmDataWizard& wizard) {
        wizard.txtFile.SetByUser(list);
        wizard.cmdFinish.Press();
    };
    Settings().cmdCreateDatabase.Press();
    EXPECT_EQ(bench.Prompts().Failure(), std::nullopt);
    EXPECT_EQ(Settings().txtAccessDBPath.Text(), made);
    EXPECT_EQ(Settings().cmbAccessTable.Text(), "people");
    EXPECT_EQ(View().Grid1.RowCount(), 1u);
    EXPECT_FALSE(bench.wb.forms.IsFormLoaded("frmDataWizard"));
}

TEST_F(DataWizard, AFailedImportLeavesNoNewDatabase) {
    const std::string made = bench.InProgramFolder("new.db");
    list = bench.folder.Write("bad.csv", "a\n1,2\n");
    bench.Prompts().QueueFile(made);
    bench.Prompts().QueueBox(BoxAnswer::Ok, "Line 2");
    act = [this](frmDataWizard& wizard) {
        wizard.txtFile.SetByUser(list);
        wizard.cmdFinish.Press();
        EXPECT_TRUE(wizard.Visible()) << "what was typed can be corrected";
        wizard.cmdCancel.Press();
    };
    Settings().cmdCreateDatabase.Press();
    EXPECT_FALSE(FileExists(made));
    EXPECT_EQ(Settings().txtAccessDBPath.Text(), "");
}

TEST_F(DataWizard, ChecksItsFields) {
    Settings().txtAccessDBPath.SetText(path);
    bench.Prompts().QueueBox(BoxAnswer::Ok, "File not found.");
    bench.Prompts().QueueBox(BoxAnswer::Ok, "Invalid Table name: 'a.b'");
    bench.Prompts().QueueBox(BoxAnswer::Ok, "already exists");
    act = [this](frmDataWizard& wizard) {
        wizard.txtFile.SetByUser("/nowhere.csv");
        wizard.cmdFinish.Press();
        wizard.txtFile.SetByUser(list);
        wizard.txtTable.SetByUser("a.b");
        wizard.cmdFinish.Press();
        wizard.txtTable.SetByUser("customers");
        wizard.cmdFinish.Press();
        wizard.cmdCancel.Press();
    };
    Settings().cmdImportData.Press();
    EXPECT_EQ(bench.Prompts().Failure(), std::nullopt);
}

}  // namespace
}  // namespace mailvane
