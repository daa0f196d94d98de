#include "core/Paths.h"
#include "core/records/Sifrant.h"
#include "database/view/frmFind.h"
#include "merge/MergeBench.h"
#include "merge/message/MergeDocument.h"
#include "merge/message/frmViewMerge.h"

namespace mailvane::test {
namespace {

struct ViewMergeTest : testing::Test, MergeBench {
    std::string Document(const std::string& name, const std::string& plain) {
        return folder.Write(name, ScrambleMergeDocument(plain));
    }
};

TEST_F(ViewMergeTest, ChoosesTheAddressColumn) {
    MakeTable("two", {{.name = "Name"}, {.name = "My EMAIL"}, {.name = "E-Mail 2"}}, {});
    MakeTable("a hyphen", {{.name = "Name"}, {.name = "E-mail"}}, {});
    MakeTable("none", {{.name = "Address"}, {.name = "Name"}}, {});
    frmViewMerge& view = Message();
    const std::pair<std::string, const char*> rows[] = {
        {"two", "My EMAIL"}, {"a hyphen", "E-mail"}, {"none", "Address"}};
    for (const auto& [table, chosen] : rows) {
        view.cmbTable.SetText(table);
        EXPECT_EQ(view.txtTo.Text(), chosen);
        EXPECT_EQ(view.pnlTable.Text(), " Current table: " + table + "      ");
        EXPECT_EQ(CurrentDatabaseTable(wb), table);
        EXPECT_EQ(view.lstFields.Count(), table == "two" ? 3 : 2);
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
    const std::tuple<const char*, const char*, int, const char*, const char*> rows[] = {
        {"the table in use", "One", 1, "One", "Name"},
        {"another one, in other letters", "TWO", 1, "Two", "Other email"},
        {"a column that it lacks", "One", 9, "One", "Email"},
        {"a table that is not there", "Three", 1, "One", "Name"},
    };
    for (const auto& [name, table, index, shown, to] : rows) {
        view.OpenMergeDocument(Document("m.dmg", std::string("txtBody*|*B#|#txtTo*|*") +
                                                     std::to_string(index) + "#|#lblTable*|*" +
                                                     table + "#|#\r\n"));
        EXPECT_EQ(view.CurrentMergeTable(), shown) << name;
        EXPECT_EQ(CurrentDatabaseTable(wb), shown) << name;
        EXPECT_EQ(view.txtTo.Text(), to) << name;
        EXPECT_EQ(view.txtBody.Text(), "B") << name;
        view.lblTable.SetText(shown);
    }
    view.Show();
    Prompts().QueueBox(BoxAnswer::Ok,
                       "Your table 'Three' cannot be found in the current database. ");
    view.OpenMergeDocument(Document("m.dmg", "lblTable*|*Three#|#\r\n"));
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
    Prompts().QueueBox(BoxAnswer::Ok,
                       "Some very important files are corrupted. To solve the problem please "
                       "reinstall the program. ");
    view.ActiveBar1.Press("New");
    EXPECT_EQ(Prompts().Shown().size(), 1u);
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
    const std::tuple<const char*, const char*, std::size_t> rows[] = {
        {"one", "0", 0}, {"one", "0", 8}, {"one", "0", 0}, {"ONE", "1", 8},
        {"ONE", "1", 8}, {"two", "0", 4}, {"TWO", "1", 4}, {"gone", "0", 4}};
    Prompts().QueueBox(BoxAnswer::Ok, "'TWO' Not Found.");
    Prompts().QueueBox(BoxAnswer::Ok, "'gone' Not Found.");
    for (const auto& [text, matchCase, start] : rows) {
        find->chkMatchCase.SetByUser(matchCase);
        find->txtFind.SetByUser(text);
        find->cmdFind.Press();
        EXPECT_EQ(view.txtBody.SelectionStart(), start) << text;
        EXPECT_EQ(view.txtBody.SelectionLength(), 3u) << text;
    }
    EXPECT_EQ(Prompts().Shown().back().title, "Find");
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
    using enum EditCommand;
    EXPECT_EQ(commands,
              (std::vector<EditCommand>{Cut, Copy, Paste, Bold, Italic, Underline, ChooseFont}));
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
}

TEST_F(ViewMergeTest, ChecksTheMessageBeforeTheDialog) {
    MakeTable("Empty", {{.name = "Email"}}, {});
    const std::string proceed = "\r\nDo you want to proceed anyway?";
    const std::tuple<const char*, const char*, const char*, bool, std::string> rows[] = {
        {"", "S", "B", false, "Enter your e-mail address in the 'From' field."},
        {"F", "S", "", false, "This e-mail message has no body." + proceed},
        {"F", "", "", true, "This e-mail message has no subject." + proceed},
        {"F", "S", "B", false,
         "This message cannot be sent. You don't have any records in your 'Empty' table."},
    };
    for (const auto& [from, subject, body, asksTwice, lastBox] : rows) {
        frmViewMerge& view = Message(body, subject, from);
        if (asksTwice) Prompts().QueueBox(BoxAnswer::Yes);
        Prompts().QueueBox(*body ? BoxAnswer::Ok : BoxAnswer::No);
        view.ActiveBar1.Press("Send Message");
        EXPECT_EQ(Prompts().Shown().back().text, lastBox);
        EXPECT_FALSE(wb.forms.Find<frmMerge>()) << lastBox;
    }
}

TEST_F(ViewMergeTest, TheDialogKnowsTheTable) {
    const Field born{"Born", FieldType::Date};
    const Field joined{"Joined", FieldType::Date};
    MakeTable("People", {born, {.name = "Name"}, {.name = "Email"}, joined, {.name = "email 2"}},
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
}

}  // namespace
}  // namespace mailvane::test
