#include "platform/dao/salvage/TableSalvage.h"

#include <algorithm>
#include <utility>

#include "platform/dao/file/Connection.h"

namespace mailvane {

namespace {

/// Keys ascend in a page. One that does not was damaged: it becomes the one that is missing between
/// its neighbours, if that is only one; of the others it is told that they are in doubt.
std::vector<bool> CheckKeys(std::vector<Cell>& cells) {
    std::vector<bool> doubtful(cells.size());
    std::optional<std::int64_t> before;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        std::int64_t& key = cells[i].key;
        const bool behind = before && key <= *before;
        bool ahead = false;
        if (i + 1 < cells.size() && key >= cells[i + 1].key) {
            const std::int64_t next = cells[i + 1].key;
            const bool nextIsWrong = (before && (next <= *before || key == *before + 1)) ||
                                     (i + 2 < cells.size() && cells[i + 2].key > key);
            ahead = !nextIsWrong;
        }
        if (behind || ahead) {
            const bool oneMissing =
                before && i + 1 < cells.size() && cells[i + 1].key - 1 == *before + 1;
            doubtful[i] = !oneMissing;
            if (oneMissing) key = *before + 1;
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
    for (const PageNumber number : tree_.pages) {
        TreePage page = ReadLinkedPage(file_, number, shape_.keyed);
        if (DaoError failed = SavePage(page, number); failed.Failed()) return failed;
    }
    return {};
}

DaoError TableSalvage::SavePage(TreePage& page, PageNumber number) {
    std::vector<bool> doubtful(page.cells.size());
    if (shape_.keyed) doubtful = CheckKeys(page.cells);
    for (std::size_t i = 0; i < page.cells.size(); ++i) {
        const std::optional<Record> record = ReadRecord(file_, page, page.cells[i]);
        if (!record) {
            damaged_ = true;
        } else if (doubtful[i]) {
            damaged_ = true;
            doubtful_.push_back({number, i});
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
        if (DaoError failed = Save(std::nullopt, *record, saved_.fromTree, true); failed.Failed())
            return failed;
    }
    return {};
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
    for (const PageNumber number : tree.pages) {
        const TreePage page = ReadLinkedPage(file_, number, false);
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
