#include <QAction>
#include <QCloseEvent>
#include <QFileDialog>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QStatusBar>
#include <QTimer>
#include <QToolBar>
#include <QWindow>

#include "platform/qt/QtTest.h"
#include "platform/qt/check/Screenshots.h"
#include "platform/qt/frmEvery.h"

namespace mailvane {
namespace {

class frmShell final : public Form {
public:
    explicit frmShell(WindowSystem& windows) : Form(windows, "frmShell", "Main", FormStyle::Main) {
        Progress1.SetVisible(false);
        ActiveBar1.AddTool({.name = "Save",
                            .caption = "&Save",
                            .tip = "Saves it",
                            .shortcut = "Ctrl+S",
                            .icon = "document-save",
                            .onClick = [this] { pressed += "Save"; }});
        ActiveBar1.AddTool({.name = "Big", .caption = "&Big", .checkable = true, .onClick = [] {}});
        ActiveBar1.AddBand({Band::Kind::Menu, "File", "&File", {"Save", "-", ">More"}});
        ActiveBar1.AddBand({Band::Kind::SubMenu, "More", "&More", {"Big"}});
        ActiveBar1.AddBand({Band::Kind::ToolBar, "Standard", "Standard", {"Save"}});
    }
    ActiveBar ActiveBar1{*this, "ActiveBar1"};
    StatusBar sbStatusBar{*this, "sbStatusBar", 2};
    ProgressBar Progress1{*this, "Progress1"};
    int closeBoxes = 0;
    std::string pressed;
    void OnCloseBox() override { ++closeBoxes; }
};

/// A child window with the design of frmEvery.
class frmChild final : public Form {
public:
    explicit frmChild(WindowSystem& windows)
        : Form(windows, "frmEvery", "Child", FormStyle::Child) {
        ActiveBar1.AddTool({.name = "Store", .caption = "&Store", .shortcut = "Ctrl+S"});
        ActiveBar1.AddBand({Band::Kind::ToolBar, "Tools", "Tools", {"Store"}});
    }
    ActiveBar ActiveBar1{*this, "ActiveBar1"};
    TextBox txtLine{*this, "txtLine"};
    int activations = 0;
    void OnActivate() override { ++activations; }
};

/// A second one, without menus.
class frmOther final : public Form {
public:
    explicit frmOther(WindowSystem& windows)
        : Form(windows, "frmOther", "Other", FormStyle::Child) {}
};

/// The same as a dialog.
class frmAbove final : public Form {
public:
    explicit frmAbove(WindowSystem& windows) : Form(windows, "frmOther", "Above") {}
};

class frmNowhere final : public Form {
public:
    explicit frmNowhere(WindowSystem& windows) : Form(windows, "frmNowhere", "No design") {}
    TextBox txtLine{*this, "txtLine"};
};

class WindowsTest : public QtTest {
protected:
    /// Runs `act` when events are handled next, inside whatever loop handles them.
    static void Soon(std::function<void()> act) { QTimer::singleShot(10, qApp, std::move(act)); }

    template <class Dialog>
    static Dialog* Open() {
        return qobject_cast<Dialog*>(QApplication::activeModalWidget());
    }

