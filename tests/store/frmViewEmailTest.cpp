#include <gtest/gtest.h>

#include "store/MessageStore.h"
#include "store/frmViewEmail.h"
#include "support/TestBench.h"

namespace mailvane {
namespace {

struct ViewBench : test::TestBench {
    frmViewEmail& view = wb.forms.Get<frmViewEmail>();

    void Store(const std::string& target, const std::string& subject, const std::string& body) {
        MessageRecord record;
        record.Subject = subject;
        record.Body = body;
        SaveMessageRecord(wb, record, "", target, false, 0, "Unread", false);
    }
};

TEST(frmViewEmail, StartsOnTheInboxOfANewStore) {
    ViewBench bench;
    EXPECT_EQ(bench.view.cmbFolder.Count(), 6);
    EXPECT_EQ(bench.view.cmbFolder.Text(), "Inbox");
    EXPECT_EQ(bench.view.pnlTable.Text(), "      Inbox ");
    EXPECT_TRUE(bench.wb.state.MessageStore->IsOpen());
    std::string shown;
    for (const GridColumn& column : bench.view.EmailGrid.Columns())
        if (column.visible) shown += column.name + " ";
    EXPECT_EQ(shown, "From To Subject Date Size Status Retries ");
}

TEST(frmViewEmail, ShowsTheChosenFolderAndTheTextOfItsCurrentRow) {
    ViewBench bench;
    bench.Store("Drafts", "first", "text one");
    bench.Store("Drafts", "second", "text two");
    ASSERT_EQ(bench.view.cmbFolder.SetByUser("Drafts"), ControlAnswer::Done);
    EXPECT_EQ(bench.view.pnlTable.Text(), "      Drafts ");
    EXPECT_EQ(bench.view.EmailGrid.RowCount(), 2u);
    EXPECT_EQ(bench.view.txtPreview.Text(), "text one");
    bench.view.EmailGrid.SetCurrentRow(1);
    EXPECT_EQ(bench.view.txtPreview.Text(), "text two");
    bench.view.cmbFolder.SetByUser("Inbox");
    EXPECT_EQ(bench.view.txtPreview.Text(), "");
}

TEST(frmViewEmail, RefreshReadsAgainAndStaysOnItsMessage) {
    ViewBench bench;
    bench.Store("Inbox", "first", "text one");
    bench.Store("Inbox", "second", "text two");
    bench.view.cmdRefresh.Press();
    ASSERT_EQ(bench.view.EmailGrid.RowCount(), 2u);
    bench.view.EmailGrid.SetCurrentRow(1);
    bench.view.EmailGrid.SetColumnWidth(2, 4321);
    ASSERT_TRUE(
        bench.wb.state.MessageStore->Execute("DELETE FROM Inbox WHERE Subject = 'first'").Ok());
    bench.Store("Inbox", "third", "text three");
    bench.view.ActiveBar1.Press("Refresh");
    EXPECT_EQ(bench.view.EmailGrid.RowCount(), 2u);
    EXPECT_EQ(bench.view.EmailGrid.CurrentRow(), std::optional<std::size_t>(0));
    EXPECT_EQ(bench.view.txtPreview.Text(), "text two");
    EXPECT_EQ(bench.view.EmailGrid.Columns()[2].width, 4321) << "chosen by the user";
}

TEST(frmViewEmail, ClosingHidesUnloadingReleasesTheStore) {
    ViewBench bench;
    bench.view.Show();
    bench.view.OnCloseBox();
    EXPECT_FALSE(bench.view.Visible());
    EXPECT_TRUE(bench.view.IsLoaded());
    bench.view.Unload();
    EXPECT_FALSE(bench.wb.state.MessageStore);
    EXPECT_TRUE(
        bench.wb.state.MainWorkspace->OpenDatabase(MessageStorePath(bench.wb), OpenMode::Exclusive)
            .Ok());
}

TEST(frmViewEmail, SaysWhyTheStoreCannotBeOpened) {
    test::TestBench bench;
    WriteFileText(MessageStorePath(bench.wb), "this is no database, whatever its name may say");
    bench.Prompts().UseDefaults();
    bench.wb.forms.Get<frmViewEmail>();
    ASSERT_EQ(bench.Prompts().Shown().size(), 1u);
    EXPECT_NE(bench.Prompts().Shown()[0].text.find("messages.dat"), std::string::npos);
}

}  // namespace
}  // namespace mailvane
