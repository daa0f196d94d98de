#include "platform/dao/structure/TableBuild.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "platform/dao/file/Connection.h"
#include "platform/dao/sql/SqlPlan.h"
#include "platform/dao/structure/FieldTypes.h"

namespace mailvane {

namespace {

constexpr std::size_t MaxNameLength = 64;
constexpr const char* ScratchTable = "MSysRebuild";

bool HasField(const Index& index, const std::string& field) {
    return std::any_of(index.fields.begin(), index.fields.end(),
                       [&](const std::string& name) { return SameName(name, field); });
}

const Index* PrimaryIndex(const TableDef& table) {
    const auto found = std::find_if(table.indexes.begin(), table.indexes.end(),
                                    [](const Index& index) { return index.primary; });
    return found == table.indexes.end() ? nullptr : &*found;
}

bool IsNumbered(const Field& field) {
    return field.type == FieldType::Long && (field.attributes & AutoIncrementAttribute) != 0;
}

/// An auto-number column is the row key, and its numbers are never given out twice.
std::string AutoNumberDefinition(const TableDef& table, const Field& field) {
    const Index* primary = PrimaryIndex(table);
    const bool keyed = primary != nullptr && LiesInAutoNumber(table, *primary);
    const std::string constraint = keyed ? StoredIndexName(*primary, 1) : AutoNumberConstraint;
    return QuoteName(field.name) + " INTEGER CONSTRAINT " + QuoteName(constraint) +
           " PRIMARY KEY AUTOINCREMENT";
}

DaoResult<std::string> Definition(const TableDef& table, const Field& field) {
    if (IsNumbered(field)) return AutoNumberDefinition(table, field);
    const Index* primary = PrimaryIndex(table);
    return ColumnDefinition(field, primary != nullptr && HasField(*primary, field.name));
}

/// The least number that makes the index's stored name unique in the file.
DaoResult<std::string> FreeStoredName(Connection& connection, const Index& index) {
    Index named = index;
    // The indexes of UNIQUE constraints carry names that only SQLite may give.
    if (IsSystemName(index.name)) named.name = index.fields.front();
    for (int number = 1;; ++number) {
        const std::string name = StoredIndexName(named, number);
        const DaoResult<std::int64_t> taken = connection.QueryWhole(
            "SELECT count(*) FROM sqlite_schema WHERE name = " + QuoteText(name) +
            " COLLATE NOCASE");
        if (taken.Failed()) return taken.Error();
        if (*taken == 0) return name;
    }
}

struct Attached {
    std::vector<std::string> texts;    ///< of indexes and triggers, in the order they were made
    std::vector<std::string> indexes;  ///< names of the indexes among them

