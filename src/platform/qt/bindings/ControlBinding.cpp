#include "platform/qt/bindings/ControlBinding.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QFocusEvent>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QTabWidget>
#include <QTableView>
#include <QTextBrowser>
#include <QTextEdit>
#include <QToolButton>

#include "platform/qt/QtText.h"

namespace mailvane {

namespace {

constexpr Property AllProperties[] = {
    Property::Enabled,       Property::Visible, Property::Tip,   Property::Text,
    Property::Range,         Property::Value,   Property::Items, Property::ListIndex,
    Property::TextSelection, Property::Columns, Property::Rows,  Property::CurrentCell,
    Property::RowSelection,  Property::Redraw,  Property::Tools,
};

template <class... Widgets>
bool IsOneOf(const QWidget& widget) {
    return (... || (qobject_cast<const Widgets*>(&widget) != nullptr));
}

bool IsPlainWidget(const QWidget& widget) {
    return widget.metaObject() == &QWidget::staticMetaObject;
}

/// The user went elsewhere, and did not just open a menu or look at another window.
bool IsLeaving(const QFocusEvent& event) {
    return event.reason() != Qt::ActiveWindowFocusReason &&
           event.reason() != Qt::PopupFocusReason && event.reason() != Qt::MenuBarFocusReason;
}

}  // namespace

QLabel* BuddyLabel(const QWidget& widget) {
    const auto labels = widget.window()->findChildren<QLabel*>();
    for (QLabel* label : labels)
        if (label->buddy() == &widget) return label;
    return nullptr;
}

ControlBinding::ControlBinding(Control& control, QWidget& widget)
    : control_(control), widget_(widget) {
    QLabel* label = BuddyLabel(widget);
    if (label && !control.Owner().FindControl(FromQt(label->objectName()))) label_ = label;
    widget.installEventFilter(this);
}

void ControlBinding::Start() {
    for (const Property property : AllProperties)
        ShowGuarded(property);
    started_ = true;
    subscription_ = control_.changed.Observe([this](Property property) { ShowGuarded(property); });
}

void ControlBinding::ShowGuarded(Property property) {
    Guarded([&] {
        const QPointer<ControlBinding> self(this);
        ShowCommon(property);
        if (self) Show(property);
    });
}

void ControlBinding::Guarded(const std::function<void()>& show) {
    const QPointer<ControlBinding> self(this);
    const bool before = showing_;
    showing_ = true;
    show();
    if (self) showing_ = before;
}

void ControlBinding::ShowCommon(Property property) {
    QWidget* const label = label_;
    if (property == Property::Enabled) {
        if (label != nullptr) label->setEnabled(control_.Enabled());
        widget_.setEnabled(control_.Enabled());
    } else if (property == Property::Visible) {
        if (label != nullptr) label->setVisible(control_.Visible());
        if (widget_.isHidden() == control_.Visible()) widget_.setVisible(control_.Visible());
    } else if (property == Property::Tip && (!control_.Tip().empty() || started_)) {
        widget_.setToolTip(PlainToolTip(control_.Tip()));
    }
}

void ControlBinding::FromUser(Property after, const std::function<void()>& act) {
    if (showing_) return;
    const QPointer<ControlBinding> self(this);
    act();
    if (self) ShowGuarded(after);
}

bool ControlBinding::Filter(QObject*, QEvent*) {
    return false;
}

bool ControlBinding::eventFilter(QObject* watched, QEvent* event) {
    const QPointer<ControlBinding> self(this);
    if (Filter(watched, event)) return true;
    if (self && watched == &widget_ && event->type() == QEvent::FocusOut &&
        IsLeaving(*static_cast<QFocusEvent*>(event)))
        RunHandler(control_.onLeave);
    return false;
}

bool WidgetFits(const Control& control, const QWidget& widget) {
    switch (control.Kind()) {
        case ControlKind::TextBox:
            return IsOneOf<QLineEdit, QPlainTextEdit>(widget);
        case ControlKind::RichTextBox:
            return IsOneOf<QTextEdit>(widget);
        case ControlKind::HtmlView:
            return IsOneOf<QTextBrowser>(widget);
        case ControlKind::Label:
            return IsOneOf<QLabel>(widget);
        case ControlKind::Button:
            return IsOneOf<QPushButton, QToolButton>(widget);
        case ControlKind::CheckBox:
            return IsOneOf<QCheckBox>(widget);
        case ControlKind::OptionButton:
            return IsOneOf<QRadioButton>(widget);
        case ControlKind::ComboBox:
            return IsOneOf<QComboBox>(widget);
        case ControlKind::ListBox:
            return IsOneOf<QListWidget>(widget);
        case ControlKind::ListBoks:
        case ControlKind::ActiveBar:
        case ControlKind::Chart:
            return IsPlainWidget(widget);
        case ControlKind::Slider:
            return IsOneOf<QSlider>(widget);
        case ControlKind::DatePicker:
            return IsOneOf<QDateEdit>(widget);
        case ControlKind::ProgressBar:
            return IsOneOf<QProgressBar>(widget);
        case ControlKind::Grid:
            return IsOneOf<QTableView>(widget);
        case ControlKind::Tabs:
            return IsOneOf<QTabWidget>(widget);
        case ControlKind::Panel:
            return IsOneOf<QGroupBox, QLabel>(widget) ||
                   widget.metaObject() == &QFrame::staticMetaObject;
        case ControlKind::Timer:
        case ControlKind::StatusBar:
            return false;
    }
    return false;
}

BindingPointer BindControl(Control& control, QWidget& widget) {
    switch (control.Kind()) {
        case ControlKind::TextBox:
        case ControlKind::RichTextBox:
            return BindText(static_cast<EditControl&>(control), widget);
        case ControlKind::HtmlView:
            return BindHtml(static_cast<HtmlView&>(control), widget);
        case ControlKind::Label:
        case ControlKind::Panel:
            return BindCaption(static_cast<TextControl&>(control), widget);
        case ControlKind::Button:
            return BindButton(static_cast<Button&>(control), widget);
        case ControlKind::CheckBox:
            return BindCheckBox(static_cast<CheckBox&>(control), widget);
        case ControlKind::OptionButton:
            return BindOptionButton(static_cast<OptionButton&>(control), widget);
        case ControlKind::ComboBox:
            return BindComboBox(static_cast<ComboBox&>(control), widget);
        case ControlKind::ListBox:
            return BindListBox(static_cast<ListBox&>(control), widget);
        case ControlKind::ListBoks:
            return BindListBoks(static_cast<ListBoks&>(control), widget);
        case ControlKind::Slider:
            return BindSlider(static_cast<Slider&>(control), widget);
        case ControlKind::DatePicker:
            return BindDatePicker(static_cast<DatePicker&>(control), widget);
        case ControlKind::ProgressBar:
            return BindProgressBar(static_cast<ProgressBar&>(control), widget);
        case ControlKind::Grid:
            return BindGrid(static_cast<Grid&>(control), widget);
        case ControlKind::Chart:
            return BindChart(static_cast<Chart&>(control), widget);
        case ControlKind::Tabs:
            return BindTabs(static_cast<Tabs&>(control), widget);
        case ControlKind::ActiveBar:
        case ControlKind::Timer:
        case ControlKind::StatusBar:
            return nullptr;
    }
    return nullptr;
}

}  // namespace mailvane
