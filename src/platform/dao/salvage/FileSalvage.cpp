#include "platform/dao/salvage/FileSalvage.h"

#include <algorithm>

#include "platform/dao/file/Connection.h"

namespace mailvane {

namespace {

constexpr std::size_t UserVersionPlace = 60;  // in the file's head
constexpr std::size_t ApplicationIdPlace = 68;

std::vector<Record> RecordsOf(const PageFile& file, const TreePage& page) {
    std::vector<Record> records;
    for (const Cell& cell : page.cells)
        if (std::optional<Record> record = ReadRecord(file, page, cell))
            records.push_back(std::move(*record));
    return records;
}

}  // namespace

FileSalvage::FileSalvage(const PageFile& file, Connection& fresh)
    : file_(file), fresh_(fresh), definitions_(ReadDefinitions(file)), lost_(fresh) {}

DaoError FileSalvage::Run() {
    // Indexes are there before the rows, so that no damaged row can break a unique one; triggers
    // come last, so that they do not run again for rows that are there already.
    if (DaoError failed = MakeTablesAndIndexes(); failed.Failed()) return failed;
    if (DaoError failed = ReadShapes(); failed.Failed()) return failed;
    MapPages();
    if (DaoError failed = SaveRows(); failed.Failed()) return failed;
    if (DaoError failed = MakeTheRest(); failed.Failed()) return failed;
    return file_.HeadIsSound() ? CopyVersions() : DaoError();
}

bool FileSalvage::FoundAnything() const {
    return !definitions_.all.empty() || !lost_.Rows().empty();
}

RepairReport FileSalvage::Report() const {
    RepairReport report{.damaged = true, .lostObjects = lostObjects_};
    for (const TableSalvage& table : tables_)
        report.tables.push_back(table.Saved());
    for (const auto& [name, rows] : lost_.Rows())
        report.tables.push_back({.name = name, .fromTree = rows});
    return report;
}

DaoError FileSalvage::Make(const Definition& one) {
    const DaoError made = fresh_.Run(one.sql);
    if (IsStorageFailure(made)) return made;
    if (made.Failed()) lostObjects_.push_back(one.name);
    return {};
}

DaoError FileSalvage::MakeTablesAndIndexes() {
    for (const bool indexes : {false, true})
        for (const Definition& one : definitions_.all) {
            if (one.IsInternal() || one.sql.empty() || one.IsVirtual()) continue;
            if (indexes ? !one.IsIndex() : !one.IsTable()) continue;
            if (DaoError failed = Make(one); failed.Failed()) return failed;
        }
    return {};
}

/// Its rows are in tables of their own, which are there; making it as usual would make them again.
DaoError FileSalvage::MakeVirtualTable(const Definition& one) {
    const DaoError made = fresh_.InUnit([&]() -> DaoError {
        if (DaoError failed = fresh_.Run("PRAGMA writable_schema=ON"); failed.Failed())
            return failed;
        DaoResult<Statement> insert =
            fresh_.Prepare("INSERT INTO sqlite_schema VALUES ('table', ?1, ?1, 0, ?2)");
        if (insert.Failed()) return insert.Error();
        insert->Bind(1, one.name);
        insert->Bind(2, one.sql);
        if (DaoError failed = insert->Finish(); failed.Failed()) return failed;
        if (DaoError failed = fresh_.Run("PRAGMA writable_schema=RESET"); failed.Failed())
            return failed;
        // A damaged text would make the whole file unreadable.
        return fresh_.QueryWhole("SELECT count(*) FROM sqlite_schema").Error();
    });
    if (made.Failed()) lostObjects_.push_back(one.name);
    return fresh_.Run("PRAGMA writable_schema=RESET");
}

DaoError FileSalvage::MakeTheRest() {
    for (const Definition& one : definitions_.all)
        if (one.IsVirtual())
            if (DaoError failed = MakeVirtualTable(one); failed.Failed()) return failed;
    for (const Definition& one : definitions_.all)
        if (!one.IsTable() && !one.IsIndex())
            if (DaoError failed = Make(one); failed.Failed()) return failed;
    return {};
}

DaoError FileSalvage::ReadShapes() {
    for (std::size_t i = 0; i < definitions_.all.size(); ++i) {
        const Definition& one = definitions_.all[i];
        if (!one.IsTable() || one.IsInternal() || one.IsVirtual()) continue;
        DaoResult<TableShape> shape = ReadShape(fresh_, one.name);
        if (shape.Failed()) return shape.Error();
        if (!shape->columns.empty()) shapes_.emplace(i, std::move(*shape));
    }
    return {};
}

void FileSalvage::MapPages() {
    for (std::size_t i = 0; i < definitions_.all.size(); ++i) {
        const Definition& one = definitions_.all[i];
        TreeRoot root{.page = one.root, .isTable = one.IsTable()};
        if (const auto shape = shapes_.find(i); shape != shapes_.end()) {
            root.isTable = shape->second.keyed;
            root.columns = shape->second.columns.size();
        }
        for (const auto& [number, shape] : shapes_)
            for (const IndexShape& index : shape.indexes)
                if (one.IsIndex() && index.name == one.name) root.columns = index.places.size();
        roots_.push_back(root);
    }
    map_.emplace(file_, roots_);
}

DaoError FileSalvage::SaveRows() {
    // The last numbers first: rows raise them, and never lower them.
    for (std::size_t i = 0; i < roots_.size(); ++i)
        if (definitions_.all[i].name == "sqlite_sequence")
            if (DaoError failed = CopyLastNumbers(i); failed.Failed()) return failed;
    for (std::size_t i = 0; i < roots_.size(); ++i) {
        const Definition& one = definitions_.all[i];
        DaoError outcome;
        if (const auto shape = shapes_.find(i); shape != shapes_.end())
            outcome =
                tables_.emplace_back(file_, fresh_, lost_, shape->second, map_->Of(i)).SaveTree();
        else if (one.IsTable() && !one.IsInternal())
            outcome = SaveUnknownTable(i);
        if (outcome.Failed()) return outcome;
    }
    for (const PageNumber number : map_->LoosePages())
        if (DaoError failed = SaveLoosePage(number); failed.Failed()) return failed;
    for (TableSalvage& table : tables_)
        if (table.IsDamaged())
            if (DaoError failed = SaveFromIndexes(table); failed.Failed()) return failed;
    return {};
}

DaoError FileSalvage::SaveUnknownTable(std::size_t root) {
    for (const PlacedPage& placed : map_->Of(root).pages) {
        const TreePage page = ReadLinkedPage(file_, placed.number, roots_[root].isTable);
        for (const Cell& cell : page.cells)
            if (const std::optional<Record> record = ReadRecord(file_, page, cell))
                if (DaoError failed = lost_.PutRecord(placed.number, cell.key, record->values);
                    failed.Failed())
                    return failed;
    }
    return {};
}

/// The tables that miss pages and could have held this one; those with just as many columns first.
std::vector<TableSalvage*> FileSalvage::OwnersOf(const TreePage& page) {
    const std::vector<Record> records = RecordsOf(file_, page);
    std::vector<TableSalvage*> exact;
    std::vector<TableSalvage*> wider;
    for (TableSalvage& table : tables_) {
        const TableShape& shape = table.Shape();
        if (!table.MissesPages() || shape.keyed != page.IsTable()) continue;
        if (!std::all_of(records.begin(), records.end(),
                         [&](const Record& one) { return shape.CanHold(one); }))
            continue;
        const bool same = std::all_of(records.begin(), records.end(), [&](const Record& one) {
            return one.values.size() == shape.columns.size();
        });
        (same ? exact : wider).push_back(&table);
    }
    return exact.empty() ? wider : exact;
}

bool FileSalvage::MayBeOfIndex(const TreePage& page) const {
    if (page.IsTable()) return false;
    const std::vector<Record> records = RecordsOf(file_, page);
    for (std::size_t i = 0; i < roots_.size(); ++i)
        if (definitions_.all[i].IsIndex() && map_->Of(i).damaged && !records.empty() &&
            (roots_[i].columns == 0 || roots_[i].columns == records.front().values.size()))
            return true;
    return false;
}

DaoError FileSalvage::SaveLoosePage(PageNumber number) {
    const TreePage page = ReadTreePage(file_, number);
    const std::vector<TableSalvage*> owners = OwnersOf(page);
    // Only a page that is surely not free is surely not full of deleted rows.
    if (owners.size() == 1 && map_->FreePagesKnown() && !MayBeOfIndex(page))
        return owners.front()->SaveLoosePage(page);
    // Indexes only repeat what tables hold.
    if (owners.empty() && !page.IsTable() && !definitions_.damaged) return {};
    for (const Cell& cell : page.cells) {
        const std::optional<Record> record = ReadRecord(file_, page, cell);
        if (!record) continue;
        const DaoError put =
            owners.empty() ? lost_.PutRecord(number, cell.key, record->values)
                           : lost_.PutRow(owners.front()->Shape(), "", cell.key, record->values);
        if (put.Failed()) return put;
    }
    return {};
}

DaoError FileSalvage::SaveFromIndexes(TableSalvage& table) {
    for (const IndexShape& index : table.Shape().indexes)
        for (std::size_t i = 0; i < roots_.size(); ++i) {
            const Definition& one = definitions_.all[i];
            if (!one.IsIndex() || one.name != index.name) continue;
            if (DaoError failed = table.NoteIndex(index, map_->Of(i)); failed.Failed())
                return failed;
        }
    if (DaoError failed = table.SaveDoubtful(); failed.Failed()) return failed;
    return table.SaveNoted();
}

/// The last numbers that auto-number columns gave out.
DaoError FileSalvage::CopyLastNumbers(std::size_t root) {
    const auto there = fresh_.Tables().Find("sqlite_sequence");
    if (there.Failed()) return there.Error();
    if (*there == nullptr) return {};
    for (const PlacedPage& placed : map_->Of(root).pages) {
        const TreePage page = ReadLinkedPage(file_, placed.number, true);
        for (const Record& record : RecordsOf(file_, page)) {
            const std::string* name = TextIn(record.values.front());
            const std::optional<std::int64_t> last = WholeIn(record.values.back());
            if (name == nullptr || !last || record.values.size() != 2) continue;
            DaoResult<Statement> insert =
                fresh_.Prepare("INSERT INTO sqlite_sequence (name, seq) VALUES (?1, ?2)");
            if (insert.Failed()) return insert.Error();
            insert->Bind(1, *name);
            insert->Bind(2, *last);
            if (DaoError failed = insert->Finish(); failed.Failed()) return failed;
        }
    }
    return {};
}

DaoError FileSalvage::CopyVersions() {
    const auto text = [this](std::size_t place) {
        return std::to_string(static_cast<std::int32_t>(file_.HeadNumber(place)));
    };
    if (DaoError failed = fresh_.Run("PRAGMA user_version=" + text(UserVersionPlace));
        failed.Failed())
        return failed;
    return fresh_.Run("PRAGMA application_id=" + text(ApplicationIdPlace));
}

}  // namespace mailvane
