#include "platform/qt/MainWindow.h"

#include <QEvent>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QProgressBar>
#include <QStatusBar>

#include "platform/os/TextCase.h"
#include "platform/qt/QtText.h"

namespace mailvane {

namespace {

constexpr QSize FirstSize{1100, 760};
constexpr int NarrowestPanel = 180;  ///< pixels; room for the progress bar
constexpr std::size_t ProgressPanel = 1;

}  // namespace

MainWindow::MainWindow(Form& form) : area_(new QMdiArea(this)) {
    setObjectName(ToQt(form.Name()));
    setCentralWidget(area_);
    area_->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    area_->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    area_->setBackground(palette().dark());
    resize(FirstSize);
    for (Control* control : form.Controls()) {
        if (control->Kind() == ControlKind::StatusBar)
            TieStatusBar(static_cast<StatusBar&>(*control));
    }
    for (Control* control : form.Controls()) {
        if (control->Kind() == ControlKind::ProgressBar && SameName(control->Name(), "Progress1"))
            TieProgress(static_cast<ProgressBar&>(*control));
    }
}

/// The child windows belong to their forms.
MainWindow::~MainWindow() {
    for (QMdiSubWindow* child : area_->subWindowList())
        area_->removeSubWindow(child);
}

void MainWindow::Detach() {
    progressBinding_.reset();
    statusSubscription_.End();
}

void MainWindow::TieStatusBar(StatusBar& control) {
    for (int number = 1; number <= control.PanelCount(); ++number) {
        auto* panel = new QLabel(this);
        panel->setTextFormat(Qt::PlainText);
        const bool first = number == 1;
        if (first) {
            panel->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
        } else {
            panel->setMinimumWidth(NarrowestPanel);
            panel->setFrameShape(QFrame::StyledPanel);
        }
        statusBar()->addWidget(panel, first ? 1 : 0);
        panels_.push_back(panel);
    }
    ShowPanels(control);
    statusSubscription_ =
        control.changed.Observe([this, &control](Property) { ShowPanels(control); });
}

void MainWindow::ShowPanels(const StatusBar& control) {
    for (std::size_t i = 0; i < panels_.size(); ++i)
        panels_[i]->setText(ToQt(control.Panel(static_cast<int>(i) + 1)));
}

void MainWindow::TieProgress(ProgressBar& control) {
    progress_ = new QProgressBar(statusBar());
    progress_->setObjectName(ToQt(control.Name()));
    progress_->setAccessibleName(tr("Progress"));
    progressBinding_ = BindProgressBar(control, *progress_);
    progressBinding_->Start();
    if (panels_.size() > ProgressPanel) panels_[ProgressPanel]->installEventFilter(this);
    PlaceProgress();
}

void MainWindow::PlaceProgress() {
    if (panels_.size() <= ProgressPanel) return;
    progress_->setGeometry(panels_[ProgressPanel]->geometry().adjusted(1, 1, -1, -1));
    progress_->raise();
}

void MainWindow::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange) area_->setBackground(palette().dark());
    QMainWindow::changeEvent(event);
}

bool MainWindow::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Resize || event->type() == QEvent::Move) PlaceProgress();
    return QMainWindow::eventFilter(watched, event);
}

void MainWindow::Arrange(Arrangement arrangement) {
    switch (arrangement) {
        case Arrangement::Cascade:
            area_->cascadeSubWindows();
            break;
        case Arrangement::TileHorizontally:
            Tile(true);
            break;
        case Arrangement::TileVertically:
            Tile(false);
            break;
        case Arrangement::ArrangeIcons:
            ArrangeIcons();
            break;
    }
}

std::vector<QMdiSubWindow*> MainWindow::OpenChildren() const {
    std::vector<QMdiSubWindow*> open;
    for (QMdiSubWindow* child : area_->subWindowList())
        if (child->isVisible() && !child->isMinimized()) open.push_back(child);
    return open;
}

/// Horizontally: each as wide as the area, one below the other. Vertically: side by side.
void MainWindow::Tile(bool horizontally) {
    const auto children = OpenChildren();
    if (children.empty()) return;
    const auto count = static_cast<int>(children.size());
    const QSize room = area_->viewport()->size();
    const QSize piece = horizontally ? QSize(room.width(), room.height() / count)
                                     : QSize(room.width() / count, room.height());
    for (int i = 0; i < count; ++i) {
        QMdiSubWindow* child = children[static_cast<std::size_t>(i)];
        child->showNormal();
        const QPoint corner(horizontally ? 0 : i * piece.width(),
                            horizontally ? i * piece.height() : 0);
        child->setGeometry(QRect(corner, piece));
    }
}

/// Minimised children in rows from the lower left corner upwards.
void MainWindow::ArrangeIcons() {
    const QSize room = area_->viewport()->size();
    int left = 0;
    int bottom = room.height();
    for (QMdiSubWindow* child : area_->subWindowList()) {
        if (!child->isMinimized()) continue;
        if (left > 0 && left + child->width() > room.width()) {
            left = 0;
            bottom -= child->height();
        }
        child->move(left, bottom - child->height());
        left += child->width();
    }
}

}  // namespace mailvane
