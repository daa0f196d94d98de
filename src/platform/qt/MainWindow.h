#pragma once

#include <QMainWindow>
#include <memory>
#include <vector>

#include "platform/forms/Form.h"
#include "platform/forms/WindowSystem.h"
#include "platform/qt/bindings/ControlBinding.h"

class QLabel;
class QMdiArea;
class QMdiSubWindow;
class QProgressBar;

namespace mailvane {

/// The window of the main form: child windows, and a status bar over whose second panel the
/// progress bar is laid while it is visible. Menus and tool bars are put in by their binding.
class MainWindow final : public QMainWindow {
public:
    explicit MainWindow(Form& form);
    ~MainWindow() override;

    QMdiArea& Area() const { return *area_; }
    void Arrange(Arrangement arrangement);
    /// The form is going: nothing is shown from here on.
    void Detach();

private:
    void TieStatusBar(StatusBar& control);
    void ShowPanels(const StatusBar& control);
    void TieProgress(ProgressBar& control);
    void PlaceProgress();
    std::vector<QMdiSubWindow*> OpenChildren() const;
    void Tile(bool horizontally);
    void ArrangeIcons();
    void changeEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

    QMdiArea* area_;
    std::vector<QLabel*> panels_;
    QProgressBar* progress_ = nullptr;
    BindingPointer progressBinding_;
    Subscription statusSubscription_;
};

}  // namespace mailvane
