#include "platform/qt/check/LayoutCheck.h"

#include <QAbstractButton>
#include <QAbstractScrollArea>
#include <QCheckBox>
#include <QGraphicsTextItem>
#include <QGraphicsView>
#include <QGroupBox>
#include <QLabel>
#include <QRadioButton>
#include <QTabBar>

#include "platform/qt/QtText.h"

namespace mailvane {

namespace {

constexpr int ButtonMargins = 8;  ///< pixels left and right of the text together, at least
constexpr int TitleMargins = 16;

QSize TextSize(const QWidget& widget, const QString& text) {
    return widget.fontMetrics().size(Qt::TextShowMnemonic, text);
}

/// What the widget's text needs; empty when it has none that could be cut.
QSize NeededSize(const QWidget& widget) {
    if (const auto* label = qobject_cast<const QLabel*>(&widget)) {
        if (label->text().isEmpty()) return {};
        if (label->wordWrap()) return {0, label->heightForWidth(label->width())};
        return label->sizeHint();
    }
    if (const auto* group = qobject_cast<const QGroupBox*>(&widget))
        return TextSize(*group, group->title()).grownBy({TitleMargins, 0, 0, 0});
    const auto* button = qobject_cast<const QAbstractButton*>(&widget);
    if (!button || button->text().isEmpty()) return {};
    if (qobject_cast<const QCheckBox*>(button) || qobject_cast<const QRadioButton*>(button))
        return button->sizeHint();
    return TextSize(*button, button->text()).grownBy({ButtonMargins, 0, 0, 0});
}

/// A widget of the design, not a part that Qt's widgets are made of.
bool IsDesigned(const QWidget& widget) {
    return !widget.objectName().isEmpty() && !widget.objectName().startsWith(QLatin1String("qt_"));
}

class Checker {
public:
    explicit Checker(const QWidget& content) : content_(content) {}

    std::vector<std::string> Run() {
        for (const QWidget* widget : content_.findChildren<QWidget*>()) {
            if (!widget->isVisibleTo(&content_)) continue;
            if (const auto* view = qobject_cast<const QGraphicsView*>(widget)) CheckNames(*view);
            if (!IsDesigned(*widget)) continue;
            CheckText(*widget);
            CheckOverlap(*widget);
        }
        return std::move(complaints_);
    }

private:
    void Complain(const QWidget& widget, const QString& text) {
        complaints_.push_back(FromQt(widget.objectName() + QLatin1Char(' ') + text));
    }

    void CheckText(const QWidget& widget) {
        const QSize need = NeededSize(widget);
        if (need.width() > widget.width() || need.height() > widget.height())
            Complain(widget, QStringLiteral("needs %1 x %2 pixels and has %3 x %4")
                                 .arg(need.width())
                                 .arg(need.height())
                                 .arg(widget.width())
                                 .arg(widget.height()));
    }

    /// Each pair is seen once, from its later one.
    void CheckOverlap(const QWidget& widget) {
        const QWidget* parent = widget.parentWidget();
        if (qobject_cast<const QAbstractScrollArea*>(parent) ||
            qobject_cast<const QTabBar*>(parent))
            return;
        for (const QObject* child : parent->children()) {
            if (child == &widget) return;
            const auto* other = qobject_cast<const QWidget*>(child);
            if (other && IsDesigned(*other) && other->isVisibleTo(&content_) &&
                other->geometry().intersects(widget.geometry()))
                Complain(widget, QStringLiteral("lies over ") + other->objectName());
        }
    }

    void CheckNames(const QGraphicsView& view) {
        for (const QGraphicsItem* item : view.items()) {
            const auto* text = qgraphicsitem_cast<const QGraphicsTextItem*>(item);
            if (text && text->isVisible() && text->toPlainText().endsWith(QLatin1String("...")))
                Complain(*view.parentWidget(), QStringLiteral("shows ") + text->toPlainText());
        }
    }

    const QWidget& content_;
    std::vector<std::string> complaints_;
};

}  // namespace

std::vector<std::string> CheckLayout(const QWidget& content) {
    return Checker(content).Run();
}

}  // namespace mailvane
