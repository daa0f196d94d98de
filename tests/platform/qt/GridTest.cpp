#include <QContextMenuEvent>
#include <QHeaderView>
#include <QTableView>

#include "platform/qt/QtTest.h"
#include "platform/qt/frmEvery.h"

namespace mailvane {
namespace {

/// Rows that nobody holds; their bookmarks are ten times their number.
class VirtualRows final : public GridRows {
public:
    explicit VirtualRows(std::size_t rows) : count(rows) {}
    std::size_t Count() const override { return count; }
    std::vector<std::vector<std::string>> Read(std::size_t first, std::size_t most) const override {
        std::vector<std::vector<std::string>> rows;
        for (std::size_t row = first; row < std::min(first + most, count); ++row)
            rows.push_back({"name " + std::to_string(row), "mail " + std::to_string(row)});
        read += rows.size();
        return rows;
    }
    std::int64_t BookmarkAt(std::size_t row) const override {
        return static_cast<std::int64_t>(row) * 10;
    }
    std::optional<std::size_t> RowOf(std::int64_t bookmark) const override {
        const auto row = static_cast<std::size_t>(bookmark / 10);
        return row < count ? std::optional(row) : std::nullopt;
    }

    std::size_t count;
    mutable std::size_t read = 0;
};

class QtGridTest : public QtTest {
protected:
    QtGridTest() {
        GridColumn mail{.name = "mail", .caption = "Mail", .width = 3000, .position = 1};
        GridColumn name{.name = "name", .caption = "Name", .width = 1500, .position = 0};
        form.Grid1.SetColumns({name, mail});
        form.Show();
        view.setMinimumHeight(300);
        Pump();
    }

    std::shared_ptr<VirtualRows> Fill(std::size_t count) {
        auto rows = std::make_shared<VirtualRows>(count);
        form.Grid1.SetRows(rows);
        Pump();
        return rows;
    }

    QString Shown(int row, int column) const {
        return view.model()->index(row, column).data().toString();
    }
    QModelIndex Index(int row) const { return view.model()->index(row, 0); }

