#include "core/MessageBoxes.h"
#include "core/Waiting.h"
#include "database/view/frmMSGMemo.h"
#include "database/view/frmViewDatabase.h"

namespace mailvane {

/// A click on the head asks for the other direction than the last one. The mark in the head names
/// the direction that the next click gives.
void frmViewDatabase::SortGridByColumn(std::size_t column) {
    if (Held() || !Data1.Recordset() || column >= Grid1.Columns().size()) return;
    const std::string name = Grid1.Columns()[column].name;
    if (Data1.Recordset()->Fields().at(column).type == FieldType::Memo) return TellMemoSort(wb_);
    const BusyPointer busy(wb_);
    const bool ascending = sortState_ != "ASC";
    const std::string before = Data1.RecordSource;
    const DaoError sorted = ShowTable("SELECT * FROM [" + Data1.CurrentTable() + "] ORDER BY [" +
                                      name + "] " + (ascending ? "ASC" : "DESC"));
    if (sorted.Failed()) {
        Tell(wb_, sorted.description, BoxIcon::Exclamation);
        ShowTable(before).Ignore();
        return;
    }
    ClearSortMarks(column);
    Grid1.SetHeadStyle(column, ascending ? "DESC" : "ASC");
    sortState_ = ascending ? "ASC" : "DESC";
    ShowRecordCount();
}

void frmViewDatabase::SortAs(const std::string& state) {
    sortState_ = state == "ASC" ? "DESC" : "ASC";
    SortGridByColumn(Grid1.CurrentColumn());
}

void frmViewDatabase::ClearSortMarks(std::size_t column) {
    for (std::size_t i = 0; i < Grid1.Columns().size(); ++i)
        if (i != column) Grid1.SetHeadStyle(i, "");
}

}  // namespace mailvane
