#include "core/records/DataControl.h"

#include <algorithm>

#include "core/Paths.h"

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

CellKind KindOf(const Field& field) {
    switch (field.type) {
        case FieldType::Boolean:
            return CellKind::YesNo;
        case FieldType::Date:
            return CellKind::Date;
        case FieldType::Text:
        case FieldType::LongBinary:
            return CellKind::Text;
        case FieldType::Memo:
            return CellKind::Memo;
        default:
            return CellKind::Number;
    }
}

bool IsFixed(const Field& field) {
    return (field.attributes & UpdatableFieldAttribute) == 0 || field.IsAutoNumber() ||
           field.type == FieldType::LongBinary;
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
    const bool sameTable = recordset_ && TableShown() == shownTable_;
    const auto bookmark = sameTable ? recordset_->GetBookmark() : DaoResult<Bookmark>(Bookmark{-1});
    // The keys of a large table are not held twice.
    if (grid_) grid_->SetRows(nullptr);
    recordset_ = nullptr;
    auto recordset = database_->OpenRecordset(RecordSource);
    recordset_ = recordset.Ok() ? *recordset : nullptr;
    ShowInGrid();
    if (recordset_ && bookmark.Ok()) GoTo(*bookmark);
    refreshed.Tell();
    return recordset.Ok() ? DaoError{} : recordset.Error();
}

/// A row that has gone leaves the first one current.
void DataControl::GoTo(Bookmark bookmark) {
    if (recordset_->SetBookmark(bookmark).Failed() || !grid_) return;
    if (const auto row = grid_->Rows()->RowOf(bookmark)) grid_->SetCurrentRow(*row);
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

std::string DataControl::TableShown() const {
    return DatabaseName + PathSeparator + CurrentTable();
}

void DataControl::ShowInGrid() {
    if (!grid_) return;
    grid_->SetRows(nullptr);
    if (!recordset_) {
        shownTable_.clear();
        return grid_->SetColumns({});
    }
    auto rows = std::make_shared<RecordsetRows>(recordset_);
    ShowColumns(*rows);
    grid_->SetRows(std::move(rows));
    if (recordset_->RecordCount() > 0) grid_->SetCurrentRow(0);
}

void DataControl::ShowColumns(const RecordsetRows& rows) {
    std::vector<GridColumn> columns;
    for (const Field& field : recordset_->Fields()) {
        auto& column = columns.emplace_back();
        column.name = column.caption = field.name;
        column.position = static_cast<int>(columns.size()) - 1;
        column.kind = KindOf(field);
        column.fixed = IsFixed(field);
    }
    const auto& shown = grid_->Columns();
    const bool same = std::equal(columns.begin(), columns.end(), shown.begin(), shown.end(),
                                 [](const GridColumn& a, const GridColumn& b) {
                                     return a.name == b.name && a.kind == b.kind;
                                 });
    if (same && shownTable_ == TableShown()) return;
    shownTable_ = TableShown();
    FitWidths(columns, rows.Read(0, SampleRows));
    grid_->SetColumns(std::move(columns));
}

void FillWithUserTables(const Database& database, ItemsControl& list) {
    list.SetItems(database.UserTableNames().ValueOr({}));
}

}  // namespace mailvane