    bool Holds(const Index& index) const {
        return std::find(indexes.begin(), indexes.end(), index.name) != indexes.end();
    }
};

/// The texts of a table's triggers, and of those of its indexes that `kept` has too.
DaoResult<Attached> AttachedTexts(Connection& connection, const std::string& table,
                                  const TableDef& kept) {
    DaoResult<Statement> query = connection.Prepare(
        "SELECT type, name, sql FROM sqlite_schema WHERE tbl_name = ?1 COLLATE NOCASE"
        " AND type IN ('index', 'trigger') AND sql IS NOT NULL ORDER BY rowid");
    if (query.Failed()) return query.Error();
    query->Bind(1, table);
    Attached attached;
    for (;;) {
        const DaoResult<bool> row = query->Step();
        if (row.Failed()) return row.Error();
        if (!*row) return attached;
        if (query->Text(0) == "index") {
            Index stored{query->Text(1), {}};
            ReadStoredIndexName(query->Text(1), stored);
            if (std::none_of(kept.indexes.begin(), kept.indexes.end(),
                             [&](const Index& index) { return index.name == stored.name; }))
                continue;
            attached.indexes.push_back(stored.name);
        }
        attached.texts.push_back(query->Text(2));
    }
}

std::string Join(const std::vector<std::string>& parts) {
    std::string joined;
    for (const std::string& part : parts)
        joined += (joined.empty() ? "" : ", ") + part;
    return joined;
}

DaoError CopyRows(Connection& connection, const TableInfo& old, const TableDef& changed) {
    std::vector<std::string> columns;
    bool numberedAnew = false;
    for (const Field& field : changed.fields) {
        const Field* before = old.definition.FindField(field.name);
        if (before != nullptr) columns.push_back(QuoteName(field.name));
        if (IsNumbered(field) && before == nullptr) numberedAnew = true;
    }
    std::string targets = Join(columns);
    std::string sources = targets;
    const std::string key = RowKeyName(changed.fields);
    if (!numberedAnew && !key.empty() && !old.keySql.empty()) {
        targets += (targets.empty() ? "" : ", ") + key;
        sources += (sources.empty() ? "" : ", ") + old.keySql;
    }
    const std::string order = old.keySql.empty() ? "" : " ORDER BY " + old.keySql;
    return connection.Run("INSERT INTO " + QuoteName(ScratchTable) + " (" + targets + ") SELECT " +
                          sources + " FROM " + QuoteName(old.definition.name) + order);
}

/// Numbers that the old table gave out are not given out again by the new one.
DaoError KeepLastNumber(Connection& connection, const std::string& oldName) {
    const DaoResult<std::int64_t> counted =
        connection.QueryWhole("SELECT count(*) FROM sqlite_schema WHERE name = 'sqlite_sequence'");
    if (counted.Failed()) return counted.Error();
    if (*counted == 0) return {};
    const DaoResult<std::int64_t> last = connection.QueryWhole(
        "SELECT max(seq) FROM sqlite_sequence WHERE name = " + QuoteText(oldName));
    if (last.Failed()) return last.Error();
    return connection.Run("UPDATE sqlite_sequence SET seq = max(seq, " + std::to_string(*last) +
                          ") WHERE name = " + QuoteText(ScratchTable));
}

}  // namespace

DaoError CheckName(const std::string& name) {
    constexpr std::string_view Refused = ".!`[]";
    const bool bad =
        name.empty() || name.size() > MaxNameLength || name.front() == ' ' ||
        name.find_first_of(Refused) != std::string::npos ||
        std::any_of(name.begin(), name.end(), [](unsigned char letter) { return letter < ' '; });
    return bad ? MakeDaoError(dao_error::InvalidName, name) : DaoError();
}

DaoError CheckTable(const TableDef& table) {
    if (table.fields.empty()) return MakeDaoError(dao_error::NoFieldDefined);
    for (auto field = table.fields.begin(); field != table.fields.end(); ++field) {
        if (std::any_of(table.fields.begin(), field,
                        [&](const Field& earlier) { return SameName(earlier.name, field->name); }))
            return MakeDaoError(dao_error::FieldDefinedTwice, field->name);
    }
    for (const Index& index : table.indexes) {
        if (index.fields.empty()) return MakeDaoError(dao_error::NoFieldDefined);
        for (const std::string& name : index.fields)
            if (table.FindField(name) == nullptr) return MakeDaoError(dao_error::ItemNotFound);
    }
    return {};
}

bool LiesInAutoNumber(const TableDef& table, const Index& index) {
    if (!index.primary || index.fields.size() != 1) return false;
    const Field* field = table.FindField(index.fields.front());
    return field != nullptr && IsNumbered(*field);
}

DaoError CreateEmptyTable(Connection& connection, const TableDef& table) {
    std::vector<std::string> columns;
    for (const Field& field : table.fields) {
        DaoResult<std::string> column = Definition(table, field);
        if (column.Failed()) return column.Error();
        columns.push_back(std::move(*column));
    }
    return connection.Run("CREATE TABLE " + QuoteName(table.name) + " (" + Join(columns) + ")");
}

DaoError CreateIndexOf(Connection& connection, const TableDef& table, const Index& index) {
    if (LiesInAutoNumber(table, index)) return {};
    std::vector<std::string> columns;
    for (const std::string& name : index.fields) {
        const Field* field = table.FindField(name);
        if (field == nullptr) return MakeDaoError(dao_error::ItemNotFound);
        columns.push_back(QuoteName(field->name) + (field->IsText() ? " COLLATE NOCASE" : ""));
    }
    const DaoResult<std::string> name = FreeStoredName(connection, index);
    if (name.Failed()) return name.Error();
    const std::string kind = index.primary || index.unique ? "UNIQUE INDEX " : "INDEX ";
    return connection.Run("CREATE " + kind + QuoteName(*name) + " ON " + QuoteName(table.name) +
                          " (" + Join(columns) + ")");
}

DaoError RebuildTable(Connection& connection, const TableInfo& old, const TableDef& changed) {
    const std::string name = QuoteName(old.definition.name);
    TableDef scratch = changed;
    scratch.name = ScratchTable;
    const DaoResult<Attached> attached = AttachedTexts(connection, old.definition.name, changed);
    if (attached.Failed()) return attached.Error();

    DaoError outcome = CreateEmptyTable(connection, scratch);
    if (outcome.Ok()) outcome = CopyRows(connection, old, scratch);
    if (outcome.Ok()) outcome = KeepLastNumber(connection, old.definition.name);
    if (outcome.Ok()) outcome = connection.Run("DROP TABLE " + name);
    if (outcome.Failed()) return outcome;

    // Views and keys of other tables mean the table by its name, before and after.
    outcome = connection.Run("PRAGMA legacy_alter_table=ON");
    if (outcome.Ok())
        outcome = connection.Run("ALTER TABLE " + QuoteName(ScratchTable) + " RENAME TO " + name);
    connection.Run("PRAGMA legacy_alter_table=OFF").Ignore();
    for (const std::string& text : attached->texts)
        if (outcome.Ok()) outcome = connection.Run(text);
    for (const Index& index : changed.indexes)
        if (outcome.Ok() && !attached->Holds(index))
            outcome = CreateIndexOf(connection, changed, index);
    return outcome;
}

}  // namespace mailvane
