#include "platform/dao/structure/SchemaChange.h"

#include <algorithm>
#include <functional>

#include "platform/dao/file/Connection.h"
#include "platform/dao/sql/SqlPlan.h"
#include "platform/dao/structure/FieldTypes.h"
#include "platform/dao/structure/TableBuild.h"

namespace mailvane {

namespace {

/// Runs a change of an existing table as one unit; 3265 when it is not there.
DaoError ChangeTable(Connection& connection, const std::string& name,
                     const std::function<DaoError(const TableInfo&)>& change) {
    return connection.InUnit([&]() -> DaoError {
        const DaoResult<std::shared_ptr<const TableInfo>> table = connection.Tables().Find(name);
        if (table.Failed()) return table.Error();
        if (*table == nullptr) return MakeDaoError(dao_error::ItemNotFound);
        if ((*table)->isView) return MakeDaoError(dao_error::ReadOnly);
        return change(**table);
    });
}

DaoError CheckTableIsNew(Connection& connection, const std::string& name) {
    const DaoResult<std::shared_ptr<const TableInfo>> table = connection.Tables().Find(name);
    if (table.Failed()) return table.Error();
    return *table == nullptr ? DaoError() : MakeDaoError(dao_error::TableExists, name);
}

bool Covers(const Index& index, const std::string& field) {
    return std::any_of(index.fields.begin(), index.fields.end(),
                       [&](const std::string& name) { return SameName(name, field); });
}

std::string AlterTable(const TableDef& table) {
    return "ALTER TABLE " + QuoteName(table.name);
}

/// The stored names of a table's indexes that cover a column. Those that CREATE TABLE made itself
/// cannot be dropped; `inTable` tells whether there is one.
DaoResult<std::vector<std::string>> StoredIndexesOver(Connection& connection, const TableDef& table,
                                                      const std::string& field, bool& inTable) {
    DaoResult<Statement> query = connection.Prepare(
        "SELECT l.name, l.origin FROM pragma_index_list(?1) AS l, pragma_index_info(l.name) AS i"
        " WHERE i.name = ?2");
    if (query.Failed()) return query.Error();
    query->Bind(1, table.name);
    query->Bind(2, field);
    std::vector<std::string> names;
    for (;;) {
        const DaoResult<bool> row = query->Step();
        if (row.Failed()) return row.Error();
        if (!*row) return names;
        if (query->Text(1) == "c")
            names.push_back(query->Text(0));
        else
            inTable = true;
    }
}

DaoError RebuildWithout(Connection& connection, const TableInfo& table, const std::string& field) {
    TableDef changed = table.definition;
    std::erase_if(changed.fields, [&](const Field& one) { return SameName(one.name, field); });
    std::erase_if(changed.indexes, [&](const Index& index) { return Covers(index, field); });
    if (changed.fields.empty()) return MakeDaoError(dao_error::NoFieldDefined);
    return RebuildTable(connection, table, changed);
}

DaoError DropField(Connection& connection, const TableInfo& table, const Field& field) {
    bool inTable = field.IsAutoNumber();
    const DaoResult<std::vector<std::string>> indexes =
        StoredIndexesOver(connection, table.definition, field.name, inTable);
    if (indexes.Failed()) return indexes.Error();
    // The other columns of a primary index refuse Null no longer.
    const bool inPrimary = std::any_of(
        table.definition.indexes.begin(), table.definition.indexes.end(), [&](const Index& index) {
            return index.primary && index.fields.size() > 1 && Covers(index, field.name);
        });
    if (inTable || inPrimary) return RebuildWithout(connection, table, field.name);
    if (table.definition.fields.size() == 1) return MakeDaoError(dao_error::NoFieldDefined);
    for (const std::string& index : *indexes)
        if (DaoError failed = connection.Run("DROP INDEX " + QuoteName(index)); failed.Failed())
            return failed;
    return connection.Run(AlterTable(table.definition) + " DROP COLUMN " + QuoteName(field.name));
}

/// Whether a row has Null in a column of the index.
DaoResult<bool> HasNullIn(Connection& connection, const TableDef& table, const Index& index) {
    std::string condition;
    for (const std::string& field : index.fields)
        condition += (condition.empty() ? "" : " OR ") + QuoteName(field) + " IS NULL";
    const DaoResult<std::int64_t> found = connection.QueryWhole(
        "SELECT EXISTS (SELECT 1 FROM " + QuoteName(table.name) + " WHERE " + condition + ")");
    if (found.Failed()) return found.Error();
    return *found != 0;
}

/// A primary index changes the columns under it as well: they refuse Null from then on.
DaoError AppendPrimaryIndex(Connection& connection, const TableInfo& table, const Index& index) {
    const DaoResult<bool> hasNull = HasNullIn(connection, table.definition, index);
    if (hasNull.Failed()) return hasNull.Error();
    if (*hasNull) return MakeDaoError(dao_error::NullInPrimaryKey);
    TableDef changed = table.definition;
    changed.indexes.push_back(index);
    return RebuildTable(connection, table, changed);
}

}  // namespace

DaoError AppendTableTo(Connection& connection, const TableDef& table) {
    return connection.InUnit([&]() -> DaoError {
        if (DaoError bad = CheckName(table.name); bad.Failed()) return bad;
        if (DaoError bad = CheckTable(table); bad.Failed()) return bad;
        for (const Field& field : table.fields)
            if (DaoError bad = CheckName(field.name); bad.Failed()) return bad;
        if (DaoError bad = CheckTableIsNew(connection, table.name); bad.Failed()) return bad;
        if (DaoError failed = CreateEmptyTable(connection, table); failed.Failed()) return failed;
        for (const Index& index : table.indexes)
            if (DaoError failed = CreateIndexOf(connection, table, index); failed.Failed())
                return failed;
        return {};
    });
}

DaoError DeleteTableFrom(Connection& connection, const std::string& name) {
    return ChangeTable(connection, name, [&](const TableInfo& table) {
        return connection.Run("DROP TABLE " + QuoteName(table.definition.name));
    });
}

DaoError RenameTableIn(Connection& connection, const std::string& name,
                       const std::string& newName) {
    return ChangeTable(connection, name, [&](const TableInfo& table) -> DaoError {
        if (DaoError bad = CheckName(newName); bad.Failed()) return bad;
        TableDef renamed = table.definition;
        if (SameName(renamed.name, newName)) {
            // SQLite takes a name in other letter case for one that is there already.
            const std::string passing = "MSysRename";
            if (DaoError failed =
                    connection.Run(AlterTable(renamed) + " RENAME TO " + QuoteName(passing));
                failed.Failed())
                return failed;
            renamed.name = passing;
        } else if (DaoError taken = CheckTableIsNew(connection, newName); taken.Failed()) {
            return taken;
        }
        return connection.Run(AlterTable(renamed) + " RENAME TO " + QuoteName(newName));
    });
}

DaoError AppendFieldTo(Connection& connection, const std::string& table, const Field& field) {
    return ChangeTable(connection, table, [&](const TableInfo& info) -> DaoError {
        if (DaoError bad = CheckName(field.name); bad.Failed()) return bad;
        TableDef changed = info.definition;
        changed.fields.push_back(field);
        if (DaoError bad = CheckTable(changed); bad.Failed()) return bad;
        if (field.type == FieldType::Long && (field.attributes & AutoIncrementAttribute) != 0)
            return RebuildTable(connection, info, changed);
        const DaoResult<std::string> column = ColumnDefinition(field, false);
        if (column.Failed()) return column.Error();
        return connection.Run(AlterTable(info.definition) + " ADD COLUMN " + *column);
    });
}

DaoError DeleteFieldFrom(Connection& connection, const std::string& table,
                         const std::string& field) {
    return ChangeTable(connection, table, [&](const TableInfo& info) -> DaoError {
        const Field* found = info.definition.FindField(field);
        if (found == nullptr) return MakeDaoError(dao_error::ItemNotFound);
        return DropField(connection, info, *found);
    });
}

DaoError RenameFieldIn(Connection& connection, const std::string& table, const std::string& field,
                       const std::string& newName) {
    return ChangeTable(connection, table, [&](const TableInfo& info) -> DaoError {
        const Field* found = info.definition.FindField(field);
        if (found == nullptr) return MakeDaoError(dao_error::ItemNotFound);
        if (DaoError bad = CheckName(newName); bad.Failed()) return bad;
        const Field* taken = info.definition.FindField(newName);
        if (taken != nullptr && taken != found)
            return MakeDaoError(dao_error::FieldDefinedTwice, newName);
        return connection.Run(AlterTable(info.definition) + " RENAME COLUMN " +
                              QuoteName(found->name) + " TO " + QuoteName(newName));
    });
}

DaoError AppendIndexTo(Connection& connection, const std::string& table, const Index& index) {
    return ChangeTable(connection, table, [&](const TableInfo& info) -> DaoError {
        if (DaoError bad = CheckName(index.name); bad.Failed()) return bad;
        TableDef changed = info.definition;
        for (const Index& present : changed.indexes) {
            if (SameName(present.name, index.name))
                return MakeDaoError(dao_error::IndexExists, index.name);
            if (present.primary && index.primary) return MakeDaoError(dao_error::PrimaryKeyExists);
        }
        changed.indexes.push_back(index);
        if (DaoError bad = CheckTable(changed); bad.Failed()) return bad;
        if (index.primary) return AppendPrimaryIndex(connection, info, index);
        return CreateIndexOf(connection, info.definition, index);
    });
}

}  // namespace mailvane
