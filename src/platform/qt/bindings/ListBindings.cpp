#include <QApplication>
#include <QComboBox>
#include <QDrag>
#include <QDragEnterEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMimeData>
#include <QMouseEvent>
#include <QPalette>
#include <QPushButton>
#include <QStyle>
#include <QTimer>
#include <QUrl>
#include <QVBoxLayout>
#include <algorithm>

#include "platform/qt/QtText.h"
#include "platform/qt/bindings/ControlBinding.h"

namespace mailvane {

namespace {

using Texts = std::vector<std::string>;

/// What turns the entries shown into those wanted: some go at the front, as when a protocol grows
/// at its end and is cut at its begin, and from `keep` on the rest is replaced.
struct ItemChange {
    std::size_t dropFront = 0;
    std::size_t keep = 0;
};

ItemChange FindItemChange(const Texts& shown, const Texts& wanted) {
    const auto [end, ignored] =
        std::mismatch(shown.begin(), shown.end(), wanted.begin(), wanted.end());
    const auto same = static_cast<std::size_t>(end - shown.begin());
    if (same > 0 || wanted.empty()) return {0, same};
    const auto begin = std::find(shown.begin(), shown.end(), wanted.front());
    const auto left = static_cast<std::size_t>(shown.end() - begin);
    if (left > 0 && left <= wanted.size() && std::equal(begin, shown.end(), wanted.begin()))
        return {shown.size() - left, left};
    return {0, 0};
}

/// Entries are brought to the widget a moment later and together: a list filled entry by entry is
/// shown once.
class ItemsBinding : public ControlBinding {
protected:
    ItemsBinding(ItemsControl& control, QWidget& widget)
        : ControlBinding(control, widget), items_(control) {
        later_.setSingleShot(true);
        later_.setInterval(0);
        connect(&later_, &QTimer::timeout, this, [this] { ShowGuarded(Property::ListIndex); });
    }

    virtual void RemoveAt(int index) = 0;
    virtual void Append(const QString& text) = 0;
    virtual void ShowChosen() = 0;

    void Show(Property property) override {
        if (property == Property::Items) {
            stale_ = true;
            if (Started()) later_.start();
        }
        if (property == Property::ListIndex || property == Property::RowSelection) {
            if (Started() && later_.isActive()) return;  // comes with the entries
            ShowItems();
            ShowChosen();
        }
    }

    /// What the user has just chosen means nothing while other entries are about to be shown.
    bool IsUpToDate() const { return !stale_; }

private:
    void ShowItems() {
        if (!std::exchange(stale_, false)) return;
        const Texts& wanted = items_.Items();
        const ItemChange change = FindItemChange(shown_, wanted);
        for (std::size_t i = 0; i < change.dropFront; ++i)
            RemoveAt(0);
        const std::size_t left = shown_.size() - change.dropFront;
        for (std::size_t i = left; i > change.keep; --i)
            RemoveAt(static_cast<int>(i) - 1);
        for (std::size_t i = change.keep; i < wanted.size(); ++i)
            Append(ToQt(wanted[i]));
        shown_ = wanted;
    }

    ItemsControl& items_;
    Texts shown_;
    bool stale_ = true;
    QTimer later_;
};

class ComboBinding final : public ItemsBinding {
public:
    ComboBinding(ComboBox& control, QComboBox& combo)
        : ItemsBinding(control, combo), control_(control), combo_(combo) {
        const bool editable = control.BoxStyle() == ComboBox::Style::Editable;
        combo.clear();
        combo.setEditable(editable);
        combo.setInsertPolicy(QComboBox::NoInsert);
        if (editable) {
            combo.setCompleter(nullptr);
            connect(combo.lineEdit(), &QLineEdit::textEdited, this, [this](const QString& text) {
                FromUser(Property::Text, [&] { control_.SetText(FromQt(text)); });
            });
        }
        connect(&combo, &QComboBox::activated, this, [this](int index) {
            if (!IsUpToDate()) return;
            FromUser(Property::ListIndex, [&] { control_.SetListIndex(index); });
        });
    }

private:
    void RemoveAt(int index) override { combo_.removeItem(index); }
    void Append(const QString& text) override { combo_.addItem(text); }

