#include "platform/dao/salvage/TableSalvage.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "platform/dao/file/Connection.h"

namespace mailvane {

namespace {

constexpr std::int64_t NoKeyBefore = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t NoKeyBehind = std::numeric_limits<std::int64_t>::max();

std::uint64_t Gap(std::int64_t low, std::int64_t high) {
    return static_cast<std::uint64_t>(high) - static_cast<std::uint64_t>(low);
}

/// The page's place may be wrong itself; then most of its keys are outside, unless there is room
/// for just as many.
bool IsInPlace(const std::vector<Cell>& cells, const PlacedPage& page) {
    const auto inside = std::count_if(cells.begin(), cells.end(), [&](const Cell& cell) {
        return cell.key > page.low && cell.key <= page.high;
    });
    return 2 * static_cast<std::size_t>(inside) >= cells.size() ||
           Gap(page.low, page.high) == cells.size();
}

/// Keys ascend in a page, and stay inside what its place allows. One that does not was damaged: it
/// becomes the one that is missing between its neighbours, if that is only one; of the others it is
/// told that they are in doubt.
std::vector<bool> CheckKeys(std::vector<Cell>& cells, const PlacedPage& page) {
    const bool inPlace = IsInPlace(cells, page);
    const std::int64_t end = inPlace && page.high < NoKeyBehind ? page.high + 1 : NoKeyBehind;
    std::int64_t before = inPlace ? page.low : NoKeyBefore;
    std::vector<bool> doubtful(cells.size());
    for (std::size_t i = 0; i < cells.size(); ++i) {
        std::int64_t& key = cells[i].key;
        const std::int64_t next = i + 1 < cells.size() ? cells[i + 1].key : end;
        const std::int64_t afterNext = i + 2 < cells.size() ? cells[i + 2].key : end;
        const bool oneMissing =
            before != NoKeyBefore && next != NoKeyBehind && Gap(before, next) == 2;
        const bool nextIsWrong =
            i + 1 < cells.size() && (next <= before || Gap(before, key) == 1 ||
                                     (afterNext != NoKeyBehind && key < afterNext));
        const bool behind = key <= before && before != NoKeyBefore;
        const bool ahead = key >= next && next != NoKeyBehind && (oneMissing || !nextIsWrong);
        if (behind || ahead) {
            doubtful[i] = !oneMissing;
            if (oneMissing) key = before + 1;
        }
        if (!doubtful[i]) before = key;
    }
    return doubtful;
}

}  // namespace

TableSalvage::TableSalvage(const PageFile& file, Connection& fresh, LostAndFound& lost,
                           TableShape shape, const Tree& tree)
    : file_(file),
      lost_(lost),
      shape_(std::move(shape)),
      tree_(tree),
      writer_(fresh, shape_),
      saved_{.name = shape_.name},
      damaged_(tree.damaged) {}

DaoError TableSalvage::SaveTree() {
    for (const PlacedPage& placed : tree_.pages)
        if (DaoError failed = SavePage(placed); failed.Failed()) return failed;
    return {};
}

DaoError TableSalvage::SavePage(const PlacedPage& placed) {
    TreePage page = ReadLinkedPage(file_, placed.number, shape_.keyed);
    std::vector<bool> doubtful(page.cells.size());
    if (shape_.keyed) doubtful = CheckKeys(page.cells, placed);
    for (std::size_t i = 0; i < page.cells.size(); ++i) {
        const std::optional<Record> record = ReadRecord(file_, page, page.cells[i]);
        if (!record) {
            damaged_ = true;
        } else if (doubtful[i]) {
            damaged_ = true;
            doubtful_.push_back({placed.number, i});
        } else if (DaoError failed = Save(page.cells[i].key, *record, saved_.fromTree, true);
                   failed.Failed()) {
            return failed;
        }
    }
    return {};
}

DaoError TableSalvage::SaveLoosePage(const TreePage& page) {
    for (const Cell& cell : page.cells) {
        const std::optional<Record> record = ReadRecord(file_, page, cell);
        if (!record) continue;
        if (DaoError failed = Save(cell.key, *record, saved_.fromLoosePages, false);
            failed.Failed())
            return failed;
    }
    return {};
}

DaoError TableSalvage::SaveDoubtful() {
    for (const Doubtful& one : doubtful_) {
        const TreePage page = ReadLinkedPage(file_, one.page, true);
        const std::optional<Record> record = ReadRecord(file_, page, page.cells[one.cell]);
        if (!record) continue;
        if (DaoError failed = Save(TakeNotedKey(*record), *record, saved_.fromTree, true);
            failed.Failed())
            return failed;
    }
    return {};
}

/// Whether all that indexes know of the row stands in the record too.
bool TableSalvage::NotedRow::IsOf(const Record& record) const {
    bool same = false;
    for (std::size_t i = 0; i < known.size(); ++i) {
        if (!known[i]) continue;
        if (i >= record.values.size() || record.values[i] != values[i]) return false;
        same = true;
    }
    return same;
}

/// The key of the noted row that the record is, which is then no longer missing.
std::optional<std::int64_t> TableSalvage::TakeNotedKey(const Record& record) {
    const auto noted = std::find_if(noted_.begin(), noted_.end(),
                                    [&](const auto& one) { return one.second.IsOf(record); });
    if (noted == noted_.end()) return std::nullopt;
    const std::int64_t key = noted->first;
    noted_.erase(noted);
    return key;
}

DaoError TableSalvage::Save(std::optional<std::int64_t> key, const Record& record,
                            std::int64_t& count, bool mayChangeKey) {
    if (!record.whole) {
        damaged_ = true;
        return SetAside(key.value_or(0), record);
    }
    DaoResult<RowOutcome> outcome = writer_.Write(key, record.values);
    if (outcome.Ok() && *outcome == RowOutcome::KeyTaken && mayChangeKey)
        outcome = writer_.Write(std::nullopt, record.values);
    if (outcome.Failed()) return outcome.Error();
    if (*outcome == RowOutcome::Saved) ++count;
    if (*outcome == RowOutcome::Saved || *outcome == RowOutcome::Known) return {};
    return SetAside(key.value_or(0), record);
}

DaoError TableSalvage::SetAside(std::int64_t key, const Record& record) {
    if (record.values.size() > shape_.columns.size()) return lost_.PutRecord(0, key, record.values);
    return lost_.PutRow(shape_, "_" + shape_.name, key, record.values);
}

std::optional<std::int64_t> TableSalvage::KeyOfEntry(const IndexShape& index,
                                                     const Record& entry) const {
    if (!entry.whole || entry.values.size() != index.places.size()) return std::nullopt;
    return index.places.back() == IndexShape::Key ? WholeIn(entry.values.back()) : std::nullopt;
}

DaoError TableSalvage::NoteEntry(const IndexShape& index, const Record& entry) {
    const std::optional<std::int64_t> key = KeyOfEntry(index, entry);
    if (!key) return {};
    const DaoResult<bool> saved = writer_.HasKey(*key);
    if (saved.Failed()) return saved.Error();
    if (*saved) return {};
    NotedRow& row = noted_[*key];
    row.values.resize(shape_.columns.size());
    row.known.resize(shape_.columns.size());
    for (std::size_t i = 0; i < index.places.size(); ++i) {
        if (index.places[i] < 0 || index.places[i] == shape_.keyColumn) continue;
        const auto place = static_cast<std::size_t>(index.places[i]);
        row.values[place] = entry.values[i];
        row.known[place] = true;
    }
    return {};
}

DaoError TableSalvage::NoteIndex(const IndexShape& index, const Tree& tree) {
    if (shape_.keySql.empty()) return {};
    for (const PlacedPage& placed : tree.pages) {
        const TreePage page = ReadLinkedPage(file_, placed.number, false);
        for (const Cell& cell : page.cells) {
            const std::optional<Record> entry = ReadRecord(file_, page, cell);
            if (!entry) continue;
            if (DaoError failed = NoteEntry(index, *entry); failed.Failed()) return failed;
        }
    }
    return {};
}

DaoError TableSalvage::SaveNoted() {
    for (auto& [key, noted] : noted_) {
        const auto known = std::count(noted.known.begin(), noted.known.end(), true);
        // A key alone says nothing.
        if (known == 0) continue;
        const std::ptrdiff_t needed =
            static_cast<std::ptrdiff_t>(noted.known.size()) - (shape_.keyColumn >= 0 ? 1 : 0);
        const Record row{noted.values, known == needed};
        if (DaoError failed = Save(key, row, saved_.fromIndexes, false); failed.Failed())
            return failed;
    }
    return {};
}

}  // namespace mailvane
