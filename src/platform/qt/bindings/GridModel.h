#pragma once

#include <QAbstractTableModel>
#include <list>
#include <string>
#include <vector>

#include "platform/forms/Grid.h"

namespace mailvane {

/// The rows of a grid for a table view. Reads them in pages as the view asks for them, and keeps
/// the last few pages.
class GridModel final : public QAbstractTableModel {
public:
    GridModel(Grid& grid, QObject* owner) : QAbstractTableModel(owner), grid_(&grid) {}
    /// The grid is about to go: from here on the model is empty texts.
    void Detach();

    /// Brings the model to the grid's columns, all read again.
    void ColumnsChanged();
    /// Brings the number of rows to the grid's; what is on the screen is read again.
    void RowsChanged();
    void RowChanged(std::size_t row);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;

private:
    struct Page {
        std::size_t number;
        std::vector<std::vector<std::string>> rows;
    };
    const std::string* Cell(const QModelIndex& index) const;
    const Page& PageOf(std::size_t row) const;
    std::size_t GridRowCount() const { return grid_ ? grid_->RowCount() : 0; }
    const GridColumn* Column(int section) const;
    Grid* grid_;
    int rows_ = 0;
    int columns_ = 0;
    mutable std::list<Page> pages_;  ///< the one used last in front
};

}  // namespace mailvane
