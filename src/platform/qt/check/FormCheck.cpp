#include "platform/qt/check/FormCheck.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QFile>
#include <QGroupBox>
#include <QKeySequence>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QTabBar>
#include <QTabWidget>
#include <QTableView>
#include <QTextEdit>
#include <QToolButton>
#include <QXmlStreamReader>
#include <algorithm>
#include <map>
#include <memory>
#include <set>

#include "platform/forms/Form.h"
#include "platform/qt/FormDesign.h"
#include "platform/qt/QtText.h"
#include "platform/qt/bindings/ControlBinding.h"

namespace mailvane {

namespace {

template <class... Widgets>
bool IsOneOf(const QWidget& widget) {
    return (... || (qobject_cast<const Widgets*>(&widget) != nullptr));
}

/// Takes the keyboard, has no caption of its own.
bool NeedsLabel(const QWidget& widget) {
    return IsOneOf<QLineEdit, QPlainTextEdit, QTextEdit, QComboBox, QListWidget, QSlider, QDateEdit,
                   QTableView>(widget);
}

bool IsCaptioned(const QWidget& widget) {
    return IsOneOf<QCheckBox, QRadioButton, QPushButton, QToolButton>(widget);
}

bool IsInput(const QWidget& widget) {
    return NeedsLabel(widget) || IsCaptioned(widget) || IsOneOf<QProgressBar, QTabWidget>(widget);
}

/// Kinds whose widgets are plain ones, filled by the program, but take the keyboard.
bool IsFilledInput(const Control& control) {
    return control.Kind() == ControlKind::ListBoks;
}

/// No widget by design.
bool StandsAlone(const Control& control) {
    switch (control.Kind()) {
        case ControlKind::Timer:
        case ControlKind::StatusBar:
            return true;
        case ControlKind::Button:
            return !static_cast<const Button&>(control).HasWidget();
        default:
            return false;
    }
}

class Checker {
public:
    Checker(const Form& form, QWidget& root) : form_(form), root_(root) {}

    std::vector<std::string> Run() {
        if (root_.objectName() != ToQt(form_.Name()))
            Complain("the root widget is named " + FromQt(root_.objectName()));
        ReadDesign();
        CheckControls();
        CheckInputs();
        CheckMnemonics();
        CheckTabOrder();
        return std::move(complaints_);
    }

private:
    void Complain(const std::string& text) { complaints_.push_back(form_.Name() + ": " + text); }

    static std::string NameOf(const QWidget& widget) { return FromQt(widget.objectName()); }

    /// The control tied to the widget; their names agree to the letter.
    const Control* ControlOf(const QWidget& widget) const {
        for (const Control* control : form_.Controls())
            if (control->Name() == NameOf(widget) && !StandsAlone(*control)) return control;
        return nullptr;
    }

    void CheckControls() {
        for (const Control* control : form_.Controls()) {
            const auto found = root_.findChildren<QWidget*>(ToQt(control->Name()));
            if (StandsAlone(*control)) {
                if (!found.isEmpty()) Complain(control->Name() + " has a widget and needs none");
            } else if (found.isEmpty()) {
                Complain(control->Name() + " has no widget");
            } else if (found.size() > 1) {
                Complain(control->Name() + " has more than one widget");
            } else if (!WidgetFits(*control, *found.first())) {
                Complain(control->Name() + " has a widget of the wrong kind, " +
                         found.first()->metaObject()->className());
            } else if (control->Kind() == ControlKind::Chart &&
                       found.first()->accessibleName().isEmpty()) {
                Complain(control->Name() + " has no name for screen readers");
            }
        }
    }

    /// The names of the widgets and the tab order as the design has them.
    void ReadDesign() {
        QFile file(DesignPath(form_.Name()));
        if (!file.open(QIODevice::ReadOnly)) return;
        for (QXmlStreamReader xml(&file); !xml.atEnd(); xml.readNext()) {
            if (!xml.isStartElement()) continue;
            if (xml.name() == QStringLiteral("widget")) {
                designed_.insert(xml.attributes().value(QStringLiteral("name")).toString());
            } else if (xml.name() == QStringLiteral("tabstop")) {
                stops_.push_back(FromQt(xml.readElementText()));
            }
        }
    }

