#include <algorithm>

#include "core/MessageBoxes.h"
#include "database/view/ViewRowLoop.h"
#include "database/view/frmFind.h"
#include "database/view/frmViewDatabase.h"
#include "platform/os/TextCase.h"

namespace mailvane {

namespace {

constexpr std::size_t ReadAtOnce = 256;

CellMatch MatchFor(const std::string& text, bool matchCase) {
    if (matchCase)
        return [text](const std::string& cell) { return cell.find(text) != std::string::npos; };
    return [text = LowerCase(text)](const std::string& cell) {
        return LowerCase(cell).find(text) != std::string::npos;
    };
}

}  // namespace

void frmViewDatabase::ShowFind() {
    wb_.forms.Get<frmFind>().ShowFor(
        *this, [this](const std::string& text, bool matchCase) { FindNext(text, matchCase); });
}

/// The next row behind the current one that holds the text, or from the top of the table to it,
/// becomes the only one selected.
void frmViewDatabase::FindNext(const std::string& text, bool matchCase) {
    if (Held() || text.empty()) return;
    const CellMatch matches = MatchFor(text, matchCase);
    const std::size_t rows = Grid1.RowCount();
    const std::size_t behind = Grid1.CurrentRow() ? *Grid1.CurrentRow() + 1 : 0;
    const bool decided = FindInRows(behind, rows, matches) || FindInRows(0, behind, matches);
    if (!decided) Tell(wb_, "'" + text + "' Not Found.", BoxIcon::Information, "Find");
}

/// True when a row was found, or the user wants no more.
bool frmViewDatabase::FindInRows(std::size_t first, std::size_t end, const CellMatch& matches) {
    const auto shown = Grid1.Rows();
    std::optional<std::size_t> found;
    {
        RowLoop loop(wb_, *this, end - std::min(first, end), "Searching", "searched");
        for (std::size_t row = first; row < end && !found; row += ReadAtOnce) {
            if (!loop.GoesOn(row - first)) return true;
            const auto texts = shown->Read(row, std::min(ReadAtOnce, end - row));
            const auto hit = std::find_if(texts.begin(), texts.end(), [&](const auto& cells) {
                return std::any_of(cells.begin(), cells.end(), matches);
            });
            if (hit != texts.end()) found = row + static_cast<std::size_t>(hit - texts.begin());
        }
    }
    if (!found) return false;
    Grid1.SetSelected({shown->BookmarkAt(*found)});
    Grid1.SetCurrentRow(*found);
    return true;
}

}  // namespace mailvane
