#include "core/Paths.h"
#include "core/Sifrant.h"
#include "database/frmFind.h"
#include "merge/MergeBench.h"
#include "merge/MergeDocument.h"
#include "merge/frmViewMerge.h"

namespace mailvane::test {
namespace {

struct ViewMergeTest : testing::Test, MergeBench {
    std::string Document(const std::string& name, const std::string& plain) {
        return folder.Write(name, ScrambleMergeDocument(plain));
    }
};

TEST_F(ViewMergeTest, ChoosesTheAddressColumn) {
    struct Row {
        const char* name;
        std::vector<Field> fields;
        const char* chosen;
    };
    const Row rows[] = {
        {"first of two",
         {{.name = "Name"}, {.name = "My EMAIL"}, {.name = "E-Mail 2"}},
         "My EMAIL"},
        {"with a hyphen", {{.name = "Name"}, {.name = "E-mail"}}, "E-mail"},
        {"none", {{.name = "Address"}, {.name = "Name"}}, "Address"},
    };
    for (const Row& row : rows)
        MakeTable(row.name, row.fields, {});
    frmViewMerge& view = Message();
    for (const Row& row : rows) {
        view.cmbTable.SetText(row.name);
        EXPECT_EQ(view.txtTo.Text(), row.chosen) << row.name;
        EXPECT_EQ(view.pnlTable.Text(), std::string(" Current table: ") + row.name + "      ");
        EXPECT_EQ(CurrentDatabaseTable(wb), row.name);
        EXPECT_EQ(view.lstFields.Count(), static_cast<int>(row.fields.size()));
    }
}

TEST_F(ViewMergeTest, FollowsTheDatabaseView) {
    MakeRecipients(2, "One");
    MakeTable("Two", {{.name = "Mail"}}, {});
    frmViewMerge& view = Message();
    frmViewDatabase& databaseView = wb.forms.Get<frmViewDatabase>();
    view.txtTo.SetListIndex(1);
    databaseView.cmdRefresh.Press();
    EXPECT_EQ(view.txtTo.Text(), "Name") << "the same columns keep the choice";
    databaseView.cmbTable.SetText("Two");
    EXPECT_EQ(view.CurrentMergeTable(), "Two");
    EXPECT_EQ(view.lstFields.Items(), std::vector<std::string>{"Mail"});
    clock.Advance(std::chrono::seconds(1));
    Settle();
    EXPECT_EQ(view.lblTable.Text(), "Two");
    EXPECT_EQ(view.cmbTable.Text(), "Two");
    databaseView.Data1.Close();
    EXPECT_FALSE(view.Data1.Database()) << "a tool that closes the file finds it closed";
    databaseView.cmdRefresh.Press();
    EXPECT_TRUE(view.Data1.Recordset());

    database = *wb.state.MainWorkspace->CreateDatabase(folder.File("other.db"));
    MakeTable("Other", {{.name = "Address"}}, {});
    wb.forms.Get<frmSettings>().txtAccessDBPath.SetText(folder.File("other.db"));
    databaseView.Reconnect();
    EXPECT_EQ(view.cmbTable.Items(), std::vector<std::string>{"Other"});
    EXPECT_EQ(view.txtTo.Text(), "Address");
}

TEST_F(ViewMergeTest, ADocumentBringsItsTable) {
    MakeRecipients(2, "One");
    MakeTable("Two", {{.name = "Email"}, {.name = "Other email"}}, {});
    frmViewMerge& view = Message();
    struct Row {
        const char* name;
        const char* table;
        int index;
        const char* shown;
        const char* to;
    };
    const Row rows[] = {
        {"the table in use", "One", 1, "One", "Name"},
        {"another one, in other letters", "TWO", 1, "Two", "Other email"},
        {"a column that it lacks", "One", 9, "One", "Email"},
        {"a table that is not there", "Three", 1, "One", "Name"},
    };
    for (const Row& row : rows) {
        view.OpenMergeDocument(Document("m.dmg", std::string("txtBody*|*B#|#txtTo*|*") +
                                                     std::to_string(row.index) + "#|#lblTable*|*" +
                                                     row.table + "#|#\r\n"));
        EXPECT_EQ(view.CurrentMergeTable(), row.shown) << row.name;
        EXPECT_EQ(CurrentDatabaseTable(wb), row.shown) << row.name;
        EXPECT_EQ(view.txtTo.Text(), row.to) << row.name;
        EXPECT_EQ(view.txtBody.Text(), "B") << row.name;
        view.lblTable.SetText(row.shown);
    }
    view.Show();
    Prompts().QueueBox(BoxAnswer::Ok,
                       "Your table 'Three' cannot be found in the current database. ");
    view.OpenMergeDocument(Document("m.dmg", "lblTable*|*Three#|#\r\n"));
    EXPECT_FALSE(Prompts().Failure());
    EXPECT_EQ(Prompts().Shown().back().title, "Wrong table");
}

TEST_F(ViewMergeTest, FieldsGoIntoTheMessage) {
    MakeRecipients(1);
    frmViewMerge& view = Message("Hello !");
    view.txtBody.Select(6, 0);
    view.lstFields.onDoubleClick();
    EXPECT_EQ(view.txtBody.Text(), "Hello !") << "no field is chosen";
    view.lstFields.SetListIndex(1);
    view.lstFields.onDoubleClick();
    EXPECT_EQ(view.txtBody.Text(), "Hello [Name]!");
    view.lstAttach.SetItems({"/a/file"});
    view.lstAttach.onDropText(view.lstFields.dragText(0));
    EXPECT_EQ(view.lstAttach.Items(), std::vector<std::string>{"[Email]"});
}

TEST_F(ViewMergeTest, NewSaveAndRecentFiles) {
    MakeRecipients(1);
    frmSettings& settings = wb.forms.Get<frmSettings>();
    settings.txtName.SetText("Ann");
    settings.txtEmail.SetText("ann@x");
    frmViewMerge& view = Message();
    const std::string missing =
        "Some very important files are corrupted. To solve the problem please reinstall the "
        "program. ";
    Prompts().QueueBox(BoxAnswer::Ok);
    view.ActiveBar1.Press("New");
    EXPECT_TRUE(Prompts().ExpectBox(missing));
    EXPECT_EQ(view.txtBody.Text(), "Body");

    WriteFileText(InProgramFolder("msge.mg"), ScrambleMergeDocument("txtBody*|*template#|#\r\n"));
    view.ActiveBar1.Press("New");
    EXPECT_EQ(view.txtBody.Text(), "template");
    EXPECT_EQ(view.txtFrom.Text(), "\"Ann\" <ann@x>");
    EXPECT_EQ(view.CurrentFile(), "");
    EXPECT_EQ(view.Caption(), "E-mail Merge");
    EXPECT_FALSE(view.ActiveBar1.FindTool("RecentFile1")->visible);

    Prompts().QueueFile(folder.File("saved"));
    view.ActiveBar1.Press("Save");
    EXPECT_EQ(view.CurrentFile(), folder.File("saved.dmg"));
    EXPECT_EQ(view.ActiveBar1.FindTool("RecentFile1")->caption, folder.File("saved.dmg"));
    DeleteFile(folder.File("saved.dmg"));
    Prompts().QueueBox(BoxAnswer::Ok, "File not found.");
    view.ActiveBar1.Press("RecentFile1");
    EXPECT_FALSE(Prompts().Failure());
}

TEST_F(ViewMergeTest, TheLastDocumentOpensWithTheForm) {
    MakeRecipients(1);
    Message("kept").SaveMergeDocument(folder.File("kept.dmg"));
    wb.forms.Find<frmViewMerge>()->Unload();
    Settle();
    EXPECT_EQ(wb.forms.Get<frmViewMerge>().txtBody.Text(), "kept");
}

TEST_F(ViewMergeTest, InsertsAtTheCaret) {
    MakeRecipients(1);
    frmViewMerge& view = Message("ab");
    view.txtBody.Select(1, 0);
    Prompts().QueueFile(folder.Write("part.txt", "-file-"));
    view.ActiveBar1.Press("Text from File");
    wb.forms.Get<frmSettings>().txtSignature.SetText("-sig-");
    view.ActiveBar1.Press("Signature");
    EXPECT_EQ(view.txtBody.Text(), "a-file--sig-b");

    wb.forms.Get<frmSettings>().txtSignature.SetText("");
    Prompts().QueueBox(BoxAnswer::Yes, "Do you want to create signature");
    view.ActiveBar1.Press("Signature");
    EXPECT_EQ(wb.forms.Get<frmSettings>().Tab1.Current(), frmSettings::SignaturePage);
    EXPECT_TRUE(wb.forms.Get<frmSettings>().Visible());
}

TEST_F(ViewMergeTest, WithoutADatabaseItOffersTheSettings) {
    Prompts().QueueBox(BoxAnswer::Yes, "You must enter local file name for your database. ");
    frmViewMerge& view = wb.forms.Get<frmViewMerge>();
    view.Show();
    EXPECT_FALSE(view.IsLoaded());
    EXPECT_FALSE(view.Visible());
    EXPECT_TRUE(wb.forms.Get<frmSettings>().Visible());
    Settle();

    Prompts().QueueBox(BoxAnswer::No);
    EXPECT_TRUE(wb.forms.Get<frmViewMerge>().IsLoaded());
}

TEST_F(ViewMergeTest, LearnsAndOffersSenders) {
    MakeRecipients(1);
    const std::string list = "a@x\",\"bob@x\",\"";
    WriteFileText(InProgramFolder("addr.dat"), ScrambleText(list));
    frmViewMerge& view = Message();
    view.txtFrom.SetText("b");
    view.txtFrom.onKeyUp('B');
    EXPECT_EQ(view.txtFrom.Text(), "bob@x");
    EXPECT_EQ(view.txtFrom.SelectionStart(), 1u);
    view.txtFrom.SetByUser("Carol <c@x>");
    view.txtFrom.SetText("ca");
    view.txtFrom.onKeyUp('A');
    EXPECT_EQ(view.txtFrom.Text(), "carol <c@x>");
    view.txtFrom.onLeave();
    view.Unload();
    EXPECT_EQ(UnscrambleText(ReadFileText(InProgramFolder("addr.dat"))), list + "Carol <c@x>\",\"");
}

TEST_F(ViewMergeTest, FindsInTheBody) {
    MakeRecipients(1);
    frmViewMerge& view = Message("one two ONE");
    view.ActiveBar1.Press("Find");
    auto* find = wb.forms.Find<frmFind>();
    ASSERT_TRUE(find && find->Visible());
    struct Row {
        const char* text;
        const char* matchCase;
        std::size_t start;
        std::size_t length;
    };
    const Row rows[] = {{"one", "0", 0, 3}, {"one", "0", 8, 3}, {"one", "0", 0, 3},
                        {"ONE", "1", 8, 3}, {"ONE", "1", 8, 3}, {"two", "0", 4, 3},
                        {"TWO", "1", 4, 3}, {"gone", "0", 4, 3}};
    Prompts().QueueBox(BoxAnswer::Ok, "'TWO' Not Found.");
    Prompts().QueueBox(BoxAnswer::Ok, "'gone' Not Found.");
    for (const Row& row : rows) {
        find->chkMatchCase.SetByUser(row.matchCase);
        find->txtFind.SetByUser(row.text);
        find->cmdFind.Press();
        EXPECT_EQ(view.txtBody.SelectionStart(), row.start) << row.text;
        EXPECT_EQ(view.txtBody.SelectionLength(), row.length) << row.text;
    }
    EXPECT_EQ(Prompts().Shown().back().title, "Find");
    EXPECT_FALSE(Prompts().Failure());
    view.Unload();
    EXPECT_FALSE(find->Visible());
}

TEST_F(ViewMergeTest, EveryKeyHasItsEffect) {
    MakeRecipients(1);
    frmViewMerge& view = Message("some text");
    std::vector<EditCommand> commands;
    std::vector<int> sizes;
    const auto command =
        view.txtBody.commanded.Observe([&](EditCommand given) { commands.push_back(given); });
    const auto size = view.txtBody.fontSized.Observe([&](int points) { sizes.push_back(points); });
    for (const char* key : {"Cut", "Copy", "Paste", "miBold", "miItalic", "miUnderline", "miFont",
                            "miFontSize", "miFontSize 8", "miFontSize 72"})
        EXPECT_EQ(view.ActiveBar1.Press(key), ControlAnswer::Done) << key;
    EXPECT_EQ(commands,
              (std::vector<EditCommand>{EditCommand::Cut, EditCommand::Copy, EditCommand::Paste,
                                        EditCommand::Bold, EditCommand::Italic,
                                        EditCommand::Underline, EditCommand::ChooseFont}));
    EXPECT_EQ(sizes, (std::vector<int>{8, 72}));
    view.ActiveBar1.Press("Select All");
    EXPECT_EQ(view.txtBody.SelectionLength(), 9u);
    view.ActiveBar1.Press("Clear");
    EXPECT_EQ(view.txtBody.Text(), "");

    const std::string file = folder.Write("file.txt", "");
    const std::pair<const char*, ListBox*> adds[] = {{"File Attachment", &view.lstAttach},
                                                     {"attAdd", &view.lstAttach},
                                                     {"HTML", &view.lstHTML},
                                                     {"attAddHTML", &view.lstHTML}};
    for (const auto& [key, list] : adds) {
        list->SetItems({"old"});
        Prompts().QueueFile(file);
        view.ActiveBar1.Press(key);
        EXPECT_EQ(list->Items(), std::vector<std::string>{file}) << key;
    }
    view.ActiveBar1.Press("attDelete");
    view.ActiveBar1.Press("attDeleteHTML");
    EXPECT_EQ(view.lstAttach.Count() + view.lstHTML.Count(), 0);

    const std::pair<const char*, const char*> priorities[] = {
        {"High", "1"}, {"Low", "5"}, {"Normal", "3"}};
    for (const auto& [key, value] : priorities) {
        view.ActiveBar1.Press(key);
        EXPECT_EQ(view.PriorityValue(), value);
        for (const auto& other : priorities)
            EXPECT_EQ(view.ActiveBar1.FindTool(other.first)->checked, other.first == key);
    }
    view.ActiveBar1.Press("Close");
    EXPECT_FALSE(view.IsLoaded());
    EXPECT_FALSE(Prompts().Failure());
}

TEST_F(ViewMergeTest, ChecksTheMessageBeforeTheDialog) {
    MakeTable("Empty", {{.name = "Email"}}, {});
    struct Row {
        const char* name;
        const char* from;
        const char* subject;
        const char* body;
        std::vector<BoxAnswer> answers;
        std::string lastBox;
    };
    const Row rows[] = {
        {"no sender",
         "",
         "S",
         "B",
         {BoxAnswer::Ok},
         "Enter your e-mail address in the 'From' field."},
        {"no body",
         "F",
         "S",
         "",
         {BoxAnswer::No},
         "This e-mail message has no body.\r\nDo you want to proceed anyway?"},
        {"no subject either",
         "F",
         "",
         "",
         {BoxAnswer::Yes, BoxAnswer::No},
         "This e-mail message has no subject.\r\nDo you want to proceed anyway?"},
        {"no records",
         "F",
         "S",
         "B",
         {BoxAnswer::Ok},
         "This message cannot be sent. You don't have any records in your 'Empty' table."},
    };
    for (const Row& row : rows) {
        frmViewMerge& view = Message(row.body, row.subject, row.from);
        for (const BoxAnswer answer : row.answers)
            Prompts().QueueBox(answer);
        view.ActiveBar1.Press("Send Message");
        EXPECT_EQ(Prompts().Shown().back().text, row.lastBox) << row.name;
        EXPECT_FALSE(wb.forms.Find<frmMerge>()) << row.name;
    }
}

TEST_F(ViewMergeTest, TheDialogKnowsTheTable) {
    MakeTable("People",
              {{.name = "Born", .type = FieldType::Date},
               {.name = "Name"},
               {.name = "Email"},
               {.name = "Joined", .type = FieldType::Date},
               {.name = "email 2"}},
              {{Cell(), "x"}});
    Message();
    frmMerge& dialog = Dialog();
    EXPECT_EQ(dialog.cmbField.Text(), "Joined");
    EXPECT_EQ(dialog.cmbEmail.Text(), "email 2");
    EXPECT_EQ(dialog.Label1.Text(), "Send to list: People");
    EXPECT_EQ(dialog.Label2.Text(), "Records: 1");
    EXPECT_FALSE(dialog.txtTo.Enabled());
    dialog.optBulk.SetValue(true);
    EXPECT_TRUE(dialog.txtTo.Enabled() && dialog.cmbEmail.Enabled());

    dialog.chkDate.SetChecked(true);
    Prompts().QueueBox(BoxAnswer::Ok, "You can use this criteria only with date data type fields.");
    dialog.cmbField.SetText("Name");
    EXPECT_FALSE(dialog.chkDate.Checked());
    Prompts().QueueBox(BoxAnswer::Ok, "Invalid value. ");
    dialog.txtFractional1.SetByUser("0");
    EXPECT_EQ(dialog.txtFractional1.Text(), "1");
    dialog.chkServer.SetChecked(true);
    EXPECT_FALSE(dialog.txtSMTPServer.Enabled());
    EXPECT_TRUE(wb.forms.Get<frmSettings>().chkServer.Checked());
    dialog.cmdCancel.Press();
    EXPECT_FALSE(dialog.IsLoaded());
    EXPECT_FALSE(Prompts().Failure());
}

}  // namespace
}  // namespace mailvane::test
