#include "platform/forms/Grid.h"

#include <algorithm>

namespace mailvane {

std::vector<std::vector<std::string>> GridTable::Read(std::size_t first, std::size_t count) const {
    const std::size_t begin = std::min(first, rows.size());
    const std::size_t end = begin + std::min(count, rows.size() - begin);
    return {rows.begin() + static_cast<std::ptrdiff_t>(begin),
            rows.begin() + static_cast<std::ptrdiff_t>(end)};
}

std::optional<std::size_t> GridTable::RowOf(std::int64_t bookmark) const {
    if (bookmark < 0 || static_cast<std::uint64_t>(bookmark) >= rows.size()) return std::nullopt;
    return static_cast<std::size_t>(bookmark);
}

std::string GridTable::IconOf(std::size_t row) const {
    return row < icons.size() ? icons[row] : std::string();
}

namespace {

constexpr int BlockBits = 6;

std::int64_t BlockOf(std::int64_t bookmark) {
    return bookmark >> BlockBits;
}

std::uint64_t BitOf(std::int64_t bookmark) {
    constexpr std::int64_t Mask = (1 << BlockBits) - 1;
    return std::uint64_t{1} << (bookmark & Mask);
}

}  // namespace

bool SelectedBookmarks::Contains(std::int64_t bookmark) const {
    const auto block = members_.find(BlockOf(bookmark));
    return block != members_.end() && (block->second & BitOf(bookmark)) != 0;
}

bool SelectedBookmarks::Mark(std::int64_t bookmark) {
    std::uint64_t& block = members_[BlockOf(bookmark)];
    const bool isNew = (block & BitOf(bookmark)) == 0;
    block |= BitOf(bookmark);
    return isNew;
}

bool SelectedBookmarks::Add(std::int64_t bookmark) {
    const bool isNew = Mark(bookmark);
    if (isNew) order_.push_back(bookmark);
    return isNew;
}

void SelectedBookmarks::Set(std::vector<std::int64_t> bookmarks) {
    members_.clear();
    order_ = std::move(bookmarks);
    std::erase_if(order_, [this](std::int64_t bookmark) { return !Mark(bookmark); });
}

void SelectedBookmarks::Remove(const std::vector<std::int64_t>& bookmarks) {
    for (const std::int64_t bookmark : bookmarks)
        if (Contains(bookmark)) members_[BlockOf(bookmark)] &= ~BitOf(bookmark);
    std::erase_if(order_, [this](std::int64_t bookmark) { return !Contains(bookmark); });
}

Grid::Grid(Form& form, std::string name) : Control(form, std::move(name), ControlKind::Grid) {}

void Grid::SetRows(std::shared_ptr<GridRows> rows) {
    if (rows == rows_) return;
    const bool hadCurrent = currentRow_.has_value();
    const bool hadSelection = selection_.Count() != 0;
    rows_ = std::move(rows);
    currentRow_.reset();
    selection_ = {};
    Changed(Property::Rows);
    if (hadCurrent) Changed(Property::CurrentCell);
    if (hadSelection) Changed(Property::RowSelection);
}

void Grid::RowsChanged() {
    const bool currentGoes = currentRow_ && *currentRow_ >= RowCount();
    if (currentGoes) currentRow_.reset();
    Changed(Property::Rows);
    if (currentGoes) Changed(Property::CurrentCell);
}

void Grid::RowChanged(std::size_t row) {
    rowChanged.Tell(row);
}

void Grid::SetColumns(std::vector<GridColumn> columns) {
    if (columns == columns_) return;
    columns_ = std::move(columns);
    Changed(Property::Columns);
}

void Grid::ChangeColumn(std::size_t column, const std::function<void(GridColumn&)>& change) {
    if (column >= columns_.size()) return;
    const GridColumn before = columns_[column];
    change(columns_[column]);
    if (columns_[column] != before) Changed(Property::Columns);
}

void Grid::SetColumnWidth(std::size_t column, double twips) {
    ChangeColumn(column, [&](GridColumn& c) { c.width = twips; });
}

void Grid::SetColumnPosition(std::size_t column, int position) {
    ChangeColumn(column, [&](GridColumn& c) { c.position = position; });
}

void Grid::SetHeadStyle(std::size_t column, std::string style) {
    ChangeColumn(column, [&](GridColumn& c) { c.headStyle = std::move(style); });
}

void Grid::SetCurrentRow(std::optional<std::size_t> row) {
    if (row && *row >= RowCount()) row.reset();
    if (row == currentRow_) return;
    currentRow_ = row;
    Changed(Property::CurrentCell);
    RunHandler(onRowChange);
}

void Grid::SetCurrentColumn(std::size_t column) {
    if (column == currentColumn_) return;
    currentColumn_ = column;
    Changed(Property::CurrentCell);
}

std::string Grid::ShownText() const {
    if (!currentRow_) return {};
    std::string line;
    for (const auto& row : rows_->Read(*currentRow_, 1)) {
        for (std::size_t i = 0; i < row.size(); ++i)
            line += (i == 0 ? "" : "\t") + row[i];
    }
    return line;
}

void Grid::AddSelected(std::int64_t bookmark) {
    if (selection_.Add(bookmark)) SelectionChanged();
}

void Grid::RemoveSelected(const std::vector<std::int64_t>& bookmarks) {
    const std::size_t before = selection_.Count();
    selection_.Remove(bookmarks);
    if (selection_.Count() != before) SelectionChanged();
}

void Grid::RemoveAllSelected() {
    SetSelected({});
}

void Grid::SetSelected(std::vector<std::int64_t> bookmarks) {
    if (bookmarks == selection_.order_) return;
    selection_.Set(std::move(bookmarks));
    SelectionChanged();
}

void Grid::SelectionChanged() {
    Changed(Property::RowSelection);
    RunHandler(onSelectionChange);
}

void Grid::SetRedraw(bool redraw) {
    if (redraw == redraw_) return;
    redraw_ = redraw;
    Changed(Property::Redraw);
}

}  // namespace mailvane
