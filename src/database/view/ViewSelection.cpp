#include <algorithm>

#include "core/MessageBoxes.h"
#include "core/Waiting.h"
#include "database/view/ViewRowLoop.h"
#include "database/view/frmMSGDeleteDatabase.h"
#include "database/view/frmViewDatabase.h"

namespace mailvane {

namespace {

/// Deletes rows from `done` on until the program is to yield. A row that has gone already is
/// passed over; any other refusal ends the run.
DaoError DeleteGroup(Workbench& wb, Recordset& recordset, const std::vector<Bookmark>& bookmarks,
                     std::size_t& done) {
    while (done < bookmarks.size()) {
        DaoError outcome = recordset.SetBookmark(bookmarks[done]);
        if (outcome.Ok()) outcome = recordset.Delete();
        const bool gone = outcome.number == dao_error::NoCurrentRecord ||
                          outcome.number == dao_error::RecordDeleted;
        if (outcome.Failed() && !gone) return outcome;
        ++done;
        if (wb.platform.windows.YieldIsDue()) break;
    }
    return {};
}

}  // namespace

void frmViewDatabase::SelectAllRows() {
    const std::size_t rows = Grid1.RowCount();
    if (rows == 0 || Held()) return;
    const auto shown = Grid1.Rows();
    std::vector<Bookmark> bookmarks;
    bookmarks.reserve(rows);
    {
        RowLoop loop(wb_, *this, rows, "Selecting records", "selected");
        while (bookmarks.size() < rows && loop.GoesOn(bookmarks.size()))
            bookmarks.push_back(shown->BookmarkAt(bookmarks.size()));
        Grid1.SetSelected(std::move(bookmarks));
    }
    ShowRecordCount();
}

void frmViewDatabase::DeleteSelectedRows(bool silent) {
    const std::size_t count = Grid1.SelBookmarks().Count();
    if (count == 0 || Held() || !Data1.Recordset()) return;
    if (!silent && !AskToDelete(wb_, count)) return;
    const std::string table = Data1.CurrentTable();
    const std::int64_t before = Data1.Recordset()->RecordCount();
    const DaoError outcome =
        count == Grid1.RowCount() ? DeleteAllRows() : DeleteRows(Grid1.SelBookmarks().All());
    SetPanel("");
    ShowRecordCount();
    if (outcome.Failed()) Tell(wb_, outcome.description, BoxIcon::Exclamation);
    if (silent || !Data1.Recordset()) return;
    const std::int64_t deleted = before - Data1.Recordset()->RecordCount();
    if (deleted > 0) TellDeleted(deleted, table);
}

/// By one statement, whatever the number of rows.
DaoError frmViewDatabase::DeleteAllRows() {
    const BusyPointer busy(wb_);
    const auto deleted = Data1.Database()->Execute("DELETE * FROM [" + Data1.CurrentTable() + "]");
    if (deleted.Failed()) return deleted.Error();
    Refresh();
    return {};
}

/// One by one, in the order of their keys, which is their order in the file. The rows from one
/// yield to the next share a transaction.
DaoError frmViewDatabase::DeleteRows(std::vector<Bookmark> bookmarks) {
    std::sort(bookmarks.begin(), bookmarks.end());
    const auto recordset = Data1.Recordset();
    const auto database = Data1.Database();
    const std::size_t row = Grid1.CurrentRow().value_or(0);
    RowLoop loop(wb_, *this, bookmarks.size(), "Deleting records", "deleted");
    SetPanel("Deleting records...");
    std::size_t done = 0;
    DaoError refused;
    DaoError lost;
    while (done < bookmarks.size() && refused.Ok() && lost.Ok() && loop.GoesOn(done)) {
        lost = database->Transaction([&]() -> DaoError {
            refused = DeleteGroup(wb_, *recordset, bookmarks, done);
            return {};
        });
    }
    if (!recordset->IsOpen()) return {};  // another table has come into the view
    if (lost.Failed()) {
        // A group that is not in the file has not gone: the rows are read again.
        ShowTable(Data1.RecordSource).Ignore();
        return lost;
    }
    bookmarks.erase(bookmarks.begin(), bookmarks.begin() + static_cast<std::ptrdiff_t>(done));
    Grid1.RowsChanged();
    Grid1.SetSelected(std::move(bookmarks));
    StandOnRow(row);
    return refused;
}

/// The row, or the last one when it is behind that, becomes current in the grid and the recordset.
void frmViewDatabase::StandOnRow(std::size_t row) {
    if (Grid1.RowCount() == 0) return;
    const std::size_t place = std::min(row, Grid1.RowCount() - 1);
    Data1.Recordset()->SetBookmark(Grid1.Rows()->BookmarkAt(place)).Ignore();
    Grid1.SetCurrentRow(place);
}

void frmViewDatabase::TellDeleted(std::int64_t count, const std::string& table) {
    const char* text = count == 1 ? " record is successfully deleted from the '"
                                  : " records are successfully deleted from the '";
    Tell(wb_, std::to_string(count) + text + table + "' table.", BoxIcon::Information);
}

}  // namespace mailvane
