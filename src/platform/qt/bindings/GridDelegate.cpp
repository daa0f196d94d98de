#include "platform/qt/bindings/GridDelegate.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTableView>
#include <QTimer>
#include <algorithm>

#include "platform/qt/QtText.h"

namespace mailvane {

namespace {

constexpr int MemoWidth = 380;
constexpr int MemoLines = 8;

QString CellText(const QModelIndex& index) {
    return index.data(Qt::EditRole).toString();
}

/// A text of several lines would lose them in a box of one.
bool NeedsLines(const GridColumn& column, const QString& text) {
    return column.kind == CellKind::Memo || text.contains(QLatin1Char('\n'));
}

QString EditorText(const QWidget& editor) {
    if (const auto* lines = qobject_cast<const QPlainTextEdit*>(&editor))
        return ToQt(FromWidgetText(lines->toPlainText()));
    return static_cast<const QLineEdit&>(editor).text();
}

}  // namespace

GridDelegate::GridDelegate(const Grid& grid, QTableView& view)
    : QStyledItemDelegate(&view), grid_(grid), view_(view) {}

QWidget* GridDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem&,
                                    const QModelIndex& index) const {
    const GridColumn& column = grid_.Columns().at(static_cast<std::size_t>(index.column()));
    if (NeedsLines(column, CellText(index))) {
        auto* lines = new QPlainTextEdit(parent);
        lines->setTabChangesFocus(true);
        return lines;
    }
    auto* line = new QLineEdit(parent);
    line->setFrame(false);
    if (column.kind == CellKind::Number) line->setAlignment(Qt::AlignRight);
    return line;
}

void GridDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const {
    const bool again = index == refusedCell_;
    const QString text = again ? refusedText_ : CellText(index);
    if (again) refusedCell_ = QPersistentModelIndex();
    if (auto* lines = qobject_cast<QPlainTextEdit*>(editor)) {
        lines->setPlainText(text);
        lines->selectAll();
    } else {
        auto* line = static_cast<QLineEdit*>(editor);
        line->setText(text);
        line->selectAll();
    }
}

/// An editor that was not typed in leaves the cell alone, whatever line ends that has.
void GridDelegate::setModelData(QWidget* editor, QAbstractItemModel* model,
                                const QModelIndex& index) const {
    const QString text = EditorText(*editor);
    if (ToWidgetText(FromQt(text)) == ToWidgetText(FromQt(CellText(index)))) return;
    const QPersistentModelIndex cell = index;
    const QPointer<const GridDelegate> self(this);
    if (model->setData(index, text, Qt::EditRole) || !self || !cell.isValid()) return;
    refusedCell_ = cell;
    refusedText_ = text;
    QTimer::singleShot(0, this, [this] { EditAgain(); });
}

void GridDelegate::EditAgain() const {
    if (!refusedCell_.isValid()) return;
    view_.setCurrentIndex(refusedCell_);
    view_.edit(refusedCell_);
}

void GridDelegate::updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                                        const QModelIndex&) const {
    QRect place = option.rect;
    if (qobject_cast<QPlainTextEdit*>(editor)) {
        const QRect whole = view_.viewport()->rect();
        const int height = editor->fontMetrics().lineSpacing() * MemoLines;
        place.setSize({std::min(std::max(place.width(), MemoWidth), whole.width()),
                       std::min(height, whole.height())});
        place.moveLeft(std::max(0, std::min(place.left(), whole.right() - place.width())));
        place.moveTop(std::max(0, std::min(place.top(), whole.bottom() - place.height())));
    }
    editor->setGeometry(place);
}

/// In a box of several lines Return is a line end; Ctrl+Return is done.
bool GridDelegate::eventFilter(QObject* watched, QEvent* event) {
    auto* lines = qobject_cast<QPlainTextEdit*>(watched);
    if (lines && event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        const bool enter = key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter;
        if (enter && !key->modifiers().testFlag(Qt::ControlModifier)) return false;
        if (enter) {
            emit commitData(lines);
            emit closeEditor(lines);
            return true;
        }
    }
    return QStyledItemDelegate::eventFilter(watched, event);
}

}  // namespace mailvane
