#include "core/notices/frmMSGCompact.h"
#include "database/TableToolsTest.h"
#include "platform/os/Files.h"

namespace mailvane {
namespace {

class TableStructure : public test::TableToolsTest {
protected:
    void Name(const std::string& name) { bench.Prompts().QueueInput(name); }
};

TEST_F(TableStructure, ColumnsComeGoAndChangeTheirNames) {
    Name(" Notes ");
    view->cmdNewColumn.Press();
    EXPECT_TRUE(Describe("People").FindField("Notes")->allowZeroLength);
    EXPECT_EQ(view->Grid1.Columns().size(), 4u);

    view->Grid1.SetCurrentColumn(1);
    Name("First Name");
    view->cmdRenameColumn.Press();
    EXPECT_EQ(Columns("People"), "Email:10 First Name:10 Age:4 Notes:10");

    view->Grid1.SetCurrentColumn(2);
    AnswerBox(BoxAnswer::No, "Are you sure you want to delete `Age` column?");
    view->cmdDeleteColumn.Press();
    AnswerBox(BoxAnswer::Yes, "Are you sure you want to delete `Age` column?");
    view->cmdDeleteColumn.Press();
    EXPECT_EQ(Rows("People"), "a@x.com Ann \nb@x.com Bob \nc@x.com Cid \n");
    EXPECT_EQ(Describe("People").indexes.size(), 1u);

    view->SortGridByColumn(0);
    view->Grid1.SetCurrentColumn(0);
    AnswerBox(BoxAnswer::Yes, "`Email`");
    view->cmdDeleteColumn.Press();
    EXPECT_EQ(view->Data1.CurrentTable(), "People") << "in another order";
    EXPECT_EQ(view->Grid1.RowCount(), 3u);
    EXPECT_TRUE(Describe("People").indexes.empty());
    EXPECT_EQ(Columns("People"), "First Name:10 Notes:10");
}

TEST_F(TableStructure, TablesGoAndChangeTheirNames) {
    Name("Persons");
    view->cmdRenameFolder.Press();
    EXPECT_EQ(view->Data1.CurrentTable(), "Persons");
    EXPECT_EQ(view->cmbTable.Items(), (std::vector<std::string>{"Persons", "Archive"}));
    EXPECT_EQ(Rows("Persons"), test::PeopleRows);

    AnswerBox(BoxAnswer::No, "Are you sure you want to delete `Persons` table?");
    view->cmdDeleteFolder.Press();
    AnswerBox(BoxAnswer::Yes, "Are you sure you want to delete `Persons` table?");
    view->cmdDeleteFolder.Press();
    EXPECT_EQ(view->Data1.CurrentTable(), "Archive");
    EXPECT_EQ(view->cmbTable.Text(), "Archive");
    AnswerBox(BoxAnswer::Yes, "`Archive`");
    view->cmdDeleteFolder.Press();
    EXPECT_EQ(view->Grid1.Columns().size(), 0u);
    AnswerBox(BoxAnswer::Ok, "Please select the column you want to delete.");
    view->cmdRenameColumn.Press();
}

TEST_F(TableStructure, NamesAndEngineErrorsAreTold) {
    // The box of each: "" for none.
    const std::tuple<Button*, const char*, const char*, std::string> cases[] = {
        {&view->cmdNewColumn, "a.b", "New column", "Invalid Column name: 'a.b'"},
        {&view->cmdNewColumn, "  ", "New column", ""},
        {&view->cmdNewColumn, "EMAIL", "New column", "Email"},
        {&view->cmdRenameColumn, "a`b", "Rename column", "Invalid Column name: 'a`b'"},
        {&view->cmdRenameColumn, "Name", "Rename column", "Name"},
        {&view->cmdRenameFolder, "a[b", "Rename table", "Invalid Table name: 'a[b'"},
        {&view->cmdRenameFolder, "archive", "Rename table", "Table 'archive' already exists."},
    };
    for (const auto& [button, name, title, box] : cases) {
        SCOPED_TRACE(name);
        const std::size_t before = bench.Prompts().Shown().size();
        if (!box.empty()) AnswerBox(BoxAnswer::Ok, "");
        Name(name);
        button->Press();
        ASSERT_EQ(bench.Prompts().Shown().size(), before + (box.empty() ? 1 : 2));
        EXPECT_EQ(bench.Prompts().Shown()[before].title, title);
        EXPECT_EQ(view->Data1.CurrentTable(), "People");
        ASSERT_NE(view->Data1.Database(), nullptr) << "the view is connected again";
    }
    EXPECT_EQ(Columns("People"), "Email:10 Name:10 Age:4");
    // A table that has gone meanwhile changes nothing, and nothing is said.
    ASSERT_TRUE(view->Data1.Database()->DeleteTable("People").Ok());
    Name("Other");
    AnswerBox(BoxAnswer::Ok, "not found");
    view->cmdRenameFolder.Press();
    EXPECT_EQ(view->Data1.CurrentTable(), "Archive");
}

class DatabaseUpkeep : public test::TableToolsTest {
protected:
    void Fill() {
        Database& database = *view->Data1.Database();
        ASSERT_TRUE(
            database.Execute("UPDATE People SET Name = '" + std::string(50000, 'x') + "'").Ok());
        for (int i = 0; i < 6; ++i)
            ASSERT_TRUE(database.Execute("INSERT INTO People SELECT * FROM People").Ok());
        ASSERT_TRUE(database.Execute("DELETE * FROM People WHERE Age <> 31").Ok());
    }
};

TEST_F(DatabaseUpkeep, CompactLeavesACopyThatTheNextOneReplaces) {
    Fill();
    Act([this] { Form<frmMSGCompact>().cmdCancel.Press(); });
    view->cmdCompact.Press();
    EXPECT_FALSE(FileExists(path + ".bak"));

    const std::string told = "Successfully compacted the '" + path + "' database.";
    for (int round = 0; round < 2; ++round) {
        Act([this] { Form<frmMSGCompact>().cmdStart.Press(); });
        AnswerBox(BoxAnswer::Ok, told);
        const std::string before = Rows("People");
        view->cmdCompact.Press();
        EXPECT_EQ(view->Grid1.RowCount(), round == 0 ? 64u : 0u);
        EXPECT_EQ(Rows("People"), before);
        EXPECT_EQ(Describe("People").indexes.size(), 1u);
        EXPECT_TRUE(FileExists(path + ".bak"));
        EXPECT_LT(FileSize(path + ".bak"), 10'000'000);
        ASSERT_TRUE(view->Data1.Database()->Execute("DELETE * FROM People").Ok());
        auto copy = Workspace::Create()->OpenDatabase(path + ".bak");
        ASSERT_TRUE(copy.Ok());
        EXPECT_EQ((*copy)->OpenRecordset("People").ValueOr(nullptr)->RecordCount(),
                  round == 0 ? 64 : 0)
            << "a copy of its own";
    }
    SaveUserSetting(bench.wb, "Messages", "Compact", "1");
    AnswerBox(BoxAnswer::Ok, told);
    view->cmdCompact.Press();  // without the warning
}

TEST_F(DatabaseUpkeep, RepairTakesTheCopyAway) {
    bench.folder.Write("program/lists.db.bak", "old");
    AnswerBox(BoxAnswer::Ok, "Successfully repaired the '" + path + "' database.");
    view->cmdRepair.Press();
    EXPECT_FALSE(FileExists(path + ".bak"));
    EXPECT_EQ(Rows("People"), test::PeopleRows);
}

TEST_F(DatabaseUpkeep, AFailureLeavesTheViewUsable) {
    auto other = Workspace::Create();
    ASSERT_TRUE(other->OpenDatabase(path).Ok());
    const auto open = other->OpenDatabase(path);
    SaveUserSetting(bench.wb, "Messages", "Compact", "1");
    for (Button* button : {&view->cmdRepair, &view->cmdCompact}) {
        AnswerBox(BoxAnswer::Ok, "The database is opened exclusively by another user.");
        button->Press();
        EXPECT_EQ(Rows("People"), test::PeopleRows);
        EXPECT_EQ(view->Grid1.RowCount(), 3u);
    }
}

TEST_F(DatabaseUpkeep, LeftoversOfAKilledRunGoWhenTheViewComes) {
    CloseView();
    for (const char* name : {"lists.db.mailvane-new", "lists.db.bak.mailvane-new-journal"})
        bench.folder.Write(std::string("program/") + name, "half");
    bench.folder.Write("program/lists.db.new", "the user's");
    Reopen();
    EXPECT_FALSE(FileExists(path + ".mailvane-new"));
    EXPECT_FALSE(FileExists(path + ".bak.mailvane-new-journal"));
    EXPECT_TRUE(FileExists(path + ".new"));
}

}  // namespace
}  // namespace mailvane
