#include "database/TableToolsTest.h"
#include "database/design/frmDatabaseTable.h"
#include "database/design/frmDatabaseTablePK.h"
#include "platform/os/Files.h"

namespace mailvane {
namespace {

using Texts = std::vector<std::string>;

constexpr const char* Proceed = "Do you want to proceed anyway?";

class TableDesigner : public test::TableToolsTest {
protected:
    frmDatabaseTable& Designer() { return Form<frmDatabaseTable>(); }
    frmDatabaseTablePK& Key() { return Form<frmDatabaseTablePK>(); }

    void Add(const std::string& name, const std::string& type = "Text") {
        Designer().txtFieldName.SetByUser(name);
        Designer().cmbFieldDataType.SetByUser(type);
        Designer().cmdAddField.Press();
    }
    void Choose(const std::string& item) {
        for (const int index : Designer().lstFields.SelectedItems())
            Designer().lstFields.SetSelected(index, false);
        Designer().lstFields.SetByUser(item);
    }
    /// Opens the designer for a new table; `act` is what the user does in it.
    void NewTable(const std::string& name, std::function<void()> act) {
        bench.Prompts().QueueInput(name);
        Act(std::move(act));
        view->cmdNewFolder.Press();
    }
    void EditPeople(std::function<void()> act) {
        Act(std::move(act));
        view->cmdEditTable.Press();
    }
    void AcceptKey() {
        Act([this] { Key().Command1.Press(); });
    }
    Texts Listed() { return Designer().lstFields.Items(); }
    void ExpectMade(const std::string& name) {
        AnswerBox(BoxAnswer::Ok, "Your new '" + name + "' table has been successfully created. ");
    }
};

TEST_F(TableDesigner, BuildsATableOfEveryTypeWithANumberedKey) {
    ExpectMade("Orders");
    NewTable("  Orders ", [this] {
        EXPECT_EQ(Designer().cmbFieldDataType.Text(), "Text");
        EXPECT_EQ(Designer().txtTableName.Text(), "Orders");
        EXPECT_EQ(Designer().txtTableName.Items(), (Texts{"People", "Archive"}));
        const Texts types = Designer().cmbFieldDataType.Items();
        ASSERT_EQ(types.size(), 10u);
        for (const std::string& type : types)
            Add("c" + type.substr(0, 4), type);
        EXPECT_EQ(Listed().front(), "cByte\tByte");
        AcceptKey();
        EXPECT_EQ(Designer().cmdOk.Press(), ControlAnswer::Done);
    });
    EXPECT_EQ(Columns("Orders"),
              "cByte:2 cCurr:5 cDate:8 cDoub:7 cInte:3 cLong:4 cMemo:12 cSing:6 cText:10 cYes/:1 "
              "ID:4");
    const TableDef made = Describe("Orders");
    EXPECT_TRUE(made.fields.back().IsAutoNumber());
    EXPECT_TRUE(made.FindField("cText")->allowZeroLength);
    EXPECT_TRUE(made.indexes.at(0).name == "Index1" && made.indexes[0].primary);
    EXPECT_EQ(view->Data1.CurrentTable(), "People") << "the view shows what it showed";
    EXPECT_EQ(view->cmbTable.Items().back(), "Orders");
}

TEST_F(TableDesigner, PrimaryKeys) {
    using Choose = std::function<void(frmDatabaseTablePK&)>;
    const std::tuple<const char*, Choose, const char*, std::string> cases[] = {
        {"a column", [](auto& key) { key.txtPrimaryKey.SetByUser("code"); }, "Code:10 Name:10",
         "Code"},
        {"a new column", [](auto& key) { key.txtPrimaryKey.SetByUser("Number"); },
         "Code:10 Name:10 Number:4", "Number"},
        {"none", [](auto& key) { key.optNoPrimaryKey.SetByUser("1"); }, "Code:10 Name:10", ""},
        {"no name", [](auto& key) { key.txtPrimaryKey.SetByUser(""); }, "Code:10 Name:10", ""},
    };
    for (const auto& [name, choose, columns, column] : cases) {
        SCOPED_TRACE(name);
        ExpectMade(name);
        NewTable(name, [&] {
            Add("Code");
            Add("Name");
            Act([&] {
                EXPECT_EQ(Key().Grid1.Columns().size(), 3u);
                EXPECT_EQ(Key().Grid1.RowCount(), 1u);
                choose(Key());
                Key().Command1.Press();
            });
            Designer().cmdOk.Press();
        });
        EXPECT_EQ(Columns(name), columns);
        const TableDef made = Describe(name);
        ASSERT_EQ(made.indexes.size(), column.empty() ? 0u : 1u);
        for (const Index& index : made.indexes)
            EXPECT_EQ(index.fields, Texts{column});
    }
}

TEST_F(TableDesigner, NothingIsMadeUntilTheTableIsBuilt) {
    NewTable("Orders", [this] {
        Add("Code");
        Act([this] { Key().Command2.Press(); });
        Designer().cmdBuildTable.Press();
        EXPECT_TRUE(Designer().Visible());
        Act([this] { Key().OnCloseBox(); });
        Designer().cmdOk.Press();
        EXPECT_TRUE(Designer().Visible()) << "what was defined is still there";
        EXPECT_EQ(Designer().lstFields.Count(), 1);
        Designer().cmdCancel.Press();
    });
    EXPECT_EQ(view->cmbTable.Items(), (Texts{"People", "Archive"}));
    EXPECT_EQ(Rows("People"), test::PeopleRows);

    ExpectMade("Orders");
    NewTable("Orders", [this] {
        Add("Code");
        AcceptKey();
        Designer().cmdBuildTable.Press();
        EXPECT_EQ(Listed(), (Texts{"Code\tText", "ID\tLong Integer"}));
        Add("Later", "Memo (extended text)");
        Designer().cmdCancel.Press();
    });
    EXPECT_EQ(Columns("Orders"), "Code:10 ID:4 Later:12");
    EXPECT_EQ(Rows("People"), test::PeopleRows) << "the view is back";
}

TEST_F(TableDesigner, ChecksWhatIsTyped) {
    for (const char* text :
         {"Please enter field name. ", "Please enter field name. ",
          "Please select data type for the 'Code' column. ", "Invalid Field name: 'a.b'",
          "Invalid Field name: '  '", "Duplicate field. Please change name of your field. ",
          "Please select the field you want to modify. Just click on it's name. ",
          "Please select the field you want to delete. Just click on it's name. "})
        AnswerBox(BoxAnswer::Ok, text);
    NewTable("Orders", [this] {
        Add("");
        EXPECT_EQ(bench.windows.FocusedControl(), &Designer().txtFieldName);
        Add(" ");
        Designer().txtFieldName.SetByUser("Code");
        Designer().cmbFieldDataType.SetListIndex(-1);
        Designer().cmdAddField.Press();
        Add("a.b");
        Add("  ");
        Add("Code");
        EXPECT_EQ(Designer().txtFieldName.Text(), "");
        Add("Code", "Memo (extended text)");
        Designer().cmdModify.Press();
        Designer().cmdDelete.Press();
        EXPECT_EQ(Listed(), Texts{"Code\tText"});
        Designer().cmdCancel.Press();
    });
    const auto& last = bench.Prompts().Shown();
    EXPECT_EQ(last[last.size() - 3].title, "Error");
    EXPECT_EQ(last[last.size() - 3].icon, BoxIcon::Critical);
}

TEST_F(TableDesigner, ChecksTheTableBeforeItBuilds) {
    bench.Prompts().UseDefaults();
    NewTable("Orders", [this] {
        const auto build = [this](const char* name) {
            Designer().txtTableName.SetByUser(name);
            Designer().cmdBuildTable.Press();
        };
        build("");
        ExpectBox("Please enter Table name. ");
        EXPECT_EQ(bench.windows.FocusedControl(), &Designer().txtTableName);
        build("a!b");
        EXPECT_NE(LastBox().find("Invalid Table name: 'a!b'"), std::string::npos);
        const std::string none = "Please define some columns for this table. \r\n\r\n";
        const std::string enter = "Enter the name of each field in the 'Field Name' ";
        const std::string add = " and click the 'Add' button. ";
        build(" Orders ");
        ExpectBox(none + enter + "text box" + add);
        EXPECT_EQ(Designer().txtTableName.Text(), "Orders");
        Designer().cmdDelete.Press();
        ExpectBox(none + enter + "textbox" + add);
        Designer().txtFieldName.SetByUser("Code");
        Designer().cmdModify.Press();
        ExpectBox("Please define fields. \r\n\r\n" + enter + "textbox" + add);
        Designer().cmdCancel.Press();
    });
}

TEST_F(TableDesigner, EngineErrorsAskWhetherToProceed) {
    AnswerBox(BoxAnswer::Yes, Proceed);  // CODE is there
    AnswerBox(BoxAnswer::No, "Table 'People' already exists.");
    AnswerBox(BoxAnswer::No, Proceed);
    NewTable("People", [this] {
        Add("Code");
        Add("CODE");
        AcceptKey();
        Designer().cmdOk.Press();
        EXPECT_TRUE(Designer().Visible());
        Designer().txtTableName.SetByUser("Orders");
        AcceptKey();
        Designer().cmdBuildTable.Press();
        Designer().cmdCancel.Press();
    });
    EXPECT_EQ(view->cmbTable.Items(), (Texts{"People", "Archive"}));
    EXPECT_EQ(Rows("People"), test::PeopleRows);
}

TEST_F(TableDesigner, ChangesAnExistingTableAtOnce) {
    AnswerBox(BoxAnswer::No,
              "The contents of field `Name` will be deleted.\r\nDo you want to proceed anyway?");
    AnswerBox(BoxAnswer::Yes, "The contents of field `Name` will be deleted.");
    AnswerBox(BoxAnswer::Yes, "The contents of field `Age` will be deleted.");
    EditPeople([this] {
        EXPECT_EQ(Listed(), (Texts{"Email\tText", "Name\tText", "Age\tLong Integer"}));
        Add("Joined", "Date/Time");
        Choose("Age\tLong Integer");
        EXPECT_EQ(Designer().txtFieldName.Text(), "Age");
        EXPECT_EQ(Designer().cmbFieldDataType.Text(), "Long Integer");
        Choose("Name\tText");
        Designer().txtFieldName.SetByUser("First Name");
        Designer().cmdModify.Press();
        EXPECT_EQ(Listed()[1], "Name\tText");
        Designer().cmdModify.Press();
        EXPECT_EQ(Listed()[1], "First Name\tText");
        Choose("Age\tLong Integer");
        Designer().cmdDelete.Press();
        Designer().cmdCancel.Press();
    });
    EXPECT_EQ(Columns("People"), "Email:10 Joined:8 First Name:10");
    EXPECT_EQ(Rows("People"), "a@x.com  \nb@x.com  \nc@x.com  \n");
    ASSERT_EQ(Describe("People").indexes.size(), 1u);
    EXPECT_EQ(view->Grid1.Columns().size(), 3u);
}

TEST_F(TableDesigner, ModifyKeepsTheOldColumnWhenTheNewOneIsRefused) {
    AnswerBox(BoxAnswer::Yes, "`Name` will be deleted.");
    AnswerBox(BoxAnswer::Yes, "`Name` will be deleted.");
    EditPeople([this] {
        Choose("Name\tText");
        Designer().txtFieldName.SetByUser("email");
        Designer().cmdModify.Press();
        EXPECT_EQ(Listed()[1], "email\tText") << "errors are passed over";
        Designer().cmdNapuniPolja.Press();
        EXPECT_EQ(Listed()[1], "Name\tText");
        Choose("Name\tText");
        Designer().cmbFieldDataType.SetByUser("Double");
        Designer().cmdModify.Press();
        Designer().cmdOk.Press();
    });
    EXPECT_EQ(Columns("People"), "Email:10 Age:4 Name:7");

    AnswerBox(BoxAnswer::Yes, "`Age`");
    AnswerBox(BoxAnswer::No, "`Email`");
    EditPeople([this] {
        Designer().lstFields.SetSelected(0, true);
        Designer().lstFields.SetSelected(1, true);
        Designer().cmdDelete.Press();
        Designer().cmdOk.Press();
    });
    EXPECT_EQ(Columns("People"), "Email:10 Name:7");
}

TEST_F(TableDesigner, AnotherNameMakesTheListedColumnsANewTable) {
    ExpectMade("Persons");
    EditPeople([this] {
        Designer().txtTableName.SetByUser("Archive");
        EXPECT_EQ(Listed().back(), "Notes\tText");
        Designer().txtTableName.SetByUser("Persons");
        Add("More");
        AcceptKey();
        Designer().cmdOk.Press();
    });
    EXPECT_EQ(Columns("Persons"), "Email:10 Age:4 Notes:10 More:10 ID:4");
    EXPECT_EQ(Columns("Archive"), "Email:10 Age:4 Notes:10");
}

TEST_F(TableDesigner, NeedsAGoodNameAndAFile) {
    bench.Prompts().QueueInput("a,b");
    AnswerBox(BoxAnswer::Ok, "Invalid Table name: 'a,b'");
    view->cmdNewFolder.Press();
    bench.Prompts().QueueInput(std::nullopt);
    view->cmdNewFolder.Press();
    EXPECT_FALSE(bench.wb.forms.IsFormLoaded("frmDatabaseTable"));

    CloseView();
    AnswerBox(BoxAnswer::Ok, "Please create new database or open existing database first.");
    Settings().txtAccessDBPath.SetText("");
    DesignNewTable(bench.wb);
    Settings().txtAccessDBPath.SetText(path);
    ExpectMade("Orders");
    bench.Prompts().QueueInput("Orders");
    Act([this] {
        Add("Code");
        AcceptKey();
        Designer().cmdOk.Press();
    });
    DesignNewTable(bench.wb);
    EXPECT_EQ(Settings().cmbAccessTable.Items().back(), "Orders");
    DeleteFile(path);
    bench.Prompts().QueueInput("More");
    AnswerBox(BoxAnswer::Ok, "Invalid database file. ");
    DesignNewTable(bench.wb);
    EXPECT_FALSE(bench.wb.forms.IsFormLoaded("frmDatabaseTable"));
}

TEST_F(TableDesigner, AFileThatHasGoneKeepsTheDialog) {
    AnswerBox(BoxAnswer::Ok, "Could not find file");  // the view's
    AnswerBox(BoxAnswer::No, "\r\n\r\nDo you want to continue?");
    AnswerBox(BoxAnswer::Ok, "Invalid database file. ");
    EditPeople([this] {
        DeleteFile(path);
        Designer().cmdOk.Press();
        EXPECT_TRUE(Designer().Visible());
        Designer().cmdOk.Press();
        Add("More");
        AnswerBox(BoxAnswer::Ok, "Could not find file");
        Designer().cmdCancel.Press();
    });
}

}  // namespace
}  // namespace mailvane
