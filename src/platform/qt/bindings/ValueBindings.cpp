#include <QAbstractButton>
#include <QCheckBox>
#include <QDateEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QTabWidget>
#include <algorithm>
#include <limits>

#include "platform/qt/QtText.h"
#include "platform/qt/bindings/ControlBinding.h"

namespace mailvane {

namespace {

/// Shows a caption; an empty one leaves the design's.
class CaptionedButton {
public:
    explicit CaptionedButton(QAbstractButton& button) : button_(button), design_(button.text()) {}
    void ShowCaption(const std::string& caption) {
        button_.setText(caption.empty() ? design_ : ToQt(caption));
    }

private:
    QAbstractButton& button_;
    QString design_;
};

class ButtonBinding final : public ControlBinding {
public:
    ButtonBinding(Button& control, QAbstractButton& button)
        : ControlBinding(control, button), control_(control), caption_(button) {
        connect(&button, &QAbstractButton::clicked, this, [this] { control_.Press(); });
    }

private:
    void Show(Property property) override {
        if (property == Property::Text) caption_.ShowCaption(control_.Text());
    }

    Button& control_;
    CaptionedButton caption_;
};

class CheckBoxBinding final : public ControlBinding {
public:
    CheckBoxBinding(CheckBox& control, QCheckBox& box)
        : ControlBinding(control, box), control_(control), box_(box), caption_(box) {
        connect(&box, &QCheckBox::clicked, this, [this](bool checked) {
            FromUser(Property::Value, [&] { control_.SetChecked(checked); });
        });
    }

private:
    void Show(Property property) override {
        if (property == Property::Text) caption_.ShowCaption(control_.Caption());
        if (property == Property::Value) box_.setChecked(control_.Checked());
    }

    CheckBox& control_;
    QCheckBox& box_;
    CaptionedButton caption_;
};

/// The control knows its group; Qt's own, by parent widget, is switched off.
class OptionBinding final : public ControlBinding {
public:
    OptionBinding(OptionButton& control, QRadioButton& radio)
        : ControlBinding(control, radio), control_(control), radio_(radio), caption_(radio) {
        radio.setAutoExclusive(false);
        connect(&radio, &QRadioButton::clicked, this,
                [this] { FromUser(Property::Value, [&] { control_.SetValue(true); }); });
    }

private:
    void Show(Property property) override {
        if (property == Property::Text) caption_.ShowCaption(control_.Caption());
        if (property == Property::Value) radio_.setChecked(control_.IsSet());
    }

    OptionButton& control_;
    QRadioButton& radio_;
    CaptionedButton caption_;
};

class SliderBinding final : public ControlBinding {
public:
    SliderBinding(Slider& control, QSlider& slider)
        : ControlBinding(control, slider), control_(control), slider_(slider) {
        connect(&slider, &QSlider::valueChanged, this, [this](int value) {
            FromUser(Property::Value, [&] { control_.SetValue(value); });
        });
    }

private:
    void Show(Property property) override {
        if (property == Property::Range) slider_.setRange(control_.Minimum(), control_.Maximum());
        if (property == Property::Value) slider_.setValue(control_.Value());
    }

    Slider& control_;
    QSlider& slider_;
};

class DateBinding final : public ControlBinding {
public:
    DateBinding(DatePicker& control, QDateEdit& edit)
        : ControlBinding(control, edit), control_(control), edit_(edit) {
        edit.setCalendarPopup(true);
        connect(&edit, &QDateEdit::dateChanged, this, [this](QDate date) {
            const auto value = DateTime::FromParts(date.year(), date.month(), date.day());
            if (value) FromUser(Property::Value, [&] { control_.SetValue(*value); });
        });
    }

private:
    void Show(Property property) override {
        if (property != Property::Value || !control_.Value().HasDate()) return;
        const DateTime value = control_.Value();
        edit_.setDate(QDate(value.Year(), value.Month(), value.Day()));
    }

    DatePicker& control_;
    QDateEdit& edit_;
};

class ProgressBinding final : public ControlBinding {
public:
    ProgressBinding(ProgressBar& control, QProgressBar& bar)
        : ControlBinding(control, bar), control_(control), bar_(bar) {}

private:
    void Show(Property property) override {
        if (property != Property::Range && property != Property::Value) return;
        // A maximum of 0 would make Qt's bar a busy sign.
        bar_.setRange(0, std::max(1, ToInt(control_.Maximum())));
        bar_.setValue(ToInt(control_.Value()));
    }

    static int ToInt(long value) {
        return static_cast<int>(std::min<long>(value, std::numeric_limits<int>::max()));
    }

    ProgressBar& control_;
    QProgressBar& bar_;
};

class TabsBinding final : public ControlBinding {
public:
    TabsBinding(Tabs& control, QTabWidget& tabs)
        : ControlBinding(control, tabs), control_(control), tabs_(tabs) {
        connect(&tabs, &QTabWidget::currentChanged, this, [this](int page) {
            FromUser(Property::Value, [&] { control_.SetCurrent(page); });
        });
    }

private:
    void Show(Property property) override {
        if (property == Property::Value) tabs_.setCurrentIndex(control_.Current());
    }

    Tabs& control_;
    QTabWidget& tabs_;
};

}  // namespace

BindingPointer BindButton(Button& control, QWidget& widget) {
    return std::make_unique<ButtonBinding>(control, *qobject_cast<QAbstractButton*>(&widget));
}

BindingPointer BindCheckBox(CheckBox& control, QWidget& widget) {
    return std::make_unique<CheckBoxBinding>(control, *qobject_cast<QCheckBox*>(&widget));
}

BindingPointer BindOptionButton(OptionButton& control, QWidget& widget) {
    return std::make_unique<OptionBinding>(control, *qobject_cast<QRadioButton*>(&widget));
}

BindingPointer BindSlider(Slider& control, QWidget& widget) {
    return std::make_unique<SliderBinding>(control, *qobject_cast<QSlider*>(&widget));
}

BindingPointer BindDatePicker(DatePicker& control, QWidget& widget) {
    return std::make_unique<DateBinding>(control, *qobject_cast<QDateEdit*>(&widget));
}

BindingPointer BindProgressBar(ProgressBar& control, QWidget& widget) {
    return std::make_unique<ProgressBinding>(control, *qobject_cast<QProgressBar*>(&widget));
}

BindingPointer BindTabs(Tabs& control, QWidget& widget) {
    return std::make_unique<TabsBinding>(control, *qobject_cast<QTabWidget*>(&widget));
}

}  // namespace mailvane
