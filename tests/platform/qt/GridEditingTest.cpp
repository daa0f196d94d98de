#include <QClipboard>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QTableView>

#include "platform/qt/QtTest.h"
#include "platform/qt/frmEvery.h"

namespace mailvane {
namespace {

/// A grid of a text, a number, a yes/no and a memo column; its owner refuses the text "bad".
class QtGridEditing : public QtTest {
protected:
    QtGridEditing() {
        rows->rows = {{"one", "1", "False", "a\r\nb"}, {"two", "2", "True", ""}};
        form.Grid1.SetColumns({{.name = "Text", .caption = "Text"},
                               {.name = "No", .caption = "No", .kind = CellKind::Number},
                               {.name = "Yes", .caption = "Yes", .kind = CellKind::YesNo},
                               {.name = "Memo", .caption = "Memo", .kind = CellKind::Memo},
                               {.name = "Id", .caption = "Id", .fixed = true}});
        form.Grid1.SetRows(rows);
        form.Grid1.onCellEdit = [this](std::size_t row, std::size_t column,
                                       const std::string& text) {
            edits.push_back(text);
            if (text == "bad") return false;
            rows->rows[row][column] = text;
            form.Grid1.RowChanged(row);
            return true;
        };
        form.Show();
        view.setMinimumHeight(300);
        Pump();
    }

    QModelIndex At(int row, int column) const { return view.model()->index(row, column); }

    template <class Editor>
    Editor* Open(int row, int column) {
        view.setCurrentIndex(At(row, column));
        view.edit(At(row, column));
        return Find<Editor>();
    }
    template <class Editor>
    Editor* Find() {
        Pump();
        const auto editors = view.viewport()->findChildren<Editor*>();
        return editors.isEmpty() ? nullptr : editors.last();
    }

