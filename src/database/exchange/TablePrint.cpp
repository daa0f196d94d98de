#include "database/exchange/TablePrint.h"

#include <algorithm>
#include <numeric>

#include "core/MessageBoxes.h"
#include "core/run/LongRun.h"
#include "database/exchange/frmDatabasePrint.h"
#include "database/view/frmViewDatabase.h"

namespace mailvane {

namespace {

using Texts = std::vector<std::vector<std::string>>;

/// The visible columns in their order on the screen, by index.
std::vector<std::size_t> ShownColumns(const Grid& grid) {
    const auto& columns = grid.Columns();
    std::vector<std::size_t> shown;
    for (std::size_t i = 0; i < columns.size(); ++i)
        if (columns[i].visible) shown.push_back(i);
    std::stable_sort(shown.begin(), shown.end(), [&](std::size_t a, std::size_t b) {
        return columns[a].position < columns[b].position;
    });
    return shown;
}

std::vector<std::size_t> SelectedPlaces(const Grid& grid) {
    std::vector<std::size_t> places;
    for (const std::int64_t bookmark : grid.SelBookmarks().All())
        if (const auto place = grid.Rows()->RowOf(bookmark)) places.push_back(*place);
    std::sort(places.begin(), places.end());
    return places;
}

std::vector<std::size_t> OtherPlaces(std::size_t count, const std::vector<std::size_t>& without) {
    std::vector<std::size_t> all(count);
    std::iota(all.begin(), all.end(), std::size_t{0});
    std::vector<std::size_t> others;
    std::set_difference(all.begin(), all.end(), without.begin(), without.end(),
                        std::back_inserter(others));
    return others;
}

/// The rows at these places; those that stand side by side are read at once.
Texts ReadPlaces(const GridRows& rows, const std::vector<std::size_t>& places, std::size_t first,
                 std::size_t count) {
    Texts texts;
    const std::size_t end = std::min(places.size(), first + count);
    while (first < end) {
        std::size_t run = 1;
        while (first + run < end && places[first + run] == places[first] + run)
            ++run;
        Texts some = rows.Read(places[first], run);
        some.resize(run);  // a row that has gone meanwhile is empty
        std::move(some.begin(), some.end(), std::back_inserter(texts));
        first += run;
    }
    return texts;
}

Texts InColumns(Texts rows, const std::vector<std::size_t>& columns) {
    for (std::vector<std::string>& row : rows) {
        std::vector<std::string> shown;
        for (const std::size_t column : columns)
            shown.push_back(column < row.size() ? std::move(row[column]) : std::string());
        row = std::move(shown);
    }
    return rows;
}

}  // namespace

PrintJob PrintJobOf(const Grid& grid, PrintKind kind) {
    PrintJob job;
    const std::vector<std::size_t> columns = ShownColumns(grid);
    for (const std::size_t column : columns)
        job.columns.push_back({grid.Columns()[column].caption, grid.Columns()[column].width});
    const std::shared_ptr<GridRows> rows = grid.Rows();
    if (!rows || kind == PrintKind::AllRows) {
        job.rowCount = grid.RowCount();
        job.readRows = [rows, columns](std::size_t first, std::size_t count) {
            return rows ? InColumns(rows->Read(first, count), columns) : Texts();
        };
        return job;
    }
    std::vector<std::size_t> places;
    if (kind == PrintKind::CurrentRow && grid.CurrentRow()) places = {*grid.CurrentRow()};
    if (kind == PrintKind::SelectedRows) places = SelectedPlaces(grid);
    if (kind == PrintKind::NonSelectedRows)
        places = OtherPlaces(grid.RowCount(), SelectedPlaces(grid));
    job.rowCount = places.size();
    job.readRows = [rows, columns, places = std::move(places)](std::size_t first,
                                                               std::size_t count) {
        return InColumns(ReadPlaces(*rows, places, first, count), columns);
    };
    return job;
}

bool RunPrint(Workbench& wb, PrintJob& job) {
    LongRun run(wb, {"Printing", Holds::Recipients});
    if (!run.Began()) return false;
    std::size_t printed = 0;
    std::size_t all = 0;
    run.howFar = [&] {
        return std::to_string(printed) + " of " + std::to_string(all) + " pages are printed";
    };
    job.progress = [&](std::size_t page, std::size_t pages) {
        if (all == 0) run.ShowProgress(static_cast<long>(pages), "Printing...");
        all = pages;
        printed = page;
        return run.GoesOn(static_cast<long>(page));
    };
    const PrintOutcome outcome = wb.platform.windows.PrintTable(job);
    run.HideProgress();
    if (outcome.result == PrintOutcome::Result::Failed)
        Tell(wb, outcome.reason, BoxIcon::Exclamation);
    return outcome.result == PrintOutcome::Result::Printed;
}

void PrintTable(Workbench& wb, frmViewDatabase& view) {
    if (!view.Data1.Recordset()) return;
    ShowModalDialog(wb, wb.forms.Get<frmDatabasePrint>());
}

}  // namespace mailvane
