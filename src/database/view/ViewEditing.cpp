#include <algorithm>
#include <numeric>

#include "core/MessageBoxes.h"
#include "database/view/ViewCells.h"
#include "database/view/ViewRowLoop.h"
#include "database/view/frmViewDatabase.h"

namespace mailvane {

namespace {

constexpr std::size_t ReadAtOnce = 256;

/// Columns from the left of the screen to the right.
std::vector<std::size_t> ColumnsOnScreen(const Grid& grid) {
    const auto& columns = grid.Columns();
    std::vector<std::size_t> order(columns.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        return columns[a].position < columns[b].position;
    });
    std::erase_if(order, [&](std::size_t column) { return !columns[column].visible; });
    return order;
}

/// The selected rows, or the current one where none is selected, as they stand on the screen.
std::vector<std::size_t> RowsToCopy(const Grid& grid) {
    std::vector<std::size_t> rows;
    for (const std::int64_t bookmark : grid.SelBookmarks().All())
        if (const auto row = grid.Rows()->RowOf(bookmark)) rows.push_back(*row);
    if (rows.empty() && grid.CurrentRow()) rows.push_back(*grid.CurrentRow());
    std::sort(rows.begin(), rows.end());
    return rows;
}

/// How many of the rows from `first` on follow one another, up to a screenful.
std::size_t RunLength(const std::vector<std::size_t>& rows, std::size_t first) {
    std::size_t length = 1;
    while (length < ReadAtOnce && first + length < rows.size() &&
           rows[first + length] == rows[first] + length)
        ++length;
    return length;
}

/// Puts the texts into the columns of the row that the recordset is changing. `refusal` says why
/// one did not go in.
DaoError SetCells(Recordset& recordset, const Grid& grid, const std::vector<std::string>& texts,
                  const std::vector<std::size_t>& columns, std::string& refusal) {
    for (std::size_t i = 0; i < texts.size(); ++i) {
        const std::size_t column = columns[i];
        if (grid.Columns()[column].fixed) continue;
        const Field& field = recordset.Fields()[column];
        DaoError outcome = recordset.Set(column, CellValue(field, texts[i]));
        if (outcome.Failed()) {
            refusal = RefusalText(field, texts[i], outcome);
            return outcome;
        }
    }
    DaoError outcome = recordset.Update();
    if (outcome.Failed()) refusal = outcome.description;
    return outcome;
}

}  // namespace

bool frmViewDatabase::EditCell(std::size_t row, std::size_t column, const std::string& text) {
    const auto recordset = Data1.Recordset();
    if (Held() || !recordset || row >= Grid1.RowCount()) return false;
    std::string refusal;
    DaoError outcome = recordset->SetBookmark(Grid1.Rows()->BookmarkAt(row));
    if (outcome.Ok()) outcome = recordset->Edit();
    if (outcome.Failed()) refusal = outcome.description;
    if (outcome.Ok()) outcome = SetCells(*recordset, Grid1, {text}, {column}, refusal);
    if (outcome.Failed()) {
        recordset->CancelUpdate();
        Tell(wb_, refusal, BoxIcon::Exclamation);
        return false;
    }
    Grid1.RowChanged(row);
    return true;
}

void frmViewDatabase::InsertRow() {
    const auto recordset = Data1.Recordset();
    DaoError outcome = recordset->AddNew();
    if (outcome.Ok()) outcome = recordset->Update();
    if (outcome.Failed()) {
        recordset->CancelUpdate();
        return Tell(wb_, outcome.description, BoxIcon::Exclamation);
    }
    Grid1.RowsChanged();
    StandOnRow(Grid1.RowCount() - 1);
    ShowRecordCount();
}

std::string frmViewDatabase::CopyRows() {
    std::string block;
    if (Held() || !Data1.Recordset()) return block;
    const std::vector<std::size_t> rows = RowsToCopy(Grid1);
    const std::vector<std::size_t> columns = ColumnsOnScreen(Grid1);
    const auto shown = Grid1.Rows();
    RowLoop loop(wb_, *this, rows.size(), "Copying records", "");
    loop.KeepNothing("nothing is copied");
    for (std::size_t i = 0; i < rows.size();) {
        if (!loop.GoesOn(i)) return {};
        const std::size_t length = RunLength(rows, i);
        for (const auto& texts : shown->Read(rows[i], length)) {
            std::vector<std::string> cells;
            for (const std::size_t column : columns)
                cells.push_back(texts[column]);
            AppendBlockLine(block, cells);
        }
        i += length;
    }
    return block;
}

/// From the current cell to the right and down; rows behind the last one are added. All of the
/// block goes in, or nothing.
void frmViewDatabase::PasteBlock(const std::string& text) {
    const TextBlock block = ParseBlock(text);
    if (Held() || !Data1.Recordset() || block.empty()) return;
    std::vector<std::size_t> columns = ColumnsOnScreen(Grid1);
    columns.erase(columns.begin(),
                  std::find(columns.begin(), columns.end(), Grid1.CurrentColumn()));
    for (const auto& line : block)
        if (line.size() > columns.size())
            return Tell(wb_,
                        "The text has " + std::to_string(line.size()) + " columns, and there " +
                            (columns.size() == 1 ? "is only 1"
                                                 : "are only " + std::to_string(columns.size())) +
                            " from the current one on.",
                        BoxIcon::Exclamation);
    if (block.size() > 1 &&
        !AskYesNo(wb_, "You are about to paste " + std::to_string(block.size()) +
                           " records. \r\nAre you sure you want to do this?"))
        return;
    const std::size_t first = Grid1.CurrentRow().value_or(0);
    std::string refusal;
    const DaoError outcome =
        Data1.Database()->Transaction([&] { return PasteRows(block, columns, first, refusal); });
    if (outcome.Failed()) {
        // Rows that were added are in the recordset, and not in the table.
        ShowTable(Data1.RecordSource).Ignore();
        if (!refusal.empty()) Tell(wb_, refusal, BoxIcon::Exclamation);
    }
    Grid1.RowsChanged();
    StandOnRow(first);
    ShowRecordCount();
}

DaoError frmViewDatabase::PasteRows(const TextBlock& block, const std::vector<std::size_t>& columns,
                                    std::size_t first, std::string& refusal) {
    const auto recordset = Data1.Recordset();
    const std::size_t before = Grid1.RowCount();
    RowLoop loop(wb_, *this, block.size(), "Pasting records", "");
    loop.KeepNothing("nothing is pasted");
    for (std::size_t i = 0; i < block.size(); ++i) {
        if (!loop.GoesOn(i)) return {dao_error::EngineFailure, "Cancelled"};
        DaoError outcome;
        if (first + i < before) {
            outcome = recordset->SetBookmark(Grid1.Rows()->BookmarkAt(first + i));
            if (outcome.Ok()) outcome = recordset->Edit();
        } else {
            outcome = recordset->AddNew();
        }
        if (outcome.Failed()) refusal = outcome.description;
        if (outcome.Ok()) outcome = SetCells(*recordset, Grid1, block[i], columns, refusal);
        if (outcome.Ok()) continue;
        recordset->CancelUpdate();
        refusal = "Line " + std::to_string(i + 1) + ": " + refusal;
        return outcome;
    }
    return {};
}

}  // namespace mailvane