    frmEvery& form = Load<frmEvery>();
    QTableView& view = Find<QTableView>(form, "Grid1");
};

TEST_F(QtGridTest, AMillionRowsAreReadInAFewPages) {
    const auto rows = Fill(1'000'000);
    EXPECT_EQ(view.model()->rowCount(), 1'000'000);
    view.grab();
    EXPECT_LE(rows->read, 512u);
    form.Grid1.SetCurrentRow(999'999);
    Pump();
    view.grab();
    EXPECT_TRUE(view.viewport()->rect().intersects(view.visualRect(Index(999'999))));
    EXPECT_LE(rows->read, 2048u);
    EXPECT_EQ(Shown(999'999, 1), QString("mail 999999"));
}

TEST_F(QtGridTest, AllRowsOfAMillionAreSelectedByOneRange) {
    const auto rows = Fill(1'000'000);
    view.selectAll();
    EXPECT_EQ(form.Grid1.SelBookmarks().Count(), 1'000'000u);
    EXPECT_EQ(form.Grid1.SelBookmarks().Item(7), 70);
    form.Grid1.RemoveAllSelected();
    Pump();
    EXPECT_TRUE(view.selectionModel()->selection().isEmpty());
    for (std::int64_t row = 0; row < 1000; ++row)
        form.Grid1.AddSelected(row * 10);
    form.Grid1.AddSelected(50'000);
    Pump();
    EXPECT_EQ(view.selectionModel()->selection().size(), 2);
    EXPECT_TRUE(view.selectionModel()->isRowSelected(5000));
    EXPECT_LE(rows->read, 2048u);
}

TEST_F(QtGridTest, CurrentRowAndSelectionOfTheUser) {
    Fill(50);
    int moves = 0;
    int selections = 0;
    form.Grid1.onRowChange = [&] { ++moves; };
    form.Grid1.onSelectionChange = [&] { ++selections; };
    Click(*view.viewport(), view.visualRect(view.model()->index(2, 1)).center());
    EXPECT_EQ(form.Grid1.CurrentRow(), 2u);
    EXPECT_EQ(form.Grid1.CurrentColumn(), 1u);
    EXPECT_EQ(form.Grid1.SelBookmarks().All(), std::vector<std::int64_t>{20});
    Key(view, Qt::Key_Down, {}, Qt::ShiftModifier);
    EXPECT_EQ(form.Grid1.SelBookmarks().All(), (std::vector<std::int64_t>{20, 30}));
    EXPECT_EQ(moves, 2);
    EXPECT_EQ(selections, 2);
}

TEST_F(QtGridTest, RowsThatComeAndGo) {
    const auto rows = Fill(10);
    form.Grid1.SetSelected({30, 90});
    form.Grid1.SetCurrentRow(9);
    Pump();
    rows->count = 5;
    form.Grid1.RowsChanged();
    Pump();
    EXPECT_EQ(view.model()->rowCount(), 5);
    EXPECT_FALSE(view.currentIndex().isValid());
    EXPECT_EQ(view.selectionModel()->selectedRows().size(), 1);
    rows->count = 12;
    form.Grid1.RowsChanged();
    EXPECT_EQ(Shown(11, 0), QString("name 11"));
    form.Grid1.SetRows(nullptr);
    EXPECT_EQ(view.model()->rowCount(), 0);
}

TEST_F(QtGridTest, WithoutRedrawTheScreenStaysAndNothingIsRead) {
    const auto rows = Fill(10);
    view.grab();
    form.Grid1.SetRedraw(false);
    const std::size_t read = rows->read;
    rows->count = 3;
    form.Grid1.RowsChanged();
    form.Grid1.SetSelected({10});
    Pump();
    EXPECT_EQ(view.model()->rowCount(), 10);
    EXPECT_EQ(Shown(5, 0), QString());  // gone below the view
    EXPECT_EQ(rows->read, read);
    form.Grid1.SetRedraw(true);
    EXPECT_EQ(view.model()->rowCount(), 3);
    EXPECT_TRUE(view.selectionModel()->isRowSelected(1));
}

TEST_F(QtGridTest, ColumnsFollowBothWays) {
    Fill(3);
    QHeaderView& head = *view.horizontalHeader();
    EXPECT_EQ(head.sectionSize(1), 200);
    head.resizeSection(0, 50);
    EXPECT_EQ(form.Grid1.Columns()[0].width, 750);
    head.moveSection(0, 1);
    EXPECT_EQ(form.Grid1.Columns()[0].position, 1);
    EXPECT_EQ(form.Grid1.Columns()[1].position, 0);
    form.Grid1.SetColumnPosition(0, 0);
    form.Grid1.SetColumnPosition(1, 1);
    EXPECT_EQ(head.visualIndex(0), 0);
    auto columns = form.Grid1.Columns();
    columns[0].visible = false;
    columns[1].caption = "E-mail";
    form.Grid1.SetColumns(columns);
    EXPECT_TRUE(view.isColumnHidden(0));
    EXPECT_EQ(form.Grid1.Columns()[0].width, 750);
    EXPECT_EQ(view.model()->headerData(1, Qt::Horizontal).toString(), QString("E-mail"));
    EXPECT_EQ(view.model()->rowCount(), 3);
}

TEST_F(QtGridTest, TheHeadNamesTheOtherDirection) {
    Fill(3);
    QHeaderView& head = *view.horizontalHeader();
    form.Grid1.onHeadClick = [&](std::size_t column) { form.Grid1.SetHeadStyle(column, "DESC"); };
    EXPECT_FALSE(head.isSortIndicatorShown());
    Click(*head.viewport(), QPoint(head.sectionViewportPosition(1) + 20, head.height() / 2));
    EXPECT_EQ(form.Grid1.Columns()[1].headStyle, "DESC");
    EXPECT_EQ(head.sortIndicatorSection(), 1);
    EXPECT_EQ(head.sortIndicatorOrder(), Qt::AscendingOrder);
    form.Grid1.SetHeadStyle(1, "ASC");
    EXPECT_EQ(head.sortIndicatorOrder(), Qt::DescendingOrder);
}

TEST_F(QtGridTest, RightClickTakesTheRowAndAsksForAMenu) {
    Fill(10);
    std::vector<std::int64_t> selected;
    form.Grid1.onContextMenu = [&] { selected = form.Grid1.SelBookmarks().All(); };
    const QPoint at = view.visualRect(Index(4)).center();
    Click(*view.viewport(), at, Qt::RightButton);
    QContextMenuEvent menu(QContextMenuEvent::Mouse, at, view.viewport()->mapToGlobal(at));
    QApplication::sendEvent(view.viewport(), &menu);
    EXPECT_EQ(selected, std::vector<std::int64_t>{40});
}

TEST_F(QtGridTest, CellsAreEditedOnlyWhereTheFormTakesThem) {
    Fill(10);
    EXPECT_FALSE(view.model()->flags(Index(1)) & Qt::ItemIsEditable);
    std::string edited;
    form.Grid1.onCellEdit = [&](std::size_t row, std::size_t column, const std::string& text) {
        edited = std::to_string(row) + "," + std::to_string(column) + "," + text;
        return true;
    };
    EXPECT_TRUE(view.model()->setData(Index(1), "new"));
    EXPECT_EQ(edited, "1,0,new");
    edited.clear();
    EXPECT_FALSE(view.model()->setData(Index(1), "name 1"));  // as it was
    EXPECT_EQ(edited, "");
}

TEST_F(QtGridTest, AFormMayGoInsideItsGridsOwnEvent) {
    Fill(10);
    form.Grid1.onSelectionChange = [&] { form.Unload(); };
    QWidget& viewport = *view.viewport();
    Click(viewport, view.visualRect(Index(4)).center());
    windows.HandleIdle();
    Pump();
    EXPECT_FALSE(forms.IsFormLoaded("frmEvery"));
}

}  // namespace
}  // namespace mailvane
