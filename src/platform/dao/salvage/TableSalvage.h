#pragma once

#include <map>
#include <optional>
#include <vector>

#include "platform/dao/salvage/FileMap.h"
#include "platform/dao/salvage/LostAndFound.h"
#include "platform/dao/salvage/RepairReport.h"
#include "platform/dao/salvage/RowWriter.h"

namespace mailvane {

/// Saves the rows of one table into the fresh one of its name, source after source; a row that an
/// earlier one gave is not taken twice.
class TableSalvage {
public:
    TableSalvage(const PageFile& file, Connection& fresh, LostAndFound& lost, TableShape shape,
                 const Tree& tree);
    TableSalvage(const TableSalvage&) = delete;
    TableSalvage& operator=(const TableSalvage&) = delete;

    const TableShape& Shape() const { return shape_; }
    bool MissesPages() const { return tree_.damaged; }
    /// Whether rows of it may be lost.
    bool IsDamaged() const { return damaged_; }
    const SavedTable& Saved() const { return saved_; }

    DaoError SaveTree();
    /// Rows of a page that belongs to this table, though no way leads to it.
    DaoError SaveLoosePage(const TreePage& page);
    /// Notes what an index of the table says of rows that are not saved yet.
    DaoError NoteIndex(const IndexShape& index, const Tree& tree);
    /// Rows whose keys were damaged get the ones that indexes know, or new ones behind all others.
    DaoError SaveDoubtful();
    /// Saves what the indexes together know whole, and sets aside what they know in part.
    DaoError SaveNoted();

private:
    struct Doubtful {
        PageNumber page;
        std::size_t cell;
    };
    /// What indexes know of a row, by the places of its columns.
    struct NotedRow {
        std::vector<StoredValue> values;
        std::vector<bool> known;

        bool IsOf(const Record& record) const;
    };

    DaoError SavePage(const PlacedPage& placed);
    DaoError Save(std::optional<std::int64_t> key, const Record& record, std::int64_t& count,
                  bool mayChangeKey);
    DaoError SetAside(std::int64_t key, const Record& record);
    DaoError NoteEntry(const IndexShape& index, const Record& entry);
    std::optional<std::int64_t> TakeNotedKey(const Record& record);
    std::optional<std::int64_t> KeyOfEntry(const IndexShape& index, const Record& entry) const;

    const PageFile& file_;
    LostAndFound& lost_;
    TableShape shape_;
    const Tree& tree_;
    RowWriter writer_;
    SavedTable saved_;
    bool damaged_;
    std::vector<Doubtful> doubtful_;
    std::map<std::int64_t, NotedRow> noted_;
};

}  // namespace mailvane
