#pragma once

#include <QObject>
#include <memory>
#include <vector>

#include "platform/qt/MainWindow.h"
#include "platform/qt/bindings/BarBinding.h"
#include "platform/qt/bindings/ControlBinding.h"

namespace mailvane {

/// The window of one form, with everything that ties the two. Made without being shown.
class FormWindow final : public QObject {
public:
    /// A child form stands inside the main window when there is one; a modal form never does.
    static std::unique_ptr<FormWindow> Make(Form& form, MainWindow* main, bool modal);
    ~FormWindow() override;

    /// `opener` (may be null) is the window in front of which a dialog stands from now on.
    void Show(const QWidget* opener);
    void Hide();
    void BringToFront();
    void Follow();  ///< caption, place and state of the form
    void SetModal(bool modal);
    void FocusControl(const Control& control);
    BarBinding* Bar() const { return bar_.get(); }

    /// The widget that the form's controls are in.
    QWidget& Content() const { return *content_; }
    /// The window itself: the content, or what stands around it.
    QWidget& Frame() const { return *frame_; }
    MainWindow* AsMain() const { return main_; }
    Form* OwnForm() const { return form_; }  ///< null after Detach

    /// Takes the window from the screen and cuts it from the form, which may be destroyed then. The
    /// window itself may still be at work in an event and is destroyed later.
    void Detach();

private:
    explicit FormWindow(Form& form);
    bool MakeFrame(MainWindow* main, bool modal);
    void MakeChild(QMdiArea& area);
    void MakeDialog();
    void TieControls();
    void TieBar(ActiveBar& bar);
    void FollowPlace();
    void FollowState();
    bool IsPlaced() const;
    QRect Room() const;
    void StandBefore(const QWidget& opener);
    QWidget* WidgetOf(const Control& control) const;
    void ReportPlace();
    WindowState ShownState() const;
    bool eventFilter(QObject* watched, QEvent* event) override;

    Form* form_;
    /// No other window owns it, whatever it stands in or in front of.
    std::unique_ptr<QWidget> frame_;
    QWidget* content_ = nullptr;
    MainWindow* main_ = nullptr;  ///< the frame, when this is the main form's
    bool inside_ = false;         ///< a child of the main window's area
    bool following_ = false;
    std::vector<BindingPointer> bindings_;
    std::unique_ptr<BarBinding> bar_;
};

}  // namespace mailvane