    frmEvery& form = Load<frmEvery>();
    QTableView& view = QtTest::Find<QTableView>(form, "Grid1");
    std::shared_ptr<GridTable> rows = std::make_shared<GridTable>();
    std::vector<std::string> edits;
};

TEST_F(QtGridEditing, ARefusedTextStaysInTheEditor) {
    auto* line = Open<QLineEdit>(0, 0);
    ASSERT_NE(line, nullptr);
    EXPECT_EQ(line->text(), QString("one"));
    line->setText("bad");
    Key(*line, Qt::Key_Return);
    line = Find<QLineEdit>();
    ASSERT_NE(line, nullptr);
    EXPECT_EQ(line->text(), QString("bad"));
    line->setText("good");
    Key(*line, Qt::Key_Return);
    EXPECT_EQ(Find<QLineEdit>(), nullptr);
    EXPECT_EQ(edits, (std::vector<std::string>{"bad", "good"}));
    EXPECT_EQ(At(0, 0).data().toString(), QString("good"));
}

TEST_F(QtGridEditing, TheCellOfARefusedTextIsCurrentAgain) {
    auto* line = Open<QLineEdit>(0, 0);
    line->setText("bad");
    view.setCurrentIndex(At(1, 1));  // as a click elsewhere does
    line = Find<QLineEdit>();
    ASSERT_NE(line, nullptr);
    EXPECT_EQ(line->text(), QString("bad"));
    EXPECT_EQ(view.currentIndex(), At(0, 0));
    Key(*line, Qt::Key_Escape);
    EXPECT_EQ(Find<QLineEdit>(), nullptr);
    line = Open<QLineEdit>(0, 0);
    EXPECT_EQ(line->text(), QString("one"));
    EXPECT_EQ(edits.size(), 1u);
}

TEST_F(QtGridEditing, MemosAreEditedInALargerBox) {
    auto* memo = Open<QPlainTextEdit>(0, 3);
    ASSERT_NE(memo, nullptr);
    EXPECT_GT(memo->height(), 3 * view.rowHeight(0));
    EXPECT_TRUE(view.viewport()->rect().contains(memo->geometry()));
    Key(*memo, Qt::Key_Return, {}, Qt::ControlModifier);
    EXPECT_TRUE(edits.empty()) << "nothing was typed";
    memo = Open<QPlainTextEdit>(0, 3);
    memo->setPlainText("x");
    memo->moveCursor(QTextCursor::End);
    Key(*memo, Qt::Key_Return, "\r");
    Type(*memo, "y");
    Key(*memo, Qt::Key_Return, {}, Qt::ControlModifier);
    Pump();
    EXPECT_EQ(edits, std::vector<std::string>{"x\r\ny"});
}

TEST_F(QtGridEditing, YesAndNoAreTickedAndNumbersStandAtTheRight) {
    EXPECT_EQ(At(1, 2).data(Qt::CheckStateRole).toInt(), Qt::Checked);
    EXPECT_EQ(At(1, 2).data().toString(), QString("Yes"));
    view.setCurrentIndex(At(1, 2));
    Key(view, Qt::Key_Space, " ");
    EXPECT_EQ(rows->rows[1][2], "False");
    EXPECT_TRUE(At(0, 1).data(Qt::TextAlignmentRole).toInt() & Qt::AlignRight);
    EXPECT_FALSE(At(0, 4).flags() & Qt::ItemIsEditable);
    form.Grid1.onCellEdit = nullptr;
    EXPECT_FALSE(At(0, 2).flags() & Qt::ItemIsUserCheckable);
}

TEST_F(QtGridEditing, KeysAndClipboardGoToTheGridsOwner) {
    std::vector<std::string> keys;
    form.Grid1.onKey = [&](const std::string& key) {
        keys.push_back(key);
        return key == "Del" || key == "Ctrl+A";
    };
    form.Grid1.onCopy = [] { return std::string("a\tb\n"); };
    std::string pasted;
    form.Grid1.onPaste = [&](const std::string& text) { pasted = text; };
    view.setCurrentIndex(At(0, 0));
    Key(view, Qt::Key_Delete);
    Key(view, Qt::Key_A, "a", Qt::ControlModifier);
    EXPECT_EQ(keys, (std::vector<std::string>{"Del", "Ctrl+A"}));
    Key(view, Qt::Key_C, "c", Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), QString("a\tb\n"));
    Key(view, Qt::Key_V, "v", Qt::ControlModifier);
    EXPECT_EQ(pasted, "a\tb\n");
    QApplication::clipboard()->setText("c");
    form.Grid1.PasteFromClipboard();
    EXPECT_EQ(pasted, "c");
    keys.clear();
    auto* line = Open<QLineEdit>(0, 0);
    Key(*line, Qt::Key_Delete);
    EXPECT_TRUE(keys.empty()) << "the editor's own";
    EXPECT_EQ(line->text(), QString());
}

TEST_F(QtGridEditing, ScatteredSelectionsShowWhereTheScreenIs) {
    auto many = std::make_shared<GridTable>();
    many->rows.assign(40'000, {"x", "1", "True", "", ""});
    form.Grid1.SetRows(many);
    std::vector<std::int64_t> every;
    for (std::int64_t row = 0; row < 40'000; row += 2)
        every.push_back(row);
    form.Grid1.SetSelected(every);
    Pump();
    auto* selection = view.selectionModel();
    EXPECT_TRUE(selection->isRowSelected(10));
    EXPECT_FALSE(selection->isRowSelected(11));
    EXPECT_LT(selection->selection().size(), 500);
    view.scrollTo(At(30'000, 0));
    Pump();
    EXPECT_TRUE(selection->isRowSelected(30'000));
    selection->select(At(30'001, 0), QItemSelectionModel::Toggle | QItemSelectionModel::Rows);
    selection->select(At(30'002, 0), QItemSelectionModel::Toggle | QItemSelectionModel::Rows);
    EXPECT_EQ(form.Grid1.SelBookmarks().Count(), 20'000u);
    EXPECT_TRUE(form.Grid1.SelBookmarks().Contains(30'001));
    EXPECT_FALSE(form.Grid1.SelBookmarks().Contains(30'002));
    Click(*view.viewport(), view.visualRect(At(30'003, 0)).center());
    EXPECT_EQ(form.Grid1.SelBookmarks().All(), std::vector<std::int64_t>{30'003});
}

TEST_F(QtGridEditing, TheRightButtonAddsToTheSelection) {
    form.Grid1.onContextMenu = [] {};
    form.Grid1.SetSelected({0});
    Pump();
    Click(*view.viewport(), view.visualRect(At(1, 1)).center(), Qt::RightButton);
    EXPECT_EQ(form.Grid1.SelBookmarks().All(), (std::vector<std::int64_t>{0, 1}));
    EXPECT_EQ(form.Grid1.CurrentColumn(), 1u);
}

}  // namespace
}  // namespace mailvane
