#pragma once

#include <QPersistentModelIndex>
#include <QStyledItemDelegate>

#include "platform/forms/Grid.h"

class QTableView;

namespace mailvane {

/// Edits the cells of a grid in place. A text that the grid refuses stays in the editor, which is
/// open again after the grid's owner has said what was wrong.
class GridDelegate final : public QStyledItemDelegate {
public:
    GridDelegate(const Grid& grid, QTableView& view);

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override;
    void setEditorData(QWidget* editor, const QModelIndex& index) const override;
    void setModelData(QWidget* editor, QAbstractItemModel* model,
                      const QModelIndex& index) const override;
    void updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                              const QModelIndex& index) const override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void EditAgain() const;

    const Grid& grid_;
    QTableView& view_;
    mutable QPersistentModelIndex refusedCell_;  ///< invalid when nothing was refused
    mutable QString refusedText_;
};

}  // namespace mailvane
