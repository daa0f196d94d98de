#include "platform/qt/FormWindow.h"

#include <QDialog>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPushButton>
#include <QScreen>
#include <QTabWidget>
#include <QVBoxLayout>
#include <QWindow>
#include <algorithm>

#include "platform/qt/FormDesign.h"
#include "platform/qt/QtText.h"

namespace mailvane {

namespace {

constexpr double TwipsPerPixel = 15;
constexpr int CascadeStep = 28;  ///< pixels
constexpr int CascadeLength = 6;

int ToPixels(double twips) {
    return static_cast<int>(twips / TwipsPerPixel);
}

/// In a window title "[*]" would be a place holder.
QString TitleText(const std::string& caption) {
    return ToQt(caption).replace(QStringLiteral("[*]"), QStringLiteral("[*][*]"));
}

Qt::WindowFlags FlagsOf(FormStyle style) {
    if (style == FormStyle::Splash) return Qt::SplashScreen | Qt::FramelessWindowHint;
    return Qt::Dialog | Qt::WindowTitleHint | Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint;
}

bool IsOnAScreen(const QPoint& corner) {
    return QGuiApplication::screenAt(corner) != nullptr;
}

/// Cut only when the room is smaller.
QRect MovedInside(QRect rect, const QRect& room) {
    rect.setSize(rect.size().boundedTo(room.size()));
    rect.moveRight(std::min(rect.right(), room.right()));
    rect.moveBottom(std::min(rect.bottom(), room.bottom()));
    rect.moveTopLeft({std::max(rect.left(), room.left()), std::max(rect.top(), room.top())});
    return rect;
}

/// Turns every tab page that `widget` lies on to the front.
void BringPagesForward(QWidget* widget) {
    for (QWidget* page = widget; page->parentWidget(); page = page->parentWidget()) {
        // A page's parent is the stack inside the tab widget.
        auto* tabs = qobject_cast<QTabWidget*>(page->parentWidget()->parentWidget());
        if (tabs && tabs->indexOf(page) >= 0) tabs->setCurrentWidget(page);
    }
}

}  // namespace

std::unique_ptr<FormWindow> FormWindow::Make(Form& form, MainWindow* main, bool modal) {
    std::unique_ptr<FormWindow> window(new FormWindow(form));
    if (!window->MakeFrame(main, modal)) return nullptr;
    window->TieControls();
    window->Follow();
    window->frame_->installEventFilter(window.get());
    return window;
}

FormWindow::FormWindow(Form& form) : form_(&form) {}

FormWindow::~FormWindow() {
    if (form_ && frame_) Detach();
}

bool FormWindow::MakeFrame(MainWindow* main, bool modal) {
    if (form_->Style() == FormStyle::Main) {
        main_ = new MainWindow(*form_);
        frame_.reset(main_);
        content_ = main_;
        return true;
    }
    // Without a parent: inside one, the design's root would lose the margins of its layout.
    content_ = LoadDesign(form_->Name(), nullptr);
    if (!content_) return false;
    inside_ = form_->Style() == FormStyle::Child && main && !modal;
    if (inside_) {
        MakeChild(main->Area());
    } else {
        MakeDialog();
    }
    return true;
}

/// A child that has not been placed yet stands a little below and right of the one before, whole.
void FormWindow::MakeChild(QMdiArea& area) {
    const QSize size = content_->size();
    auto* child = new QMdiSubWindow;
    frame_.reset(child);
    child->setAttribute(Qt::WA_DeleteOnClose, false);
    child->setWidget(content_);
    const int step = static_cast<int>(area.subWindowList().size()) % CascadeLength * CascadeStep;
    area.addSubWindow(child);
    const QSize whole = size.grownBy(child->contentsMargins());
    const QSize room = area.viewport()->size() - QSize(step, step);
    child->resize(area.isVisible() ? whole.boundedTo(room) : whole);
    child->move(step, step);
    child->hide();
}

void FormWindow::MakeDialog() {
    const QSize size = content_->size();
    frame_ = std::make_unique<QDialog>(nullptr, FlagsOf(form_->Style()));
    auto* layout = new QVBoxLayout(frame_.get());
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(content_);
    frame_->resize(size);
    // A default button tells its dialog only when it becomes the default.
    for (QPushButton* button : content_->findChildren<QPushButton*>()) {
        if (!button->isDefault()) continue;
        button->setDefault(false);
        button->setDefault(true);
    }
}

void FormWindow::TieControls() {
    for (Control* control : form_->Controls()) {
        if (control->Kind() == ControlKind::ActiveBar) {
            TieBar(static_cast<ActiveBar&>(*control));
            continue;
        }
        QWidget* widget = main_ ? nullptr : WidgetOf(*control);
        if (!widget || !WidgetFits(*control, *widget)) continue;
        bindings_.push_back(BindControl(*control, *widget));
        bindings_.back()->Start();
    }
}

void FormWindow::TieBar(ActiveBar& bar) {
    if (main_) {
        bar_ = std::make_unique<BarBinding>(bar, *main_);
    } else if (QWidget* place = WidgetOf(bar)) {
        bar_ = std::make_unique<BarBinding>(bar, *place, *content_);
    }
}

QWidget* FormWindow::WidgetOf(const Control& control) const {
    return content_->findChild<QWidget*>(ToQt(control.Name()));
}

void FormWindow::Show(const QWidget* opener) {
    if (opener && !main_ && !inside_) StandBefore(*opener);
    Follow();
    frame_->show();
    FollowState();
    BringToFront();
    ReportPlace();
}

/// Keyboard and stacking go back to the opener; a modal one does not block what it opened. As its
/// parent it would destroy this window with itself.
void FormWindow::StandBefore(const QWidget& opener) {
    frame_->winId();  // makes the handle
    QWindow* own = frame_->windowHandle();
    if (own->isAncestorOf(opener.windowHandle(), QWindow::IncludeTransients)) return;
    own->setTransientParent(opener.windowHandle());
    if (IsPlaced()) return;
    const QRect wanted(opener.frameGeometry().center() - frame_->rect().center(), frame_->size());
    frame_->move(MovedInside(wanted, opener.screen()->availableGeometry()).topLeft());
}

void FormWindow::Hide() {
    frame_->hide();
}

void FormWindow::BringToFront() {
    if (frame_->isMinimized()) frame_->showNormal();
    if (inside_) {
        auto* child = static_cast<QMdiSubWindow*>(frame_.get());
        if (child->mdiArea()) child->mdiArea()->setActiveSubWindow(child);
        return;
    }
    frame_->raise();
    if (form_->Style() != FormStyle::Splash) frame_->activateWindow();
}

void FormWindow::Follow() {
    frame_->setWindowTitle(TitleText(form_->Caption()));
    FollowPlace();
    if (frame_->isVisible()) FollowState();
}

bool FormWindow::IsPlaced() const {
    const FormRect& rect = form_->Rect();
    return (rect.left != -1 || rect.top != -1) &&
           (inside_ || IsOnAScreen(QPoint(ToPixels(rect.left), ToPixels(rect.top))));
}

void FormWindow::FollowPlace() {
    const FormRect& rect = form_->Rect();
    following_ = true;
    const QSize size(rect.width > 0 ? ToPixels(rect.width) : frame_->width(),
                     rect.height > 0 ? ToPixels(rect.height) : frame_->height());
    if (ShownState() == WindowState::Normal) {
        const QSize border = frame_->frameGeometry().size() - frame_->size();
        QRect place(frame_->pos(), size + border);
        if (IsPlaced()) {
            place.moveTo(ToPixels(rect.left), ToPixels(rect.top));
            if (!frame_->isVisible()) place = MovedInside(place, Room());
            frame_->move(place.topLeft());
        }
        frame_->resize(place.size() - border);
    }
    following_ = false;
}

/// Where a window that was stored on a larger screen, or in a larger main window, comes back.
QRect FormWindow::Room() const {
    if (!inside_) {
        const FormRect& rect = form_->Rect();
        const QPoint corner(ToPixels(rect.left), ToPixels(rect.top));
        return QGuiApplication::screenAt(corner)->availableGeometry();
    }
    const QWidget* area = frame_->parentWidget();
    // An area that has not been shown has no size yet, but scrolls to what lies right and below.
    return area && area->isVisible() ? area->rect() : QRect(0, 0, QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
}

void FormWindow::FollowState() {
    if (form_->State() == ShownState()) return;
    following_ = true;
    switch (form_->State()) {
        case WindowState::Normal:
            frame_->showNormal();
            break;
        case WindowState::Minimized:
            frame_->showMinimized();
            break;
        case WindowState::Maximized:
            frame_->showMaximized();
            break;
    }
    following_ = false;
}

WindowState FormWindow::ShownState() const {
    if (frame_->isMinimized()) return WindowState::Minimized;
    return frame_->isMaximized() ? WindowState::Maximized : WindowState::Normal;
}

void FormWindow::ReportPlace() {
    FormRect rect = form_->Rect();
    const WindowState state = ShownState();
    if (state == WindowState::Normal) {
        rect = {frame_->x() * TwipsPerPixel, frame_->y() * TwipsPerPixel,
                frame_->width() * TwipsPerPixel, frame_->height() * TwipsPerPixel};
    }
    form_->PlacedByUser(rect, state);
}

void FormWindow::SetModal(bool modal) {
    if (inside_) return;
    const Qt::WindowModality modality = modal ? Qt::ApplicationModal : Qt::NonModal;
    if (frame_->windowModality() == modality) return;
    // Qt takes the change only from a hidden window.
    const bool shown = frame_->isVisible() && modal;
    if (shown) frame_->hide();
    frame_->setWindowModality(modality);
    if (shown) frame_->show();
}

void FormWindow::FocusControl(const Control& control) {
    QWidget* widget = WidgetOf(control);
    if (!widget) return;
    BringPagesForward(widget);
    BringToFront();
    widget->setFocus(Qt::OtherFocusReason);
}

void FormWindow::Detach() {
    bindings_.clear();
    bar_.reset();
    if (main_) main_->Detach();
    form_ = nullptr;
    frame_->removeEventFilter(this);
    frame_->hide();
    if (inside_) {
        auto* child = static_cast<QMdiSubWindow*>(frame_.get());
        if (child->mdiArea()) child->mdiArea()->removeSubWindow(child);
        child->hide();
    }
}

bool FormWindow::eventFilter(QObject* watched, QEvent* event) {
    if (watched != frame_.get() || !form_) return false;
    switch (event->type()) {
        case QEvent::Close:
            event->ignore();
            form_->OnCloseBox();
            return true;
        case QEvent::KeyPress:
            if (main_ || inside_ || static_cast<QKeyEvent*>(event)->key() != Qt::Key_Escape)
                return false;
            form_->OnCloseBox();
            return true;
        case QEvent::Move:
        case QEvent::Resize:
        case QEvent::WindowStateChange:
            if (!following_ && frame_->isVisible()) ReportPlace();
            return false;
        default:
            return false;
    }
}

}  // namespace mailvane
