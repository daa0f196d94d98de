#include <gtest/gtest.h>

#include "store/MessageStore.h"
#include "store/view/frmViewEmail.h"
#include "support/TestBench.h"

namespace mailvane {
namespace {

struct ViewEmailTest : testing::Test, test::TestBench {
    frmViewEmail& view = wb.forms.Get<frmViewEmail>();

    void Store(const std::string& target, const std::string& subject, const std::string& body) {
        MessageRecord record;
        record.Subject = subject;
        record.Body = body;
        SaveMessageRecord(wb, record, "", target, false, 0, "Unread", false);
    }
};

TEST_F(ViewEmailTest, ShowsTheChosenFolderAndTheTextOfItsCurrentRow) {
    Store("Drafts", "first", "text one");
    Store("Drafts", "second", "text two");
    EXPECT_EQ(view.cmbFolder.Count(), 6);
    EXPECT_EQ(view.pnlTable.Text(), "      Inbox ");
    ASSERT_EQ(view.cmbFolder.SetByUser("Drafts"), ControlAnswer::Done);
    EXPECT_EQ(view.pnlTable.Text(), "      Drafts ");
    EXPECT_EQ(view.EmailGrid.RowCount(), 2u);
    EXPECT_EQ(view.txtPreview.Text(), "text one");
    view.EmailGrid.SetCurrentRow(1);
    EXPECT_EQ(view.txtPreview.Text(), "text two");
    view.cmbFolder.SetByUser("Inbox");
    EXPECT_EQ(view.txtPreview.Text(), "");
}

TEST_F(ViewEmailTest, RefreshReadsAgainAndStaysOnItsMessage) {
    Store("Inbox", "first", "text one");
    Store("Inbox", "second", "text two");
    view.cmdRefresh.Press();
    ASSERT_EQ(view.EmailGrid.RowCount(), 2u);
    view.EmailGrid.SetCurrentRow(1);
    view.EmailGrid.SetColumnWidth(2, 4321);
    ASSERT_TRUE(wb.state.MessageStore->Execute("DELETE FROM Inbox WHERE Subject = 'first'").Ok());
    Store("Inbox", "third", "text three");
    view.ActiveBar1.Press("Refresh");
    EXPECT_EQ(view.EmailGrid.RowCount(), 2u);
    EXPECT_EQ(view.EmailGrid.CurrentRow(), std::optional<std::size_t>(0));
    EXPECT_EQ(view.txtPreview.Text(), "text two");
    EXPECT_EQ(view.EmailGrid.Columns()[2].width, 4321) << "chosen by the user";
}

TEST_F(ViewEmailTest, ClosingHidesUnloadingReleasesTheStore) {
    view.Show();
    view.OnCloseBox();
    EXPECT_TRUE(!view.Visible() && view.IsLoaded());
    view.Unload();
    EXPECT_FALSE(wb.state.MessageStore);
    EXPECT_TRUE(
        wb.state.MainWorkspace->OpenDatabase(MessageStorePath(wb), OpenMode::Exclusive).Ok());
}

TEST(frmViewEmail, SaysWhyTheStoreCannotBeOpened) {
    test::TestBench bench;
    WriteFileText(MessageStorePath(bench.wb), "this is no database, whatever its name may say");
    bench.Prompts().UseDefaults();
    bench.wb.forms.Get<frmViewEmail>();
    ASSERT_EQ(bench.Prompts().Shown().size(), 1u);
    EXPECT_TRUE(ReadFileText(MessageStorePath(bench.wb)).starts_with("this is no")) << "as it was";
    EXPECT_NE(bench.Prompts().Shown()[0].text.find("messages.dat"), std::string::npos);
}

}  // namespace
}  // namespace mailvane
