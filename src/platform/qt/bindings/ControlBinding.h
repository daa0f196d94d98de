#pragma once

#include <QObject>
#include <QPointer>
#include <functional>
#include <memory>

#include "platform/forms/Chart.h"
#include "platform/forms/Form.h"

class QLabel;
class QWidget;

namespace mailvane {

/// Ties one control to its widget, both ways, as long as it lives. What the user does goes through
/// the control's own setters; then the widget shows what the control has made of it.
class ControlBinding : public QObject {
public:
    ControlBinding(Control& control, QWidget& widget);
    /// Brings the widget to the state of the control and listens from there on.
    void Start();

protected:
    /// Brings that property from the control to the widget. At the start every property is shown.
    virtual void Show(Property property) = 0;
    /// A key or mouse event of a watched widget, or a focus change; true swallows it. The binding
    /// may be gone when it returns.
    virtual bool Filter(QObject* watched, QEvent* event);
    bool eventFilter(QObject* watched, QEvent* event) final;

    /// Runs `act` unless the change in the widget is the binding's own doing, then shows `after`.
    void FromUser(Property after, const std::function<void()>& act);
    bool Showing() const { return showing_; }
    bool Started() const { return started_; }  ///< false while the first state is shown
    void ShowGuarded(Property property);
    /// Runs `show`; what the widget tells meanwhile is not the user's.
    void Guarded(const std::function<void()>& show);

private:
    void ShowCommon(Property property);
    Control& control_;
    QWidget& widget_;
    QPointer<QLabel> label_;
    bool showing_ = false;
    bool started_ = false;
    Subscription subscription_;
};

using BindingPointer = std::unique_ptr<ControlBinding>;

/// True when a control of this kind can be tied to the widget.
bool WidgetFits(const Control& control, const QWidget& widget);

// Each needs a widget that fits.
BindingPointer BindText(EditControl& control, QWidget& widget);
BindingPointer BindHtml(HtmlView& control, QWidget& widget);
BindingPointer BindCaption(TextControl& control, QWidget& widget);  ///< label, panel
BindingPointer BindButton(Button& control, QWidget& widget);
BindingPointer BindCheckBox(CheckBox& control, QWidget& widget);
BindingPointer BindOptionButton(OptionButton& control, QWidget& widget);
BindingPointer BindComboBox(ComboBox& control, QWidget& widget);
BindingPointer BindListBox(ListBox& control, QWidget& widget);
BindingPointer BindListBoks(ListBoks& control, QWidget& widget);
BindingPointer BindSlider(Slider& control, QWidget& widget);
BindingPointer BindDatePicker(DatePicker& control, QWidget& widget);
BindingPointer BindProgressBar(ProgressBar& control, QWidget& widget);
BindingPointer BindTabs(Tabs& control, QWidget& widget);
BindingPointer BindGrid(Grid& control, QWidget& widget);
BindingPointer BindChart(Chart& control, QWidget& widget);

/// The binding for any control that has a widget, null for the kinds that are tied elsewhere.
BindingPointer BindControl(Control& control, QWidget& widget);

/// The label whose buddy the widget is, null when there is none.
QLabel* BuddyLabel(const QWidget& widget);

}  // namespace mailvane
