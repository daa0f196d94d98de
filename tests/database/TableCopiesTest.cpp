#include "core/run/frmStatus.h"
#include "database/TableToolsTest.h"
#include "database/design/frmDatabaseTable.h"
#include "database/design/frmDatabaseTablePK.h"
#include "database/tools/frmDatabaseCopy.h"
#include "support/FullDisk.h"

namespace mailvane {
namespace {

constexpr const char* InvalidTable = "Invalid table name. Please choose another name.";

class TableCopies : public test::TableToolsTest {
protected:
    frmDatabaseCopy& Dialog() { return Form<frmDatabaseCopy>(); }
    void Choose(const std::string& table) {
        Act([this, table] {
            EXPECT_EQ(Dialog().List1.SetByUser(table), ControlAnswer::Done);
            Dialog().cmdOk.Press();
        });
    }
    void Name(const std::string& table) { bench.Prompts().QueueInput(table); }
    DaoResult<std::int64_t> Execute(const std::string& sql) {
        return view->Data1.Database()->Execute(sql);
    }
};

TEST_F(TableCopies, WholeTables) {
    Name("People_Backup");
    AnswerBox(BoxAnswer::Ok, "Successfully created the 'People_Backup' table.");
    view->cmdBackup.Press();
    EXPECT_EQ(Rows("People_Backup"), test::PeopleRows);
    EXPECT_TRUE(Describe("People_Backup").indexes.empty());
    EXPECT_EQ(view->cmbTable.Items().back(), "People_Backup");
    EXPECT_EQ(bench.Prompts().Shown().front().title, "Make backup");

    AnswerBox(BoxAnswer::Ok, InvalidTable);
    Name("PEOPLE");
    view->cmdCloneTable.Press();
    AnswerBox(BoxAnswer::Ok, "Invalid Table name: 'a.b'");
    Name("a.b");
    view->cmdCloneTable.Press();
    Name("");
    view->cmdCloneTable.Press();
    for (const BoxAnswer answer : {BoxAnswer::Yes, BoxAnswer::No}) {
        AnswerBox(answer, "Table 'Archive' already exists.\r\nDo you want to proceed anyway?");
        Name("Archive");
        view->cmdCloneTable.Press();  // neither answer is followed by the success message
    }
    EXPECT_EQ(Rows("Archive"), "");
}

TEST_F(TableCopies, SelectedRowsToANewTable) {
    Select({2, 0});
    Name("Some");
    AnswerBox(BoxAnswer::Ok, "Records are successfully copied to the 'Some' table.");
    view->cmdCopyToNew.Press();
    EXPECT_EQ(Columns("Some"), Columns("People"));
    EXPECT_EQ(Rows("Some"), "c@x.com Cid 33\na@x.com Ann 31\n") << "in the order of selection";
    EXPECT_EQ(Rows("People"), test::PeopleRows);
    EXPECT_EQ(view->cmbTable.Items().back(), "Some");
    EXPECT_TRUE(view->Grid1.Redraw());
    EXPECT_EQ(bench.windows.Pointer(), MousePointer::Normal);
}

TEST_F(TableCopies, SelectedRowsToAnExistingTable) {
    Select({0, 1, 2});
    ASSERT_TRUE(Execute("DELETE * FROM People WHERE Name = 'Ann'").Ok());
    Choose("Archive");
    AnswerBox(BoxAnswer::Yes, "Do you want to proceed anyway?");  // that row has gone
    AnswerBox(BoxAnswer::Ok, "2 records are successfully moved to the 'Archive' table.");
    view->cmdMoveToExisting.Press();
    EXPECT_EQ(Rows("Archive"), "b@x.com 32 \nc@x.com 33 \n") << "columns by name, others empty";
    EXPECT_EQ(Rows("People"), "b@x.com Bob 32\nc@x.com Cid 33\n") << "the rows stay";
}

TEST_F(TableCopies, WhatIsAskedForIsChecked) {
    AnswerBox(BoxAnswer::Ok, "Select rows first.");
    view->cmdCopyToExisting.Press();
    Select({0});
    AnswerBox(BoxAnswer::Ok, InvalidTable);
    Choose("People");
    view->cmdCopyToExisting.Press();
    for (const bool byBox : {false, true}) {
        AnswerBox(BoxAnswer::Ok, InvalidTable);
        Act([this, byBox] {
            EXPECT_EQ(Dialog().List1.Text(), byBox ? "" : "People") << "the last choice";
            byBox ? Dialog().OnCloseBox() : static_cast<void>(Dialog().cmdCancel.Press());
        });
        view->cmdMoveToExisting.Press();
    }
    AnswerBox(BoxAnswer::Ok, InvalidTable);
    Name("people");
    view->cmdMoveToNew.Press();
    AnswerBox(BoxAnswer::Ok, "Invalid Table name: '[x'");
    Name("[x");
    view->cmdCopyToNew.Press();
    Name("");
    view->cmdCloneRecords.Press();
    EXPECT_EQ(bench.Prompts().Shown().back().title, "Copy selected records");
    AnswerBox(BoxAnswer::Ok, "Please select table. Just click on its name.");
    AnswerBox(BoxAnswer::Ok, "Select the table. ");
    AnswerBox(BoxAnswer::Ok, InvalidTable);
    Act([this] {
        Dialog().List1.SetListIndex(-1);
        Dialog().cmdOk.Press();
        Dialog().cmdRename.Press();
        Dialog().cmdCancel.Press();
    });
    view->cmdCopyToExisting.Press();
}

TEST_F(TableCopies, TheDialogMakesRenamesAndDeletesTables) {
    Select({0});
    Name("Old");
    AnswerBox(BoxAnswer::Yes, "Are you sure you want to delete `Old` table?");
    AnswerBox(BoxAnswer::Ok, InvalidTable);
    Act([this] {
        Dialog().List1.SetByUser("Archive");
        Dialog().cmdRename.Press();
        EXPECT_EQ(Dialog().List1.Items(), (std::vector<std::string>{"People", "Old"}));
        Dialog().List1.SetByUser("Old");
        Dialog().cmdDelete.Press();
        EXPECT_EQ(Dialog().List1.Items(), std::vector<std::string>{"People"});
        Dialog().cmdCancel.Press();
    });
    view->cmdCopyToExisting.Press();
    EXPECT_EQ(view->Data1.CurrentTable(), "People");
}

TEST_F(TableCopies, ATableMadeInTheDialogTakesTheSelectedRows) {
    Select({1});
    Name("Fresh");
    AnswerBox(BoxAnswer::Ok, "successfully created");
    AnswerBox(BoxAnswer::Ok, "Records are successfully copied to the 'Fresh' table.");
    Act([this] {
        Act([this] {
            auto& designer = Form<frmDatabaseTable>();
            designer.txtFieldName.SetByUser("Name");
            designer.cmdAddField.Press();
            Act([this] { Form<frmDatabaseTablePK>().Command1.Press(); });
            designer.cmdOk.Press();
        });
        Dialog().cmdNew.Press();
        EXPECT_EQ(Dialog().List1.SetByUser("Fresh"), ControlAnswer::Done);
        Dialog().cmdOk.Press();
    });
    view->cmdCopyToExisting.Press();
    EXPECT_EQ(Rows("Fresh"), "Bob 1\n");

    // A chosen table comes into the view first, and the selection goes.
    Select({1});
    AnswerBox(BoxAnswer::Ok, "Select rows first.");
    bench.Prompts().QueueInput(std::nullopt);
    Act([this] {
        Dialog().List1.SetByUser("Archive");
        Dialog().cmdNew.Press();
        Dialog().List1.SetByUser("Fresh");
        Dialog().cmdOk.Press();
    });
    view->cmdCopyToExisting.Press();
    EXPECT_EQ(view->Data1.CurrentTable(), "Archive");
}

TEST_F(TableCopies, WithoutATextColumnThereIsNoNewTable) {
    ASSERT_TRUE(Execute("SELECT Age INTO Numbers FROM People").Ok());
    view->cmdRefresh.Press();
    Show("Numbers");
    Select({0});
    Name("Copy");
    AnswerBox(BoxAnswer::No, "Do you want to proceed anyway?");
    view->cmdCopyToNew.Press();
    EXPECT_FALSE(view->Data1.Database()->TableExists("Copy"));
}

TEST_F(TableCopies, RefusedRowsAndValuesArePassedOver) {
    TableDef strict;
    strict.name = "Strict";
    using enum FieldType;
    strict.fields = {{"ID", Long, 0, AutoIncrementAttribute},
                     {"Name", Text, 3},
                     {"Email", Text, 7},
                     {"Age", Byte}};
    strict.indexes = {{"Index1", {"Email"}, true, false}};
    ASSERT_TRUE(view->Data1.Database()->AppendTable(strict).Ok());
    ASSERT_TRUE(Execute("INSERT INTO Strict (Email) VALUES ('a@x.com')").Ok());
    ASSERT_TRUE(Execute("UPDATE People SET Name = 'Robert' WHERE Name = 'Bob'").Ok());
    ASSERT_TRUE(Execute("UPDATE People SET Age = 300 WHERE Name = 'Cid'").Ok());
    view->cmdRefresh.Press();
    Select({0, 1, 2});
    Choose("Strict");
    AnswerBox(BoxAnswer::Yes, "duplicate values");  // the first row
    AnswerBox(BoxAnswer::Yes, "too small");         // the second one's name; 300 goes silently
    AnswerBox(BoxAnswer::Ok, "2 records are successfully moved to the 'Strict' table.");
    view->cmdMoveToExisting.Press();
    EXPECT_EQ(Rows("Strict"), "1  a@x.com \n2  b@x.com 32\n3 Cid c@x.com \n");

    Choose("Strict");
    Select({1, 2});
    AnswerBox(BoxAnswer::Yes, "too small");
    AnswerBox(BoxAnswer::No, "duplicate values");
    view->cmdCopyToExisting.Press();  // and no success message
    EXPECT_FALSE(bench.wb.forms.Get<frmStatus>().Visible());
}

TEST_F(TableCopies, CancelKeepsWhatWasCopied) {
    Select({0, 1, 2});
    Name("Some");
    AnswerBox(BoxAnswer::Ok, "Records are successfully copied to the 'Some' table.");
    std::vector<std::string> captions;
    const Subscription watch = bench.windows.yielded.Observe([&] {
        auto& status = bench.wb.forms.Get<frmStatus>();
        captions.push_back(status.lblCaption1.Text());
        EXPECT_EQ(status.Progress1.Maximum(), 3);
        EXPECT_EQ(view->Grid1.CurrentRow(), captions.size() - 1);
        if (captions.size() == 2) bench.wb.state.CancelRequested = true;
    });
    view->cmdCopyToNew.Press();
    EXPECT_EQ(captions.front(), "Processing records...");
    EXPECT_FALSE(bench.wb.state.CancelRequested);
    EXPECT_FALSE(bench.wb.forms.Get<frmStatus>().Visible());
    EXPECT_EQ(Rows("Some").substr(0, 30), "a@x.com Ann 31\nb@x.com Bob 32\n");
}

TEST_F(TableCopies, AFullDiskLosesNoRowWhenTheUserGoesOn) {
    Select({0, 1, 2});
    Choose("Archive");
    AnswerBox(BoxAnswer::Yes, "Do you want to proceed anyway?");
    AnswerBox(BoxAnswer::Ok, "3 records are successfully moved to the 'Archive' table.");
    std::optional<test::FullDisk> full;
    int yields = 0;
    const Subscription watch = bench.windows.yielded.Observe([&] {
        if (++yields == 1) full.emplace();
        if (yields == 2) full.reset();
    });
    view->cmdMoveToExisting.Press();
    EXPECT_EQ(Rows("Archive"), "a@x.com 31 \nb@x.com 32 \nc@x.com 33 \n");
}

TEST_F(TableCopies, ClosingTheViewEndsIt) {
    Select({0, 1, 2});
    Name("Some");
    AnswerBox(BoxAnswer::Ok, "Processing records was ended early: 1 of 3 records are copied.");
    Subscription watch = bench.windows.yielded.Observe([&] {
        EXPECT_FALSE(view->ActiveBar1.Enabled());
        view->Unload();
    });
    view->cmdCopyToNew.Press();
    watch.End();
    bench.Settle();
    EXPECT_FALSE(bench.wb.forms.Get<frmStatus>().Visible());
    view = &bench.wb.forms.Get<frmViewDatabase>();
    EXPECT_EQ(Rows("Some"), "a@x.com Ann 31\n");
    EXPECT_TRUE(view->ActiveBar1.Enabled());
}

}  // namespace
}  // namespace mailvane
