#include <QDragEnterEvent>
#include <QDropEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QTextEdit>

#include "platform/qt/QtTest.h"
#include "platform/qt/frmEvery.h"

namespace mailvane {
namespace {

class TextEditingTest : public QtTest {
protected:
    frmEvery& form = Load<frmEvery>();
};

TEST_F(TextEditingTest, KeysLetGoHaveTheirCodes) {
    auto& line = Find<QLineEdit>(form, "txtLine");
    std::vector<int> codes;
    form.txtLine.onKeyUp = [&](int code) { codes.push_back(code); };
    const int keys[] = {Qt::Key_A,    Qt::Key_1,     Qt::Key_0, Qt::Key_Backspace,
                        Qt::Key_Left, Qt::Key_Space, Qt::Key_At};
    for (const int key : keys)
        Key(line, key);
    EXPECT_EQ(codes, (std::vector<int>{'A', '1', '0', 8, 0, ' ', 0xFF}));
    QKeyEvent repeated(QEvent::KeyRelease, Qt::Key_A, Qt::NoModifier, QStringLiteral("a"), true);
    QApplication::sendEvent(&line, &repeated);
    EXPECT_EQ(codes.size(), 7u) << "a key held down is let go once";
}

/// Lets a text go over a widget, at its left edge.
void Drop(QWidget& widget, const QString& text) {
    QMimeData data;
    data.setText(text);
    const QPoint at(1, 8);
    QDragEnterEvent enter(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&widget, &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&widget, &drop);
}

TEST_F(TextEditingTest, ATextFromElsewhereGoesUnderTheMouse) {
    form.Show();
    Pump();
    auto& body = Find<QTextEdit>(form, "txtBody");
    struct Row {
        const char* name;
        EditControl& control;
        QWidget& widget;
    };
    const Row rows[] = {
        {"one line", form.txtLine, Find<QLineEdit>(form, "txtLine")},
        {"several lines", form.txtBody, *body.viewport()},
    };
    for (const Row& row : rows) {
        row.control.SetText("one two");
        row.control.Select(4, 3);
        Drop(row.widget, QStringLiteral("[A]"));
        EXPECT_EQ(row.control.Text(), "[A]one two") << row.name;
    }
}

TEST_F(TextEditingTest, SizesReachTheSelectionAndEndWithTheText) {
    auto& body = Find<QTextEdit>(form, "txtBody");
    form.txtBody.SetText("large small");
    form.txtBody.Select(0, 5);
    int changes = 0;
    form.txtBody.onChange = [&] { ++changes; };
    form.txtBody.SetFontSize(36);
    EXPECT_EQ(changes, 0);
    EXPECT_EQ(body.fontPointSize(), 36);
    EXPECT_TRUE(body.toHtml().contains(QStringLiteral("font-size:36pt")));
    form.txtBody.SetText("another");
    EXPECT_FALSE(body.toHtml().contains(QStringLiteral("36pt")));
}

}  // namespace
}  // namespace mailvane
