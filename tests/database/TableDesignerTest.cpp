#include "database/TableToolsTest.h"
#include "database/frmDatabaseTable.h"
#include "database/frmDatabaseTablePK.h"
#include "platform/os/Files.h"

namespace mailvane {
namespace {

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
    void AnswerKey(std::function<void()> act) { Act(std::move(act)); }
    void AcceptKey() {
        AnswerKey([this] { Key().Command1.Press(); });
    }
    void ExpectMade(const std::string& name) {
        AnswerBox(BoxAnswer::Ok, "Your new '" + name + "' table has been successfully created. ");
    }
};

TEST_F(TableDesigner, BuildsATableOfEveryTypeWithANumberedKey) {
    AnswerBox(BoxAnswer::Ok, "successfully created");
    bench.Prompts().QueueInput("  Orders ");
    Act([this] {
        EXPECT_EQ(Designer().cmbFieldDataType.Text(), "Text");
        EXPECT_EQ(Designer().txtTableName.Text(), "Orders");
        EXPECT_EQ(Designer().txtTableName.Items(), (std::vector<std::string>{"People", "Archive"}));
        const std::vector<std::string> types = Designer().cmbFieldDataType.Items();
        ASSERT_EQ(types.size(), 10u);
        for (const std::string& type : types)
            Add("c" + type.substr(0, 4), type);
        EXPECT_EQ(Designer().lstFields.Items().front(), "cByte\tByte");
        EXPECT_EQ(Designer().cmdOk.Press(), ControlAnswer::Done);
    });
    AcceptKey();
    view->cmdNewFolder.Press();
    EXPECT_FALSE(bench.wb.forms.IsFormLoaded("frmDatabaseTable"));
    EXPECT_FALSE(bench.wb.forms.IsFormLoaded("frmDatabaseTablePK"));
    EXPECT_EQ(Columns("Orders"),
              "cByte:2 cCurr:5 cDate:8 cDoub:7 cInte:3 cLong:4 cMemo:12 cSing:6 cText:10 cYes/:1 "
              "ID:4");
    const TableDef made = Describe("Orders");
    EXPECT_TRUE(made.fields.back().IsAutoNumber());
    EXPECT_TRUE(made.FindField("cText")->allowZeroLength);
    EXPECT_TRUE(made.FindField("cMemo")->allowZeroLength);
    EXPECT_EQ(made.FindField("cText")->size, DefaultTextSize);
    ASSERT_EQ(made.indexes.size(), 1u);
    EXPECT_EQ(made.indexes[0].name, "Index1");
    EXPECT_TRUE(made.indexes[0].primary);
    EXPECT_EQ(view->Data1.CurrentTable(), "People") << "the view shows what it showed";
    EXPECT_EQ(view->cmbTable.Items().back(), "Orders");
}

TEST_F(TableDesigner, PrimaryKeys) {
    const struct {
        const char* name;
        std::function<void(frmDatabaseTablePK&)> choose;
        const char* columns;
        const char* key;  ///< "" for none
    } cases[] = {
        {"a column", [](auto& key) { key.txtPrimaryKey.SetByUser("code"); }, "Code:10 Name:10",
         "Code"},
        {"a new column", [](auto& key) { key.txtPrimaryKey.SetByUser("Number"); },
         "Code:10 Name:10 Number:4", "Number"},
        {"none", [](auto& key) { key.optNoPrimaryKey.SetByUser("1"); }, "Code:10 Name:10", ""},
        {"no name", [](auto& key) { key.txtPrimaryKey.SetByUser(""); }, "Code:10 Name:10", ""},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(one.name);
        ExpectMade(one.name);
        Act([this] {
            Add("Code");
            Add("Name");
            Designer().cmdOk.Press();
        });
        AnswerKey([this, &one] {
            EXPECT_EQ(Key().Grid1.Columns().size(), 3u);
            EXPECT_EQ(Key().Grid1.RowCount(), 1u);
            one.choose(Key());
            Key().Command1.Press();
        });
        bench.Prompts().QueueInput(one.name);
        view->cmdNewFolder.Press();
        EXPECT_EQ(Columns(one.name), one.columns);
        const TableDef made = Describe(one.name);
        ASSERT_EQ(made.indexes.size(), *one.key ? 1u : 0u);
        for (const Index& index : made.indexes)
            EXPECT_EQ(index.fields, std::vector<std::string>{one.key});
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
    EXPECT_EQ(view->cmbTable.Items(), (std::vector<std::string>{"People", "Archive"}));
    EXPECT_EQ(view->Data1.CurrentTable(), "People");
    EXPECT_EQ(Rows("People"), test::PeopleRows);
}

TEST_F(TableDesigner, AfterABuildTheTableIsAnExistingOne) {
    ExpectMade("Orders");
    NewTable("Orders", [this] {
        Add("Code");
        AcceptKey();
        Designer().cmdBuildTable.Press();
        EXPECT_EQ(Designer().lstFields.Items(),
                  (std::vector<std::string>{"Code\tText", "ID\tLong Integer"}));
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
        EXPECT_EQ(Designer().lstFields.Items(), std::vector<std::string>{"Code\tText"});
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
        build(" Orders ");
        ExpectBox(
            "Please define some columns for this table. \r\n\r\nEnter the name of each field in "
            "the 'Field Name' text box and click the 'Add' button. ");
        EXPECT_EQ(Designer().txtTableName.Text(), "Orders");
        Designer().cmdDelete.Press();
        ExpectBox(
            "Please define some columns for this table. \r\n\r\nEnter the name of each field in "
            "the 'Field Name' textbox and click the 'Add' button. ");
        Designer().txtFieldName.SetByUser("Code");
        Designer().cmdModify.Press();
        ExpectBox(
            "Please define fields. \r\n\r\nEnter the name of each field in the 'Field Name' "
            "textbox and click the 'Add' button. ");
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
    EXPECT_EQ(view->cmbTable.Items(), (std::vector<std::string>{"People", "Archive"}));
    EXPECT_EQ(Rows("People"), test::PeopleRows);
}

TEST_F(TableDesigner, ChangesAnExistingTableAtOnce) {
    AnswerBox(BoxAnswer::No,
              "The contents of field `Name` will be deleted.\r\nDo you want to proceed anyway?");
    AnswerBox(BoxAnswer::Yes, "The contents of field `Name` will be deleted.");
    AnswerBox(BoxAnswer::Yes, "The contents of field `Age` will be deleted.");
    EditPeople([this] {
        EXPECT_EQ(Designer().lstFields.Items(),
                  (std::vector<std::string>{"Email\tText", "Name\tText", "Age\tLong Integer"}));
        Add("Joined", "Date/Time");
        Choose("Age\tLong Integer");
        EXPECT_EQ(Designer().txtFieldName.Text(), "Age");
        EXPECT_EQ(Designer().cmbFieldDataType.Text(), "Long Integer");
        Choose("Name\tText");
        Designer().txtFieldName.SetByUser("First Name");
        Designer().cmdModify.Press();
        EXPECT_EQ(Designer().lstFields.Items()[1], "Name\tText");
        Designer().cmdModify.Press();
        EXPECT_EQ(Designer().lstFields.Items()[1], "First Name\tText");
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
        EXPECT_EQ(Designer().lstFields.Items()[1], "email\tText") << "errors are passed over";
        Designer().cmdNapuniPolja.Press();
        EXPECT_EQ(Designer().lstFields.Items()[1], "Name\tText");
        Choose("Name\tText");
        Designer().cmbFieldDataType.SetByUser("Double");
        Designer().cmdModify.Press();
        Designer().cmdOk.Press();
    });
    EXPECT_EQ(Columns("People"), "Email:10 Age:4 Name:7");
}

TEST_F(TableDesigner, SeveralColumnsGoAtOnce) {
    AnswerBox(BoxAnswer::Yes, "`Age`");
    AnswerBox(BoxAnswer::No, "`Email`");
    EditPeople([this] {
        Designer().lstFields.SetSelected(0, true);
        Designer().lstFields.SetSelected(2, true);
        Designer().cmdDelete.Press();
        EXPECT_EQ(Designer().lstFields.Items(),
                  (std::vector<std::string>{"Email\tText", "Name\tText"}));
        Designer().cmdOk.Press();
    });
    EXPECT_EQ(Columns("People"), "Email:10 Name:10");
}

TEST_F(TableDesigner, AnotherNameMakesTheListedColumnsANewTable) {
    ExpectMade("Persons");
    EditPeople([this] {
        Designer().txtTableName.SetByUser("Archive");
        EXPECT_EQ(Designer().lstFields.Items().back(), "Notes\tText");
        Designer().txtTableName.SetByUser("Persons");
        Add("More");
        AcceptKey();
        Designer().cmdOk.Press();
    });
    EXPECT_EQ(Columns("Persons"), "Email:10 Age:4 Notes:10 More:10 ID:4");
    EXPECT_EQ(Columns("Archive"), "Email:10 Age:4 Notes:10");
}

TEST_F(TableDesigner, BadNamesAndFilesAreTold) {
    bench.Prompts().QueueInput("a,b");
    AnswerBox(BoxAnswer::Ok, "Invalid Table name: 'a,b'");
    view->cmdNewFolder.Press();
    bench.Prompts().QueueInput(std::nullopt);
    view->cmdNewFolder.Press();
    EXPECT_FALSE(bench.wb.forms.IsFormLoaded("frmDatabaseTable"));

    view->Unload();
    bench.Settle();
    AnswerBox(BoxAnswer::Ok, "Please create new database or open existing database first.");
    auto& settings = bench.wb.forms.Get<frmSettings>();
    settings.txtAccessDBPath.SetText("");
    DesignNewTable(bench.wb);
    settings.txtAccessDBPath.SetText(path);
    DeleteFile(path);
    bench.Prompts().QueueInput("Orders");
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

TEST_F(TableDesigner, WithoutAViewTheSettingsKnowTheNewTable) {
    view->Unload();
    bench.Settle();
    ExpectMade("Orders");
    bench.Prompts().QueueInput("Orders");
    Act([this] {
        Add("Code");
        AcceptKey();
        Designer().cmdOk.Press();
    });
    DesignNewTable(bench.wb);
    EXPECT_EQ(bench.wb.forms.Get<frmSettings>().cmbAccessTable.Items().back(), "Orders");
}

}  // namespace
}  // namespace mailvane
