#include <algorithm>
#include <cstring>

#include "core/Paths.h"
#include "core/settings/Settings.h"
#include "core/text/Text.h"
#include "database/view/frmViewDatabase.h"
#include "platform/os/Files.h"

namespace mailvane {

namespace {

constexpr const char* LayoutFile = "dbgd.lyt";
constexpr const char* PlaceFile = "project.ini";
constexpr const char* PlaceSection = "Database";

bool SameLayout(const std::vector<GridColumn>& a, const std::vector<GridColumn>& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](const GridColumn& x, const GridColumn& y) {
                          return x.name == y.name && x.width == y.width && x.position == y.position;
                      });
}

}  // namespace

/// Writes the widths and places of the columns when the user has changed them.
void frmViewDatabase::SaveLayout() {
    const std::string table = Data1.CurrentTable();
    if (table.empty() || !Data1.Recordset() || SameLayout(Grid1.Columns(), storedLayout_)) return;
    SaveGridLayoutIn(Grid1, InProjectFolder(LayoutFile), table);
    storedLayout_ = Grid1.Columns();
}

void frmViewDatabase::LoadLayout() {
    const std::string file = InProjectFolder(LayoutFile);
    const std::string table = Data1.CurrentTable();
    LoadGridLayoutIn(Grid1, file, table);
    const bool stored =
        !Grid1.Columns().empty() && !IniRead(table, Grid1.Columns().back().name, file).empty();
    storedLayout_ = stored ? Grid1.Columns() : std::vector<GridColumn>();
}

void frmViewDatabase::StorePlace() {
    const std::string file = InProjectFolder(PlaceFile);
    IniWrite(PlaceSection, "LastTable", Data1.CurrentTable(), file);
    IniWrite(PlaceSection, "LastCell", std::to_string(Grid1.CurrentColumn()), file);
    if (forgetPlace_)
        DeleteFile(InProjectFolder(BookmarkFile));
    else
        SaveBookmark();
}

void frmViewDatabase::SaveBookmark() {
    const std::string file = InProjectFolder(BookmarkFile);
    DeleteFile(file);
    if (!Data1.Recordset() || !Grid1.CurrentRow()) return;
    const auto bookmark = Data1.Recordset()->BookmarkAt(*Grid1.CurrentRow());
    if (bookmark.Failed()) return;
    char bytes[sizeof(Bookmark)];
    std::memcpy(bytes, &*bookmark, sizeof bytes);
    WriteFileText(file, {bytes, sizeof bytes});
}

/// Goes to the row and column that were current when the view was last closed on `table`. A row
/// that has gone is ignored.
void frmViewDatabase::LoadBookmark(const std::string& table) {
    if (!Data1.Recordset() || !EqualText(table, Data1.CurrentTable())) return;
    const std::string cell = IniRead(PlaceSection, "LastCell", InProjectFolder(PlaceFile));
    if (IsNumeric(cell) && NumberOf(cell) >= 0 && NumberOf(cell) < Grid1.Columns().size())
        Grid1.SetCurrentColumn(static_cast<std::size_t>(NumberOf(cell)));
    const std::string bytes = ReadFileText(InProjectFolder(BookmarkFile));
    if (Grid1.RowCount() == 0 || bytes.size() != sizeof(Bookmark)) return;
    Bookmark bookmark = 0;
    std::memcpy(&bookmark, bytes.data(), sizeof bookmark);
    if (const auto row = Grid1.Rows()->RowOf(bookmark)) Grid1.SetCurrentRow(*row);
}

}  // namespace mailvane