    QMainWindow& Main(Form& form) { return *qobject_cast<QMainWindow*>(windows.WindowOf(form)); }
};

TEST_F(WindowsTest, ModalUntilItsOwnButtonUnloadsIt) {
    auto& form = Load<frmEvery>();
    bool modal = false;
    form.cmdOk.onClick = [&] {
        modal = windows.WindowOf(form)->window()->isModal();
        form.Unload();
        form.lblTitle.SetText("still alive");
    };
    Soon([&] { Find<QPushButton>(form, "cmdOk").click(); });
    form.ShowModal();
    EXPECT_TRUE(modal);
    EXPECT_FALSE(forms.IsFormLoaded("frmEvery"));
    EXPECT_EQ(windows.ModalDepth(), 0);
    windows.HandleIdle();
    Pump();
}

TEST_F(WindowsTest, AFormMayGoWhileADialogThatItOpenedIsUp) {
    auto& form = Load<frmEvery>();
    auto& main = Load<frmShell>();
    main.Show();
    form.Show();
    bool answered = false;
    form.cmdOk.onClick = [&] {
        Soon([&] {
            form.Unload();
            windows.PumpEvents();
            Open<QMessageBox>()->button(QMessageBox::Ok)->click();
        });
        answered = windows.MessageBox({.text = "Hello"}) == BoxAnswer::Ok;
    };
    QPushButton& button = Find<QPushButton>(form, "cmdOk");
    Soon([&] { button.click(); });
    while (!answered)
        windows.PumpEvents();
    windows.HandleIdle();
    Pump();
    EXPECT_FALSE(forms.IsFormLoaded("frmEvery"));
}

TEST_F(WindowsTest, AFormMayGoBehindADialogThatNoEventOpened) {
    auto& form = Load<frmEvery>();
    form.Show();
    Pump();
    ASSERT_NE(QApplication::activeWindow(), nullptr);  // the dialog's parent
    Soon([&] {
        form.Unload();
        Soon([] { Open<QMessageBox>()->button(QMessageBox::No)->click(); });
    });
    EXPECT_EQ(windows.MessageBox({.text = "?", .buttons = BoxButtons::YesNo}), BoxAnswer::No);
    Pump();
}

TEST_F(WindowsTest, ControlBoxAndEscapeLeaveTheDecisionToTheForm) {
    auto& main = Load<frmShell>();
    main.Show();
    EXPECT_FALSE(Main(main).close());
    EXPECT_EQ(main.closeBoxes, 1);
    EXPECT_TRUE(Main(main).isVisible());
    auto& form = Load<frmEvery>();
    form.Show();
    Key(*windows.WindowOf(form)->window(), Qt::Key_Escape);
    EXPECT_FALSE(forms.IsFormLoaded("frmEvery"));
}

TEST_F(WindowsTest, PlaceInTwipsBothWays) {
    auto& form = Load<frmEvery>();
    form.SetRect({.left = 1500, .top = 750, .width = 9000, .height = 9000});
    form.Show();
    QWidget& window = *windows.WindowOf(form)->window();
    EXPECT_EQ(window.pos(), QPoint(100, 50));
    EXPECT_EQ(window.width(), 600);
    window.resize(700, 810);
    Pump();
    EXPECT_EQ(form.Rect().width, 10500);
    EXPECT_EQ(form.State(), WindowState::Normal);
    form.SetState(WindowState::Maximized);
    Pump();
    EXPECT_TRUE(window.isMaximized());
    EXPECT_EQ(form.Rect().width, 10500);
    window.showNormal();
    Pump();
    EXPECT_EQ(form.State(), WindowState::Normal);
    auto& small = Load<frmAbove>();
    small.SetRect({.left = 9000, .top = 9000, .width = 6000, .height = 6000});  // a larger screen's
    small.Show();
    const QWidget& shown = *windows.WindowOf(small)->window();
    EXPECT_TRUE(shown.screen()->availableGeometry().contains(shown.geometry()));
}

TEST_F(WindowsTest, DialogsStandBeforeTheWindowThatOpenedThem) {
    const auto opener = [&](Form& form) -> Form* {
        const QWindow* before = windows.WindowOf(form)->window()->windowHandle()->transientParent();
        for (Form* other : forms.All())
            if (before && windows.WindowOf(*other)->window()->windowHandle() == before)
                return other;
        return nullptr;
    };
    auto& main = Load<frmShell>();
    main.Show();
    auto& modal = Load<frmEvery>();
    auto& status = Load<frmAbove>();
    Soon([&] {
        status.Show();
        EXPECT_EQ(opener(modal), &main);
        EXPECT_EQ(opener(status), &modal);  // or the modal one would block its Cancel
        modal.Hide();
    });
    modal.ShowModal();
    windows.WindowOf(status)->window()->activateWindow();
    modal.Show();
    EXPECT_EQ(opener(modal), &main);  // two before each other would be a ring
    // None goes with the one that it stands in or before.
    auto& child = Load<frmOther>();
    child.Show();
    EXPECT_TRUE(main.Unload());
    windows.HandleIdle();
    Pump();
    child.SetRect({.left = 0, .top = 0, .width = 3000, .height = 3000});
    EXPECT_TRUE(windows.WindowOf(modal)->isVisible());
    EXPECT_TRUE(windows.WindowOf(status)->isVisible());
}

TEST_F(WindowsTest, ChildrenInsideTheMainWindow) {
    auto& main = Load<frmShell>();
    main.Show();
    auto& child = Load<frmChild>();
    child.Show();
    Pump();
    auto& area = *Main(main).findChild<QMdiArea*>();
    ASSERT_EQ(area.subWindowList().size(), 1);
    QMdiSubWindow* window = area.subWindowList().first();
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(window->windowTitle(), QString("Child"));
    windows.ArrangeChildren(Arrangement::TileHorizontally);
    EXPECT_EQ(window->size(), area.viewport()->size());
    windows.ArrangeChildren(Arrangement::TileVertically);
    EXPECT_EQ(child.activations, 1);
    auto& other = Load<frmOther>();
    other.SetRect({.left = -900, .top = 30000, .width = 3000, .height = 3000});
    other.Show();
    Pump();
    ASSERT_EQ(area.subWindowList().size(), 2);
    EXPECT_TRUE(area.viewport()->rect().contains(area.subWindowList().last()->geometry()));
    area.setActiveSubWindow(window);  // as a click on it
    EXPECT_EQ(child.activations, 2);
    EXPECT_TRUE(other.Unload());
    Pump();
    EXPECT_EQ(child.activations, 2);
    // The key that both have is the child's as long as it is active.
    QAction* save = Main(main).menuBar()->actions().first()->menu()->actions().first();
    EXPECT_TRUE(save->shortcut().isEmpty());
    window->close();
    Pump();
    EXPECT_FALSE(forms.IsFormLoaded("frmEvery"));
    EXPECT_TRUE(area.subWindowList().isEmpty());
    EXPECT_EQ(save->shortcut(), QKeySequence("Ctrl+S"));
}

TEST_F(WindowsTest, StatusBarWithTheProgressOverItsSecondPanel) {
    auto& main = Load<frmShell>();
    main.Show();
    main.sbStatusBar.SetPanel(1, "Loading <b> project...");
    main.sbStatusBar.SetPanel(2, "120 records.");
    Pump();
    const auto panels = Main(main).statusBar()->findChildren<QLabel*>();
    ASSERT_EQ(panels.size(), 2);
    EXPECT_EQ(panels[0]->text(), QString("Loading <b> project..."));
    auto& bar = *Main(main).statusBar()->findChild<QProgressBar*>("Progress1");
    EXPECT_FALSE(bar.isVisible());
    main.Progress1.SetVisible(true);
    Pump();
    EXPECT_TRUE(bar.isVisible());
    EXPECT_EQ(bar.geometry(), panels[1]->geometry().adjusted(1, 1, -1, -1));
}

TEST_F(WindowsTest, MenusAndToolBarsFollowTheirTools) {
    auto& main = Load<frmShell>();
    std::string hovered;
    main.ActiveBar1.onHover = [&](const Tool* tool) { hovered = tool ? tool->tip : "left"; };
    main.Show();
    QMenu* file = Main(main).menuBar()->actions().first()->menu();
    ASSERT_EQ(file->actions().size(), 3);
    QAction* save = file->actions().first();
    QAction* big = file->actions().last()->menu()->actions().first();
    EXPECT_EQ(Main(main).findChild<QToolBar*>()->actions().first(), save);
    EXPECT_FALSE(save->icon().isNull());
    save->trigger();
    EXPECT_EQ(main.pressed, "Save");
    save->hover();
    EXPECT_EQ(hovered, "Saves it");
    emit file->aboutToHide();
    EXPECT_EQ(hovered, "left");
    main.ActiveBar1.SetToolEnabled("save", false);
    main.ActiveBar1.SetToolCaption("Save", "Save &now");
    main.ActiveBar1.SetToolVisible("Big", false);
    EXPECT_FALSE(save->isEnabled());
    EXPECT_EQ(save->text(), QString("Save &now"));
    EXPECT_FALSE(big->isVisible());
    main.ActiveBar1.SetToolVisible("Big", true);
    big->trigger();  // the form did not check it
    EXPECT_FALSE(big->isChecked());
    main.ActiveBar1.SetToolChecked("Big", true);
    EXPECT_TRUE(big->isChecked());
}

TEST_F(WindowsTest, MessageBoxes) {
    struct Case {
        const char* name;
        BoxButtons buttons;
        QMessageBox::StandardButton press;  ///< NoButton closes the box
        QMessageBox::StandardButton defaultButton;
        BoxAnswer answer;
    };
    const Case cases[] = {
        {"ok", BoxButtons::Ok, QMessageBox::Ok, QMessageBox::Ok, BoxAnswer::Ok},
        {"closed", BoxButtons::Ok, QMessageBox::NoButton, QMessageBox::Ok, BoxAnswer::Ok},
        {"yes", BoxButtons::YesNo, QMessageBox::Yes, QMessageBox::Yes, BoxAnswer::Yes},
        {"escape is no", BoxButtons::YesNo, QMessageBox::NoButton, QMessageBox::Yes, BoxAnswer::No},
        {"cancel", BoxButtons::OkCancel, QMessageBox::Cancel, QMessageBox::Ok, BoxAnswer::Cancel},
        {"escape of three", BoxButtons::YesNoCancel, QMessageBox::NoButton, QMessageBox::Yes,
         BoxAnswer::Cancel},
    };
    for (const Case& one : cases) {
        SCOPED_TRACE(one.name);
        Soon([&] {
            auto* box = Open<QMessageBox>();
            EXPECT_EQ(box->text(), QString("<i>a</i>\nb"));
            EXPECT_EQ(box->textFormat(), Qt::PlainText);
            EXPECT_EQ(box->windowTitle(), QString("Title"));
            EXPECT_EQ(box->icon(), QMessageBox::Warning);
            EXPECT_EQ(box->defaultButton(), box->button(one.defaultButton));
            if (one.press == QMessageBox::NoButton) {
                Key(*box, Qt::Key_Escape);
            } else {
                box->button(one.press)->click();
            }
        });
        EXPECT_EQ(windows.MessageBox({.text = "<i>a</i>\r\nb",
                                      .title = "Title",
                                      .icon = BoxIcon::Exclamation,
                                      .buttons = one.buttons}),
                  one.answer);
    }
}

TEST_F(WindowsTest, InputAndFileDialogs) {
    Soon([] {
        auto* dialog = Open<QInputDialog>();
        EXPECT_EQ(dialog->textValue(), QString("offered"));
        dialog->setTextValue("typed");
        dialog->accept();
    });
    EXPECT_EQ(windows.InputBox({.prompt = "Name?", .text = "offered"}), "typed");
    Soon([] { Open<QInputDialog>()->reject(); });
    EXPECT_EQ(windows.InputBox({.prompt = "Name?"}), std::nullopt);

    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    Soon([] {
        auto* dialog = Open<QFileDialog>();
        EXPECT_EQ(dialog->nameFilters(), QStringList{"Projects (*.poc)"});
        dialog->selectFile("new");
        dialog->findChild<QLineEdit*>()->setText("new");
        QMetaObject::invokeMethod(dialog, "accept");
    });
    EXPECT_EQ(windows.FileDialog({.save = true,
                                  .title = "Save",
                                  .filters = {{"Projects", "*.poc"}},
                                  .startFolder = MAILVANE_BUILD_DIR,
                                  .defaultExtension = "poc"}),
              MAILVANE_BUILD_DIR "/new.poc");
}

TEST_F(WindowsTest, QuittingEndsAnOpenDialog) {
    Soon([&] { windows.Quit(); });
    EXPECT_EQ(windows.MessageBox({.text = "?", .buttons = BoxButtons::YesNo}), BoxAnswer::No);
}

TEST_F(WindowsTest, TimersFireWhileEventsAreHandledAndMayStopThemselves) {
    auto& form = Load<frmEvery>();
    int fired = 0;
    form.Timer1.onTimer = [&] {
        if (++fired == 2) form.Timer1.Stop();
    };
    form.Timer1.Start();
    windows.WaitSeconds(0.1);
    EXPECT_EQ(fired, 2);
}

TEST_F(WindowsTest, AFormWithoutADesignNeverComesToTheScreen) {
    auto& form = Load<frmNowhere>();
    form.Show();
    EXPECT_EQ(windows.WindowOf(form), nullptr);
    form.txtLine.SetText("works");
    EXPECT_TRUE(form.Unload());
}

TEST_F(WindowsTest, ScreenshotsInBothPalettes) {
    auto& main = Load<frmShell>();
    main.Show();
    Load<frmChild>().Show();
    auto& form = Load<frmOther>();
    const std::string folder = MAILVANE_BUILD_DIR "/screenshots/";
    ASSERT_TRUE(SaveScreenshot(windows, main, folder + "frmShell.png"));
    ASSERT_TRUE(SaveScreenshot(windows, form, folder + "frmOther.png"));
    UseDarkPalette(true);
    ASSERT_TRUE(SaveScreenshot(windows, main, folder + "frmShell-dark.png"));
    ASSERT_TRUE(SaveScreenshot(windows, form, folder + "frmOther-dark.png"));
    UseDarkPalette(false);
    const QImage light(QString::fromStdString(folder + "frmOther.png"));
    const QImage dark(QString::fromStdString(folder + "frmOther-dark.png"));
    EXPECT_GE(light.width(), 200);
    EXPECT_LT(dark.pixelColor(2, 2).lightness(), 100);
    EXPECT_GT(light.pixelColor(2, 2).lightness(), 150);
}

}  // namespace
}  // namespace mailvane
