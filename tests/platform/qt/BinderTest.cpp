#include <QCheckBox>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QDateEdit>
#include <QFocusEvent>
#include <QGroupBox>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTextBrowser>
#include <QTextEdit>

#include "platform/qt/QtTest.h"
#include "platform/qt/frmEvery.h"

namespace mailvane {
namespace {

class BinderTest : public QtTest {
protected:
    frmEvery& form = Load<frmEvery>();
};

TEST_F(BinderTest, LineOfText) {
    auto& line = Find<QLineEdit>(form, "txtLine");
    EXPECT_EQ(line.text(), QString("first"));
    form.txtLine.SetText("Zoë 😀 end");
    EXPECT_EQ(line.text(), QString::fromUtf8("Zoë 😀 end"));
    form.txtLine.Select(5, 4);  // the emoji's bytes
    EXPECT_EQ(line.selectedText(), QString::fromUtf8("😀"));

    int changes = 0;
    form.txtLine.onChange = [&] { ++changes; };
    Type(line, "x");  // in place of the selection
    EXPECT_EQ(form.txtLine.Text(), "Zoë x end");
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(form.txtLine.SelectionStart(), 6u);
    EXPECT_EQ(form.txtLine.SelectionLength(), 0u);
}

TEST_F(BinderTest, AnOfferedCompletionStaysSelectedWhileTyping) {
    auto& line = Find<QLineEdit>(form, "txtLine");
    form.txtLine.SetText("");
    form.txtLine.onChange = [&] {
        if (form.txtLine.Text() != "an") return;
        form.txtLine.SetText("anna@example.com");
        form.txtLine.Select(2, 14);
    };
    Type(line, "an");
    EXPECT_EQ(line.selectedText(), QString("na@example.com"));
    Type(line, "d");
    EXPECT_EQ(form.txtLine.Text(), "and");
}

TEST_F(BinderTest, SelectingBackwardsKeepsItsDirection) {
    auto& line = Find<QLineEdit>(form, "txtLine");
    form.txtLine.SetText("abcdef");
    line.setCursorPosition(4);
    for (int i = 0; i < 3; ++i)
        Key(line, Qt::Key_Left, {}, Qt::ShiftModifier);
    EXPECT_EQ(form.txtLine.SelectionStart(), 1u);
    EXPECT_EQ(form.txtLine.SelectionLength(), 3u);
}

template <class Edit>
void CheckLines(EditControl& control, Edit& edit) {
    control.SetText("one\r\ntwo ä\r\nthree");
    EXPECT_EQ(edit.toPlainText(), QString::fromUtf8("one\ntwo ä\nthree"));
    control.Select(5, 6);
    EXPECT_EQ(edit.textCursor().selectedText(), QString::fromUtf8("two ä"));
    control.ReplaceSelection("2");
    EXPECT_EQ(edit.toPlainText(), QString("one\n2\nthree"));
    EXPECT_EQ(edit.textCursor().position(), 5);

    QTextCursor cursor = edit.textCursor();
    cursor.movePosition(QTextCursor::End);
    edit.setTextCursor(cursor);
    edit.insertPlainText(QString::fromUtf8("\nfour\u00a0ß"));
    EXPECT_EQ(control.Text(), "one\r\n2\r\nthree\r\nfour\u00a0ß");
    EXPECT_EQ(control.SelectionStart(), control.Text().size());
    edit.undo();
    EXPECT_EQ(control.Text(), "one\r\n2\r\nthree");
}

TEST_F(BinderTest, SeveralLinesOfPlainText) {
    CheckLines(form.txtNotes, Find<QPlainTextEdit>(form, "txtNotes"));
}

TEST_F(BinderTest, SeveralLinesOfRichText) {
    auto& edit = Find<QTextEdit>(form, "txtBody");
    CheckLines(form.txtBody, edit);
    int changes = 0;
    form.txtBody.onChange = [&] { ++changes; };
    form.txtBody.Select(0, 3);
    form.txtBody.Do(EditCommand::Bold);
    EXPECT_EQ(changes, 0);
    EXPECT_TRUE(edit.toHtml().contains("font-weight"));
    form.txtBody.Select(5, 1);
    form.txtBody.ReplaceSelection("new");
    EXPECT_TRUE(edit.toHtml().contains("font-weight"));
}

/// True when the page has a pixel of that colour on the screen.
bool Shows(const QTextBrowser& page, QRgb colour) {
    const QImage image = page.viewport()->grab().toImage().convertToFormat(QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (image.pixel(x, y) == colour) return true;
    return false;
}

TEST_F(BinderTest, HtmlShowsNothingFromOutsideItsCode) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("red.png"));
    QImage red(20, 20, QImage::Format_RGB32);
    red.fill(Qt::red);
    ASSERT_TRUE(red.save(path));
    QFile style(folder.filePath(QStringLiteral("red.css")));
    ASSERT_TRUE(style.open(QIODevice::WriteOnly) && style.write("* { background: #f00 }"));
    style.close();
    const std::string file = path.toStdString();
    const auto& page = Find<QTextBrowser>(form, "htmPage");
    form.Show();
    const std::string base = "file://" + folder.path().toStdString();
    for (const std::string& code :
         {"<img src='" + file + "'>", "<img src='file://" + file + "'>",
          "<base href='" + base + "/'><img src='red.png'>",
          "<link rel='stylesheet' href='" + base + "/red.css'><p>text</p>",
          "<body background='" + file + "'>text</body>"}) {
        form.htmPage.SetText(code);
        Pump();
        EXPECT_FALSE(Shows(page, qRgb(255, 0, 0))) << code;
    }
    form.htmPage.SetText("<table bgcolor='#ff0000'><tr><td>text</td></tr></table>");
    Pump();
    EXPECT_TRUE(Shows(page, qRgb(255, 0, 0)));
    EXPECT_FALSE(page.openLinks());
}

/// Qt alone needs minutes for some of these, or ends with a full stack.
TEST_F(BinderTest, HtmlThatNestsWithoutEndIsShown) {
    const auto& page = Find<QTextBrowser>(form, "htmPage");
    form.Show();
    struct Case {
        const char* code;
        int times;
        const char* shown;
    };
    for (const Case& each :
         {Case{"<table><tr><td>a", 30, "a"}, Case{"<table><tr><td>a", 20000, "a"},
          Case{"<div>b", 20000, "b"}, Case{"<ul><li>c<!-- </li></ul> -->", 500, "c"},
          Case{"<table a='><table>", 10000, ""}, Case{"<", 50000, "<"}}) {
        form.htmPage.SetText(QString::fromUtf8(each.code).repeated(each.times).toStdString() +
                             "\r\n");
        Pump();
        EXPECT_TRUE(page.toPlainText().contains(QString::fromUtf8(each.shown))) << each.code;
    }
    form.htmPage.SetText("<table><tr><td>Gr\u00fc\u00dfe &amp; <b>mehr</b></td></tr></table>");
    Pump();
    EXPECT_EQ(page.toPlainText().trimmed(), QStringLiteral("Gr\u00fc\u00dfe & mehr"));
    form.htmPage.SetText("");
    Pump();
    EXPECT_EQ(page.toPlainText(), QString());
}

TEST_F(BinderTest, LeavingAndEnter) {
    auto& line = Find<QLineEdit>(form, "txtLine");
    int left = 0;
    int entered = 0;
    form.txtLine.onLeave = [&] { ++left; };
    form.txtLine.onEnter = [&] { ++entered; };
    Key(line, Qt::Key_Return);
    EXPECT_EQ(entered, 1);
    QFocusEvent byTab(QEvent::FocusOut, Qt::TabFocusReason);
    QApplication::sendEvent(&line, &byTab);
    QFocusEvent byWindow(QEvent::FocusOut, Qt::ActiveWindowFocusReason);
    QApplication::sendEvent(&line, &byWindow);
    EXPECT_EQ(left, 1);
}

TEST_F(BinderTest, CaptionsFollowTheControlOrStayTheDesigns) {
    auto& title = Find<QLabel>(form, "lblTitle");
    auto& ok = Find<QPushButton>(form, "cmdOk");
    auto& panel = Find<QGroupBox>(form, "pnlTable");
    EXPECT_EQ(title.text(), QString("Design title"));
    EXPECT_EQ(form.lblTitle.Text(), "");
    EXPECT_EQ(ok.text(), QString("&Ok"));
    form.lblTitle.SetText("<b>name</b>");
    EXPECT_EQ(title.text(), QString("<b>name</b>"));
    EXPECT_EQ(title.textFormat(), Qt::PlainText);
    form.lblTitle.SetText("");
    EXPECT_EQ(title.text(), QString());
    form.cmdOk.SetText("Go");
    EXPECT_EQ(ok.text(), QString("Go"));
    form.cmdOk.SetText("");
    EXPECT_EQ(ok.text(), QString("&Ok"));
    form.pnlTable.SetText("Table");
    EXPECT_EQ(panel.title(), QString("Table"));
}

TEST_F(BinderTest, StateAndTipReachTheWidgetAndItsLabel) {
    auto& line = Find<QLineEdit>(form, "txtLine");
    auto& label = Find<QLabel>(form, "caption0");
    form.txtLine.SetEnabled(false);
    form.txtLine.SetTip("<i>tip</i>");
    EXPECT_FALSE(line.isEnabled());
    EXPECT_FALSE(label.isEnabled());
    EXPECT_EQ(line.toolTip(), QString("&lt;i&gt;tip&lt;/i&gt;"));
    form.txtLine.SetVisible(false);
    EXPECT_TRUE(line.isHidden());
    EXPECT_TRUE(label.isHidden());
}

TEST_F(BinderTest, EnterPressesTheDefaultButtonOfTheDialog) {
    int presses = 0;
    form.cmdOk.onClick = [&] { ++presses; };
    form.Show();
    Key(Find<QLineEdit>(form, "txtLine"), Qt::Key_Return);
    EXPECT_EQ(presses, 1);
    EXPECT_GT(windows.WindowOf(form)->layout()->contentsMargins().left(), 0);
}

TEST_F(BinderTest, ButtonPresses) {
    int presses = 0;
    form.cmdOk.onClick = [&] { ++presses; };
    Find<QPushButton>(form, "cmdOk").click();
    form.cmdOk.SetEnabled(false);
    Find<QPushButton>(form, "cmdOk").click();
    EXPECT_EQ(presses, 1);
}

TEST_F(BinderTest, CheckBoxThatRefusesGoesBack) {
    auto& box = Find<QCheckBox>(form, "chkOne");
    EXPECT_TRUE(box.isChecked());
    box.click();
    EXPECT_FALSE(form.chkOne.Checked());
    form.chkOne.onClick = [&] { form.chkOne.SetChecked(false); };
    box.click();
    EXPECT_FALSE(form.chkOne.Checked());
    EXPECT_FALSE(box.isChecked());
}

TEST_F(BinderTest, OptionsExcludeEachOther) {
    auto& a = Find<QRadioButton>(form, "optA");
    auto& b = Find<QRadioButton>(form, "optB");
    b.click();
    EXPECT_TRUE(form.optB.IsSet());
    EXPECT_FALSE(form.optA.IsSet());
    EXPECT_FALSE(a.isChecked());
    b.click();  // stays set
    EXPECT_TRUE(b.isChecked());
    form.optA.SetValue(true);
    EXPECT_TRUE(a.isChecked());
    EXPECT_FALSE(b.isChecked());
}

TEST_F(BinderTest, ComboBoxes) {
    auto& fixed = Find<QComboBox>(form, "cmbFixed");
    auto& free = Find<QComboBox>(form, "cmbFree");
    form.cmbFixed.SetItems({"red", "green", "blue"});
    form.cmbFixed.SetListIndex(2);
    form.cmbFree.AddItem("one");
    Pump();
    EXPECT_EQ(fixed.count(), 3);
    EXPECT_EQ(fixed.currentIndex(), 2);
    EXPECT_FALSE(fixed.isEditable());
    int clicks = 0;
    form.cmbFixed.onClick = [&] { ++clicks; };
    Key(fixed, Qt::Key_Up);
    EXPECT_EQ(form.cmbFixed.Text(), "green");
    EXPECT_EQ(clicks, 1);

    Type(free, "on");
    EXPECT_EQ(form.cmbFree.Text(), "on");
    EXPECT_EQ(form.cmbFree.ListIndex(), -1);
    form.cmbFree.SetListIndex(0);
    EXPECT_EQ(free.currentText(), QString("one"));
    form.cmbFree.SetText("typed by code");
    EXPECT_EQ(free.currentText(), QString("typed by code"));
}

TEST_F(BinderTest, ListOfOne) {
    auto& list = Find<QListWidget>(form, "lstOne");
    std::vector<std::string> items;
    for (int i = 0; i < 100; ++i)
        items.push_back("line " + std::to_string(i));
    form.lstOne.SetItems(items);
    form.lstOne.SetListIndex(99);
    Pump();
    ASSERT_EQ(list.count(), 100);
    EXPECT_EQ(list.currentRow(), 99);
    // A protocol that grows at its end and is cut at its begin.
    form.lstOne.RemoveItem(0);
    form.lstOne.AddItem("line 100");
    form.lstOne.SetListIndex(99);
    Pump();
    ASSERT_EQ(list.count(), 100);
    EXPECT_EQ(list.item(0)->text(), QString("line 1"));
    EXPECT_EQ(list.item(99)->text(), QString("line 100"));
    EXPECT_EQ(list.currentRow(), 99);
    Key(list, Qt::Key_Home);
    EXPECT_EQ(form.lstOne.Text(), "line 1");
    form.lstOne.SetItem(0, "changed");
    int menus = 0;
    form.lstOne.onContextMenu = [&menus] { ++menus; };
    QContextMenuEvent click(QContextMenuEvent::Mouse, {5, 5}, {5, 5});
    QApplication::sendEvent(list.viewport(), &click);
    EXPECT_EQ(menus, 1);
    form.lstOne.Clear();
    Pump();
    EXPECT_EQ(list.count(), 0);
}

TEST_F(BinderTest, ListOfMany) {
    auto& list = Find<QListWidget>(form, "lstMany");
    form.lstMany.SetItems({"a", "b", "c"});
    form.lstMany.SetSelected(1, true);
    Pump();
    EXPECT_TRUE(list.item(1)->isSelected());
    list.selectAll();
    EXPECT_EQ(form.lstMany.SelectedItems(), (std::vector<int>{0, 1, 2}));
}

TEST_F(BinderTest, ListWithItsOwnButtons) {
    auto& place = Find<QWidget>(form, "lbxRules");
    auto& list = *place.findChild<QListWidget*>();
    std::map<QString, QPushButton*> buttons;
    for (QPushButton* button : place.findChildren<QPushButton*>())
        buttons[button->text()] = button;
    form.lbxRules.SetItems({"1. a", "2. b"});
    Pump();
    EXPECT_EQ(list.accessibleName(), QString("Rules:"));
    EXPECT_TRUE(buttons.at("Add")->isEnabled());
    EXPECT_FALSE(buttons.at("Delete")->isEnabled());
    list.setCurrentRow(0);
    EXPECT_EQ(form.lbxRules.ListIndex(), 0);
    buttons.at("Down")->click();
    Pump();
    EXPECT_EQ(form.lbxRules.Items(), (std::vector<std::string>{"2. b", "1. a"}));
    EXPECT_EQ(list.currentRow(), 1);
    buttons.at("Delete")->click();
    Pump();
    EXPECT_EQ(list.count(), 1);
    EXPECT_FALSE(buttons.at("Delete")->isEnabled());
}

TEST_F(BinderTest, SliderDateProgressAndTabs) {
    auto& slider = Find<QSlider>(form, "sldMinutes");
    EXPECT_EQ(slider.value(), 5);
    EXPECT_EQ(slider.maximum(), 30);
    slider.setValue(7);
    EXPECT_EQ(form.sldMinutes.Value(), 7);

    auto& date = Find<QDateEdit>(form, "datFrom");
    EXPECT_EQ(date.date(), QDate(2001, 2, 3));
    date.setDate(QDate(2020, 12, 31));
    EXPECT_EQ(form.datFrom.Value().ShortDate(), "12/31/2020");

    auto& bar = Find<QProgressBar>(form, "Progress1");
    form.Progress1.SetMaximum(0);
    EXPECT_GT(bar.maximum(), 0);
    form.Progress1.SetMaximum(5'000'000'000);
    form.Progress1.SetValue(250);
    EXPECT_EQ(bar.value(), 250);

    auto& tabs = Find<QTabWidget>(form, "Tab1");
    tabs.setCurrentIndex(1);
    EXPECT_EQ(form.Tab1.Current(), 1);
    form.Tab1.SetCurrent(0);
    EXPECT_EQ(tabs.currentIndex(), 0);
}

}  // namespace
}  // namespace mailvane
