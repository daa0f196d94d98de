#include "platform/qt/bindings/GridModel.h"

#include <QIcon>
#include <algorithm>
#include <limits>

#include "platform/qt/Icons.h"
#include "platform/qt/QtText.h"

namespace mailvane {

namespace {

constexpr std::size_t PageRows = 128;
constexpr std::size_t KeptPages = 8;
constexpr qsizetype LongestCell = 300;  ///< more is never seen in one line
constexpr int NumberPlace = static_cast<int>(Qt::AlignRight | Qt::AlignVCenter);
constexpr const char* TrueText = "True";
constexpr const char* FalseText = "False";

}  // namespace

void GridModel::Detach() {
    grid_ = nullptr;
    pages_.clear();
}

/// Null where the grid has fewer columns than the view still knows.
const GridColumn* GridModel::Column(int section) const {
    const auto place = static_cast<std::size_t>(section);
    return grid_ && place < grid_->Columns().size() ? &grid_->Columns()[place] : nullptr;
}

void GridModel::ColumnsChanged() {
    beginResetModel();
    pages_.clear();
    columns_ = static_cast<int>(grid_->Columns().size());
    endResetModel();
}

void GridModel::RowsChanged() {
    pages_.clear();
    const auto most = static_cast<std::size_t>(std::numeric_limits<int>::max());
    const int now = static_cast<int>(std::min(GridRowCount(), most));
    const int before = rows_;
    if (now > before) {
        beginInsertRows({}, before, now - 1);
        rows_ = now;
        endInsertRows();
    } else if (now < before) {
        beginRemoveRows({}, now, before - 1);
        rows_ = now;
        endRemoveRows();
    }
    const int same = std::min(now, before);
    if (same > 0 && columns_ > 0) emit dataChanged(index(0, 0), index(same - 1, columns_ - 1));
}

void GridModel::RowChanged(std::size_t row) {
    pages_.remove_if([&](const Page& page) { return page.number == row / PageRows; });
    const int at = static_cast<int>(row);
    if (at < rows_ && columns_ > 0) emit dataChanged(index(at, 0), index(at, columns_ - 1));
}

int GridModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : rows_;
}

int GridModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : columns_;
}

QVariant GridModel::data(const QModelIndex& index, int role) const {
    if (role == Qt::DecorationRole) {
        const GridColumn* column = Column(index.column());
        const auto row = static_cast<std::size_t>(index.row());
        if (!column || column->position != 0 || row >= GridRowCount()) return {};
        const std::string icon = grid_->Rows()->IconOf(row);
        return icon.empty() ? QVariant() : QVariant(ThemeIcon(icon));
    }
    const GridColumn* column = Column(index.column());
    const bool yesNo = column && column->kind == CellKind::YesNo;
    if (role == Qt::TextAlignmentRole && column && column->kind == CellKind::Number)
        return NumberPlace;
    const bool wanted =
        role == Qt::EditRole || role == Qt::DisplayRole || (yesNo && role == Qt::CheckStateRole);
    const std::string* cell = wanted ? Cell(index) : nullptr;
    if (!cell) return {};
    if (role == Qt::CheckStateRole)
        return static_cast<int>(*cell == TrueText ? Qt::Checked : Qt::Unchecked);
    if (yesNo && role == Qt::DisplayRole)
        return *cell == TrueText ? QStringLiteral("Yes") : QStringLiteral("No");
    const QString text = ToQt(*cell);
    return role == Qt::EditRole ? text : text.left(LongestCell).simplified();
}

QVariant GridModel::headerData(int section, Qt::Orientation orientation, int role) const {
    const GridColumn* column = orientation == Qt::Horizontal ? Column(section) : nullptr;
    if (!column) return {};
    if (role == Qt::DisplayRole) return ToQt(column->caption);
    if (role == Qt::ToolTipRole) return PlainToolTip(column->caption);
    if (role == Qt::TextAlignmentRole && column->kind == CellKind::Number) return NumberPlace;
    return {};
}

Qt::ItemFlags GridModel::flags(const QModelIndex& index) const {
    const Qt::ItemFlags flags = QAbstractTableModel::flags(index);
    const GridColumn* column = Column(index.column());
    if (!column || !grid_->onCellEdit || column->fixed) return flags;
    return flags | (column->kind == CellKind::YesNo ? Qt::ItemIsUserCheckable : Qt::ItemIsEditable);
}

bool GridModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    const std::string* cell = Cell(index);
    if ((role != Qt::EditRole && role != Qt::CheckStateRole) || !cell || !grid_->onCellEdit)
        return false;
    const std::string text = role == Qt::EditRole           ? FromQt(value.toString())
                             : value.toInt() == Qt::Checked ? TrueText
                                                            : FalseText;
    if (*cell == text) return false;
    const auto row = static_cast<std::size_t>(index.row());
    const auto edit = grid_->onCellEdit;
    return edit(row, static_cast<std::size_t>(index.column()), text);
}

/// Null where the rows have become fewer than the view knows.
const std::string* GridModel::Cell(const QModelIndex& index) const {
    const auto row = static_cast<std::size_t>(index.row());
    const auto column = static_cast<std::size_t>(index.column());
    if (!index.isValid() || row >= GridRowCount()) return nullptr;
    const auto& rows = PageOf(row).rows;
    const std::size_t place = row % PageRows;
    return place < rows.size() && column < rows[place].size() ? &rows[place][column] : nullptr;
}

const GridModel::Page& GridModel::PageOf(std::size_t row) const {
    const std::size_t number = row / PageRows;
    const auto found = std::find_if(pages_.begin(), pages_.end(),
                                    [&](const Page& page) { return page.number == number; });
    if (found != pages_.end()) {
        pages_.splice(pages_.begin(), pages_, found);
    } else {
        pages_.push_front({number, grid_->Rows()->Read(number * PageRows, PageRows)});
        if (pages_.size() > KeptPages) pages_.pop_back();
    }
    return pages_.front();
}

}  // namespace mailvane
