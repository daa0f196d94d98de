#include "core/DataControl.h"

#include <algorithm>

#include "core/Paths.h"
#include "core/RecordsetRows.h"

namespace mailvane {

namespace {

constexpr std::size_t SampleRows = 30;
constexpr double TwipsALetter = 105;
constexpr double NarrowestColumn = 900;
constexpr double WidestColumn = 4500;

std::size_t LetterCount(const std::string& text) {
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) {
        return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
    }));
}

/// Wide enough for the heads and the first rows; a layout that the user has made comes over it.
void FitWidths(std::vector<GridColumn>& columns,
               const std::vector<std::vector<std::string>>& sample) {
    for (std::size_t i = 0; i < columns.size(); ++i) {
        std::size_t letters = LetterCount(columns[i].caption) + 2;
        for (const auto& row : sample)
            letters = std::max(letters, LetterCount(row[i]) + 2);
        columns[i].width =
            std::clamp(static_cast<double>(letters) * TwipsALetter, NarrowestColumn, WidestColumn);
    }
}

}  // namespace

DaoError DataControl::Refresh() {
    if (database_ && (!database_->IsOpen() || database_->Path() != DatabaseName)) Close();
    if (!database_) {
        if (!wb_.state.MainWorkspace) wb_.state.MainWorkspace = Workspace::Create();
        auto opened = wb_.state.MainWorkspace->OpenDatabase(DatabaseName);
        if (opened.Failed()) return opened.Error();
        database_ = *opened;
    }
    auto recordset = database_->OpenRecordset(RecordSource);
    recordset_ = recordset.Ok() ? *recordset : nullptr;
    ShowInGrid();
    refreshed.Tell();
    return recordset.Ok() ? DaoError{} : recordset.Error();
}

void DataControl::Close() {
    aboutToClose.Tell();
    if (recordset_) recordset_->Close();
    if (database_) database_->Close();
    recordset_ = nullptr;
    database_ = nullptr;
    ShowInGrid();
}

std::string DataControl::CurrentTable() const {
    return TableOfRecordSource(RecordSource);
}

void DataControl::Bind(Grid& grid) {
    grid_ = &grid;
    gridChanges_ = grid.changed.Observe([this](Property property) {
        if (property != Property::CurrentCell || !recordset_ || !grid_->CurrentRow()) return;
        const auto bookmark = recordset_->BookmarkAt(*grid_->CurrentRow());
        // A row that went meanwhile leaves the recordset where it is.
        if (bookmark.Ok()) recordset_->SetBookmark(*bookmark).Ignore();
    });
    ShowInGrid();
}

void DataControl::ShowInGrid() {
    if (!grid_) return;
    std::vector<GridColumn> columns;
    if (recordset_)
        for (const Field& field : recordset_->Fields()) {
            auto& column = columns.emplace_back();
            column.name = column.caption = field.name;
            column.position = static_cast<int>(columns.size()) - 1;
        }
    grid_->SetRows(nullptr);
    if (!recordset_) return grid_->SetColumns({});
    auto rows = std::make_shared<RecordsetRows>(recordset_);
    FitWidths(columns, rows->Read(0, SampleRows));
    grid_->SetColumns(std::move(columns));
    grid_->SetRows(std::move(rows));
    if (recordset_->RecordCount() > 0) grid_->SetCurrentRow(0);
}

void FillWithUserTables(const Database& database, ItemsControl& list) {
    list.SetItems(database.UserTableNames().ValueOr({}));
}

}  // namespace mailvane
