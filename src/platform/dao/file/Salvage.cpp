#include "platform/dao/file/Salvage.h"

#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "platform/dao/file/Connection.h"
#include "platform/dao/sql/SqlPlan.h"

namespace mailvane {

namespace {

constexpr std::int64_t LastKey = std::numeric_limits<std::int64_t>::max();

/// Copies the rows of one table, around the pages that cannot be read.
class TableSalvage {
public:
    TableSalvage(Connection& damaged, Connection& fresh, const TableInfo& table)
        : damaged_(damaged), fresh_(fresh) {
        std::string columns;
        std::string places;
        for (const Field& field : table.definition.fields) {
            if ((field.attributes & UpdatableFieldAttribute) == 0) continue;
            columns += (columns.empty() ? "" : ", ") + QuoteName(field.name);
            places += places.empty() ? "?" : ", ?";
        }
        keyed_ = !table.keySql.empty();
        if (keyed_) {
            columns = table.keySql + ", " + columns;
            places = "?, " + places;
        }
        const std::string name = QuoteName(table.definition.name);
        read_ = "SELECT " + columns + " FROM " + name;
        if (keyed_) read_ += " WHERE " + table.keySql + " >= ?1 ORDER BY " + table.keySql;
        // What a damaged page gives may break a rule of the table; such a row is none.
        write_ = "INSERT OR IGNORE INTO " + name + " (" + columns + ") VALUES (" + places + ")";
    }

    DaoError Run() {
        std::optional<std::int64_t> start = std::numeric_limits<std::int64_t>::min();
        while (start) {
            bool stopped = false;
            std::int64_t next = *start;
            if (DaoError failed = CopyFrom(next, stopped); failed.Failed()) return failed;
            if (!stopped || !keyed_) return {};
            start = rows_ > most_ ? std::nullopt : FirstReadable(next);
        }
        return {};
    }

private:
    /// Copies rows from the key on. `stopped` says that damage ended it; `key` is then the first
    /// that was not read.
    DaoError CopyFrom(std::int64_t& key, bool& stopped) {
        DaoResult<Statement> source = damaged_.Prepare(read_);
        if (source.Failed()) return stopped = true, DaoError();
        DaoResult<Statement> target = fresh_.Prepare(write_);
        if (target.Failed()) return target.Error();
        if (keyed_) source->Bind(1, key);
        for (;;) {
            const DaoResult<bool> row = source->Step();
            // Pages that lead back to one another give rows for ever.
            const bool astray = row.Ok() && *row && (IsBehind(*source, key) || ++rows_ > most_);
            stopped = row.Failed() || astray;
            if (stopped || !*row) return {};
            for (int column = 0; column < source->ColumnCount(); ++column)
                target->BindColumnOf(column + 1, *source, column);
            if (DaoError failed = target->Finish(); failed.Failed()) return failed;
            target->Rewind();
            if (keyed_ && source->Whole(0) == LastKey) return {};
            if (keyed_) key = source->Whole(0) + 1;
        }
    }

    /// Keys ascend; one that does not comes from damage.
    bool IsBehind(const Statement& source, std::int64_t key) const {
        return keyed_ && source.Whole(0) < key;
    }

    bool CanReadFrom(std::int64_t key) {
        DaoResult<Statement> source = damaged_.Prepare(read_);
        if (source.Failed()) return false;
        source->Bind(1, key);
        const DaoResult<bool> row = source->Step();
        return row.Ok() && !(*row && IsBehind(*source, key));
    }

    /// The least key behind the damage at `key` from which rows, or the end, can be read: first in
    /// doubling steps to some such key, then by halving down to the least.
    std::optional<std::int64_t> FirstReadable(std::int64_t key) {
        // Keys below 1 are rare; behind damage there the search goes on with the usual ones.
        if (key < 0) return CanReadFrom(0) ? std::optional<std::int64_t>(0) : FirstReadable(0);
        std::int64_t bad = key;
        std::int64_t good = 0;
        for (std::int64_t step = 1;; step *= 2) {
            if (step > LastKey / 2 || key > LastKey - step) return std::nullopt;
            good = key + step;
            if (CanReadFrom(good)) break;
            bad = good;
        }
        while (good - bad > 1) {
            const std::int64_t middle = bad + (good - bad) / 2;
            (CanReadFrom(middle) ? good : bad) = middle;
        }
        return good;
    }

    Connection& damaged_;
    Connection& fresh_;
    bool keyed_ = false;
    std::int64_t rows_ = 0;
    const std::int64_t most_ = damaged_.MostRows();
    std::string read_;
    std::string write_;
};

struct Definition {
    std::string type;
    std::string name;
    std::string sql;
};

/// What the damaged file defines, tables first, as far as it can be read.
DaoResult<std::vector<Definition>> ReadDefinitions(Connection& damaged) {
    DaoResult<Statement> query = damaged.Prepare(
        "SELECT type, name, sql FROM sqlite_schema WHERE sql IS NOT NULL AND name NOT LIKE "
        "'sqlite\\_%' ESCAPE '\\' ORDER BY type <> 'table', type <> 'index', rowid");
    if (query.Failed()) return query.Error();
    std::vector<Definition> definitions;
    for (;;) {
        const DaoResult<bool> row = query->Step();
        if (row.Failed()) return row.Error();
        if (!*row) return definitions;
        definitions.push_back({query->Text(0), query->Text(1), query->Text(2)});
    }
}

/// The last numbers that auto-number columns gave out.
void CopyLastNumbers(Connection& damaged, Connection& fresh) {
    DaoResult<Statement> source = damaged.Prepare("SELECT name, seq FROM sqlite_sequence");
    if (source.Failed()) return;
    for (DaoResult<bool> row = source->Step(); row.Ok() && *row; row = source->Step()) {
        DaoResult<Statement> target =
            fresh.Prepare("UPDATE sqlite_sequence SET seq = max(seq, ?2) WHERE name = ?1");
        if (target.Failed()) return;
        target->BindColumnOf(1, *source, 0);
        target->BindColumnOf(2, *source, 1);
        target->Finish().Ignore();
    }
}

}  // namespace

DaoError SalvageInto(Connection& damaged, Connection& fresh) {
    const DaoResult<std::vector<Definition>> definitions = ReadDefinitions(damaged);
    if (definitions.Failed()) return definitions.Error();
    return fresh.InUnit([&]() -> DaoError {
        // Indexes are there before the rows, so that no damaged row can break a unique one;
        // triggers come last, so that they do not run again for rows that are there already.
        for (const Definition& one : *definitions)
            if (one.type == "table" || one.type == "index")
                if (DaoError failed = fresh.Run(one.sql); failed.Failed()) return failed;
        for (const Definition& one : *definitions) {
            if (one.type != "table") continue;
            const auto table = fresh.Tables().Find(one.name);
            if (table.Failed()) return table.Error();
            if (DaoError failed = TableSalvage(damaged, fresh, **table).Run(); failed.Failed())
                return failed;
        }
        CopyLastNumbers(damaged, fresh);
        for (const Definition& one : *definitions)
            if (one.type != "table" && one.type != "index")
                if (DaoError failed = fresh.Run(one.sql); failed.Failed()) return failed;
        return {};
    });
}

}  // namespace mailvane