    /// Inputs of the design itself, not the parts that Qt's widgets are made of.
    std::vector<const QWidget*> Inputs() const {
        std::vector<const QWidget*> inputs;
        for (const QWidget* widget : root_.findChildren<QWidget*>()) {
            const Control* control = ControlOf(*widget);
            if (designed_.contains(widget->objectName()) &&
                (IsInput(*widget) || (control && IsFilledInput(*control))))
                inputs.push_back(widget);
        }
        return inputs;
    }

    void CheckInputs() {
        for (const QWidget* widget : Inputs()) {
            const Control* control = ControlOf(*widget);
            if (!control) {
                Complain(NameOf(*widget) + " is no control");
                continue;
            }
            const bool hasName = !widget->accessibleName().isEmpty();
            const bool hasLabel = BuddyLabel(*widget) != nullptr;
            if ((NeedsLabel(*widget) || IsFilledInput(*control)) && !hasLabel && !hasName)
                Complain(NameOf(*widget) + " has no label");
            const auto* button = qobject_cast<const QAbstractButton*>(widget);
            if (button ? button->text().isEmpty() && CaptionOf(*control).empty() && !hasName
                       : IsOneOf<QProgressBar, QTabWidget>(*widget) && !hasName)
                Complain(NameOf(*widget) + " has no name for screen readers");
        }
    }

    static std::string CaptionOf(const Control& control) {
        switch (control.Kind()) {
            case ControlKind::Button:
                return static_cast<const Button&>(control).Text();
            case ControlKind::CheckBox:
                return static_cast<const CheckBox&>(control).Caption();
            case ControlKind::OptionButton:
                return static_cast<const OptionButton&>(control).Caption();
            default:
                return {};
        }
    }

    void CheckMnemonics() {
        std::map<QString, std::string> owners;
        const auto add = [&](const QString& text, const std::string& owner) {
            const QString key = QKeySequence::mnemonic(text).toString();
            if (key.isEmpty()) return;
            const auto [place, fresh] = owners.emplace(key, owner);
            if (!fresh)
                Complain(owner + " has the mnemonic " + FromQt(key) + " of " + place->second);
        };
        for (const QWidget* widget : root_.findChildren<QWidget*>()) {
            const std::string name = NameOf(*widget);
            if (const auto* label = qobject_cast<const QLabel*>(widget)) {
                if (label->buddy()) add(label->text(), name);
            } else if (const auto* button = qobject_cast<const QAbstractButton*>(widget)) {
                const Control* control = ControlOf(*widget);
                const std::string caption = control ? CaptionOf(*control) : std::string();
                add(caption.empty() ? button->text() : ToQt(caption), name);
            } else if (const auto* group = qobject_cast<const QGroupBox*>(widget)) {
                add(group->title(), name);
            } else if (const auto* tabs = qobject_cast<const QTabWidget*>(widget)) {
                for (int page = 0; page < tabs->count(); ++page)
                    add(tabs->tabText(page), name + " page " + std::to_string(page));
            }
        }
    }

    void CheckTabOrder() {
        for (const QWidget* widget : Inputs()) {
            const std::string name = NameOf(*widget);
            const auto times = std::count(stops_.begin(), stops_.end(), name);
            const bool wanted = !IsOneOf<QProgressBar>(*widget);
            if (times == 0 && wanted) Complain(name + " is not in the tab order");
            if (times > 1) Complain(name + " is in the tab order more than once");
        }
        for (const std::string& stop : stops_)
            if (!root_.findChild<QWidget*>(ToQt(stop)))
                Complain(stop + " is in the tab order and no widget");
    }

    const Form& form_;
    QWidget& root_;
    std::set<QString> designed_;
    std::vector<std::string> stops_;
    std::vector<std::string> complaints_;
};

}  // namespace

bool HasDesign(const Form& form) {
    return QFile::exists(DesignPath(form.Name()));
}

std::vector<std::string> CheckForm(const Form& form) {
    if (form.Style() == FormStyle::Main || !HasDesign(form)) return {};
    const std::unique_ptr<QWidget> root(LoadDesign(form.Name(), nullptr));
    if (!root) return {form.Name() + ": the design cannot be read"};
    return Checker(form, *root).Run();
}

}  // namespace mailvane