    void ShowChosen() override {
        if (combo_.currentIndex() != control_.ListIndex())
            combo_.setCurrentIndex(control_.ListIndex());
        ShowTyped();
    }

    void Show(Property property) override {
        if (property == Property::Text) ShowTyped();
        ItemsBinding::Show(property);
    }

    void ShowTyped() {
        const QString text = ToQt(control_.Text());
        if (combo_.isEditable() && combo_.currentText() != text) combo_.setEditText(text);
    }

    ComboBox& control_;
    QComboBox& combo_;
};

QString DroppedText(const QMimeData& data) {
    for (const QUrl& url : data.urls())
        if (url.isLocalFile()) return url.toLocalFile();
    return data.text();
}

class ListBinding : public ItemsBinding {
public:
    ListBinding(ListBox& control, QWidget& widget, QListWidget& list)
        : ItemsBinding(control, widget), control_(control), list_(list) {
        list.clear();
        list.setUniformItemSizes(true);
        list.setSelectionMode(IsMultiple() ? QAbstractItemView::ExtendedSelection
                                           : QAbstractItemView::SingleSelection);
        connect(&list, &QListWidget::itemSelectionChanged, this, [this] { ReadSelection(); });
        connect(&list, &QListWidget::itemDoubleClicked, this, [this] { DoubleClicked(); });
        connect(&list, &QListWidget::itemChanged, this, [this](QListWidgetItem* item) {
            if (HasTicks()) ReadTick(*item);
        });
        // Beside the tick, an empty box hardly shows on a dark entry field.
        if (HasTicks()) list.viewport()->setBackgroundRole(QPalette::AlternateBase);
        list.viewport()->installEventFilter(this);
        if (&list != &widget) list.installEventFilter(this);
    }

protected:
    virtual void DoubleClicked() { RunHandler(control_.onDoubleClick); }

    void ShowChosen() override {
        const int index = control_.ListIndex();
        if (list_.currentRow() != index)
            list_.setCurrentRow(index, IsMultiple() ? QItemSelectionModel::NoUpdate
                                                    : QItemSelectionModel::ClearAndSelect);
        for (int i = 0; IsMultiple() && i < list_.count(); ++i)
            list_.item(i)->setSelected(control_.IsSelected(i));
        for (int i = 0; HasTicks() && i < list_.count(); ++i)
            list_.item(i)->setCheckState(control_.IsSelected(i) ? Qt::Checked : Qt::Unchecked);
        if (!IsMultiple() && index < 0) list_.clearSelection();
        if (index >= 0) list_.scrollToItem(list_.item(index));
    }

    bool Filter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::ContextMenu && control_.onContextMenu) {
            RunHandler(control_.onContextMenu);
            return true;
        }
        if (watched != list_.viewport()) return false;
        switch (event->type()) {
            case QEvent::MouseButtonPress:
                pressedAt_ = static_cast<QMouseEvent*>(event)->position().toPoint();
                return false;
            case QEvent::MouseMove:
                return Drag(*static_cast<QMouseEvent*>(event));
            case QEvent::DragEnter:
            case QEvent::DragMove:
            case QEvent::Drop:
                return Drop(*static_cast<QDropEvent*>(event));
            default:
                return false;
        }
    }

    ListBox& control_;
    QListWidget& list_;

private:
    bool IsMultiple() const { return control_.SelectionMode() == ListBox::Selection::Multiple; }
    bool HasTicks() const { return control_.SelectionMode() == ListBox::Selection::Ticks; }

    void RemoveAt(int index) override { delete list_.takeItem(index); }
    void Append(const QString& text) override { list_.addItem(text); }

    void Show(Property property) override {
        if (property == Property::Enabled) list_.viewport()->setAcceptDrops(!!control_.onDropText);
        ItemsBinding::Show(property);
    }

    void ReadSelection() {
        if (!IsUpToDate()) return;
        FromUser(Property::RowSelection, [this] {
            const QPointer<ControlBinding> self(this);
            const int row =
                IsMultiple() || !list_.selectedItems().isEmpty() ? list_.currentRow() : -1;
            std::vector<bool> selected;
            for (int i = 0; IsMultiple() && i < list_.count(); ++i)
                selected.push_back(list_.item(i)->isSelected());
            control_.SetListIndex(row);
            for (std::size_t i = 0; self && i < selected.size(); ++i)
                control_.SetSelected(static_cast<int>(i), selected[i]);
        });
    }

    void ReadTick(const QListWidgetItem& item) {
        if (!IsUpToDate()) return;
        FromUser(Property::RowSelection,
                 [&] { control_.SetSelected(list_.row(&item), item.checkState() == Qt::Checked); });
    }

    bool Drag(QMouseEvent& event) {
        if (!control_.dragText || !(event.buttons() & Qt::LeftButton)) return false;
        const QPoint way = event.position().toPoint() - pressedAt_;
        const int row = list_.row(list_.itemAt(pressedAt_));
        if (row < 0 || way.manhattanLength() < QApplication::startDragDistance()) return true;
        auto* data = new QMimeData;
        data->setText(ToQt(control_.dragText(row)));
        auto* drag = new QDrag(&list_);
        drag->setMimeData(data);
        drag->exec(Qt::CopyAction);
        return true;
    }

    bool Drop(QDropEvent& event) {
        const QString text = DroppedText(*event.mimeData());
        if (!control_.onDropText || text.isEmpty()) return false;
        event.setDropAction(Qt::CopyAction);
        event.accept();
        if (event.type() == QEvent::Drop) RunHandler(control_.onDropText, FromQt(text));
        return true;
    }

    QPoint pressedAt_;
};

/// The list and its column of buttons, put into an empty widget.
class ListBoksBinding final : public ListBinding {
public:
    ListBoksBinding(ListBoks& control, QWidget& place)
        : ListBinding(control, place, MakeList(place)), boks_(control) {
        auto* column = new QVBoxLayout;
        const auto add = [&](const char16_t* caption, const std::function<void()>& press) {
            auto* button = new QPushButton(QString::fromUtf16(caption), &place);
            button->setAutoDefault(false);
            connect(button, &QPushButton::clicked, this,
                    [this, press] { FromUser(Property::RowSelection, press); });
            column->addWidget(button);
            QWidget::setTabOrder(
                buttons_.isEmpty() ? static_cast<QWidget*>(&list_) : buttons_.constLast(), button);
            buttons_.append(button);
        };
        add(u"Add", [this] { boks_.PressAdd(); });
        add(u"Edit", [this] { boks_.PressEdit(); });
        add(u"Delete", [this] { boks_.PressDelete(); });
        add(u"Up", [this] { boks_.MoveUp(); });
        add(u"Down", [this] { boks_.MoveDown(); });
        column->addStretch();
        static_cast<QHBoxLayout*>(place.layout())->addLayout(column);
    }

private:
    static QListWidget& MakeList(QWidget& place) {
        auto* row = new QHBoxLayout(&place);
        row->setContentsMargins(0, 0, 0, 0);
        auto* list = new QListWidget(&place);
        row->addWidget(list, 1);
        QString name = place.accessibleName();
        if (const QLabel* label = BuddyLabel(place); name.isEmpty() && label)
            name = label->text().remove(QLatin1Char('&'));
        list->setAccessibleName(name);
        place.setFocusProxy(list);
        QWidget::setTabOrder(&place, list);
        return *list;
    }

    void ShowChosen() override {
        ListBinding::ShowChosen();
        for (qsizetype i = 1; i < buttons_.size(); ++i)
            buttons_[i]->setEnabled(control_.ListIndex() >= 0);
    }

    void DoubleClicked() override {
        if (control_.onDoubleClick) {
            ListBinding::DoubleClicked();
        } else {
            boks_.PressEdit();
        }
    }

    ListBoks& boks_;
    QList<QPushButton*> buttons_;
};

}  // namespace

BindingPointer BindComboBox(ComboBox& control, QWidget& widget) {
    return std::make_unique<ComboBinding>(control, *qobject_cast<QComboBox*>(&widget));
}

BindingPointer BindListBox(ListBox& control, QWidget& widget) {
    return std::make_unique<ListBinding>(control, widget, *qobject_cast<QListWidget*>(&widget));
}

BindingPointer BindListBoks(ListBoks& control, QWidget& widget) {
    return std::make_unique<ListBoksBinding>(control, widget);
}

}  // namespace mailvane
