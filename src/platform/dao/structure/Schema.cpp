#include "platform/dao/structure/Schema.h"

#include <algorithm>

#include "platform/dao/file/Connection.h"
#include "platform/dao/structure/CreateText.h"
#include "platform/dao/structure/FieldTypes.h"

namespace mailvane {

namespace {

constexpr const char* ForeignPrimaryName = "PrimaryKey";

std::string Lower(std::string name) {
    for (char& letter : name)
        if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
    return name;
}

int FieldAttributes(const Field& field, bool generated) {
    const int width = field.IsText() || field.type == FieldType::LongBinary ? VariableFieldAttribute
                                                                            : FixedFieldAttribute;
    return generated ? width : width | UpdatableFieldAttribute;
}

/// Takes the digits off the end of `name`; false when there are none.
bool DropDigits(std::string& name) {
    const std::size_t length = name.size();
    while (!name.empty() && name.back() >= '0' && name.back() <= '9')
        name.pop_back();
    return name.size() != length;
}

bool DropLetter(std::string& name, char letter) {
    if (name.empty() || name.back() != letter) return false;
    name.pop_back();
    return true;
}

/// What the primary index refuses is no property of the column.
void ForgiveNullInPrimary(TableDef& table) {
    for (const Index& index : table.indexes) {
        if (!index.primary) continue;
        for (Field& field : table.fields)
            if (std::find(index.fields.begin(), index.fields.end(), field.name) !=
                index.fields.end())
                field.required = false;
    }
}

}  // namespace

bool IsSystemName(const std::string& name) {
    const std::string lower = Lower(name);
    return lower.starts_with("msys") || lower.starts_with("sqlite_");
}

std::string StoredIndexName(const Index& index, int number) {
    return index.name + "|" + (index.primary ? "p" : "") + (index.unique ? "u" : "") +
           std::to_string(number);
}

bool ReadStoredIndexName(const std::string& storedName, Index& index) {
    std::string name = storedName;
    if (!DropDigits(name)) return false;
    const bool unique = DropLetter(name, 'u');
    const bool primary = DropLetter(name, 'p');
    if (!DropLetter(name, '|')) return false;
    index.name = name;
    index.unique = unique;
    index.primary = primary;
    return true;
}

std::string RowKeyName(const std::vector<Field>& fields) {
    for (const char* name : {"rowid", "_rowid_", "oid"}) {
        const bool taken = std::any_of(fields.begin(), fields.end(), [&](const Field& field) {
            return SameName(field.name, name);
        });
        if (!taken) return name;
    }
    return {};
}

void Schema::Forget() {
    tables_.clear();
    version_ = -1;
}

DaoError Schema::DropStale() {
    const DaoResult<std::int64_t> version = connection_.QueryWhole("PRAGMA schema_version");
    if (version.Failed()) return version.Error();
    if (*version != version_) tables_.clear();
    version_ = *version;
    return {};
}

DaoResult<std::vector<std::string>> Schema::TableNames() {
    DaoResult<Statement> query =
        connection_.Prepare("SELECT name FROM sqlite_schema WHERE type = 'table' ORDER BY rowid");
    if (query.Failed()) return query.Error();
    std::vector<std::string> names;
    for (;;) {
        const DaoResult<bool> row = query->Step();
        if (row.Failed()) return row.Error();
        if (!*row) return names;
        names.push_back(query->Text(0));
    }
}

DaoResult<std::shared_ptr<const TableInfo>> Schema::Find(const std::string& name) {
    if (DaoError failed = DropStale(); failed.Failed()) return failed;
    const std::string key = Lower(name);
    if (const auto known = tables_.find(key); known != tables_.end()) return known->second;
    DaoResult<std::shared_ptr<const TableInfo>> table = Read(name);
    if (table.Ok()) tables_[key] = *table;
    return table;
}

DaoResult<std::shared_ptr<const TableInfo>> Schema::Read(const std::string& name) {
    DaoResult<Statement> query = connection_.Prepare(
        "SELECT s.name, l.type, l.wr, s.sql FROM sqlite_schema AS s"
        " JOIN pragma_table_list AS l ON l.schema = 'main' AND l.name = s.name"
        " WHERE s.type IN ('table', 'view') AND s.name = ?1 COLLATE NOCASE");
    if (query.Failed()) return query.Error();
    query->Bind(1, name);
    const DaoResult<bool> row = query->Step();
    if (row.Failed()) return row.Error();
    if (!*row) return std::shared_ptr<const TableInfo>();

    auto table = std::make_shared<TableInfo>();
    table->definition.name = query->Text(0);
    table->definition.attributes = IsSystemName(table->definition.name) ? SystemObjectMask : 0;
    table->isView = query->Text(1) == "view";
    const bool keyed = query->Text(1) == "table" && query->Whole(2) == 0;
    table->createSql = query->Text(3);
    if (DaoError failed = ReadFields(*table); failed.Failed()) return failed;
    if (DaoError failed = ReadIndexes(*table); failed.Failed()) return failed;
    if (keyed) table->keySql = RowKeyName(table->definition.fields);
    return std::shared_ptr<const TableInfo>(std::move(table));
}

DaoError Schema::ReadFields(TableInfo& table) {
    DaoResult<Statement> query = connection_.Prepare(
        "SELECT name, type, \"notnull\", dflt_value, hidden FROM pragma_table_xinfo(?1)"
        " WHERE hidden <> 1 ORDER BY cid");
    if (query.Failed()) return query.Error();
    query->Bind(1, table.definition.name);
    for (;;) {
        const DaoResult<bool> row = query->Step();
        if (row.Failed()) return row.Error();
        if (!*row) return {};
        Field field;
        field.name = query->Text(0);
        ReadDeclaredType(query->Text(1), field);
        field.required = query->Whole(2) != 0;
        field.defaultValue = DefaultText(query->Text(3));
        field.attributes = FieldAttributes(field, query->Whole(4) != 0);
        table.definition.fields.push_back(std::move(field));
    }
}

DaoResult<std::vector<std::string>> Schema::IndexFields(const std::string& indexName) {
    DaoResult<Statement> query =
        connection_.Prepare("SELECT name FROM pragma_index_info(?1) ORDER BY seqno");
    if (query.Failed()) return query.Error();
    query->Bind(1, indexName);
    std::vector<std::string> fields;
    for (;;) {
        const DaoResult<bool> row = query->Step();
        if (row.Failed()) return row.Error();
        if (!*row) return fields;
        fields.push_back(query->Text(0));
    }
}

DaoError Schema::ReadIndexes(TableInfo& table) {
    DaoResult<Statement> query = connection_.Prepare(
        "SELECT name, \"unique\", origin FROM pragma_index_list(?1) ORDER BY seq DESC");
    if (query.Failed()) return query.Error();
    query->Bind(1, table.definition.name);
    bool keyHasIndex = false;
    for (;;) {
        const DaoResult<bool> row = query->Step();
        if (row.Failed()) return row.Error();
        if (!*row) break;
        const std::string storedName = query->Text(0);
        Index index{storedName, {}, false, query->Whole(1) != 0};
        if (query->Text(2) == "pk") {
            keyHasIndex = true;
            index.primary = true;
            const std::string given = PrimaryConstraintName(table.createSql);
            index.name = given.empty() ? ForeignPrimaryName : given;
        } else {
            ReadStoredIndexName(storedName, index);
        }
        DaoResult<std::vector<std::string>> fields = IndexFields(storedName);
        if (fields.Failed()) return fields.Error();
        index.fields = std::move(*fields);
        table.definition.indexes.push_back(std::move(index));
    }
    ForgiveNullInPrimary(table.definition);
    return keyHasIndex ? DaoError() : ReadRowKey(table);
}

DaoError Schema::ReadRowKey(TableInfo& table) {
    TableDef& definition = table.definition;
    // A key without an index of its own is the row key itself: SQLite numbers the rows.
    DaoResult<Statement> query =
        connection_.Prepare("SELECT name FROM pragma_table_info(?1) WHERE pk = 1");
    if (query.Failed()) return query.Error();
    query->Bind(1, definition.name);
    const DaoResult<bool> row = query->Step();
    if (row.Failed()) return row.Error();
    if (!*row) return {};
    const std::string keyName = query->Text(0);
    for (Field& field : definition.fields)
        if (field.name == keyName) field.attributes = AutoNumberAttributes;
    const std::string constraint = PrimaryConstraintName(table.createSql);
    if (constraint == AutoNumberConstraint) return {};
    Index primary{ForeignPrimaryName, {keyName}, true, true};
    if (!constraint.empty() && !ReadStoredIndexName(constraint, primary)) primary.name = constraint;
    definition.indexes.insert(definition.indexes.begin(), primary);
    return {};
}

bool Schema::IsPrimaryKeyColumn(const std::string& qualifiedName) {
    const DaoResult<std::vector<std::string>> names = TableNames();
    if (names.Failed()) return false;
    for (const std::string& name : *names) {
        if (!qualifiedName.starts_with(name + ".")) continue;
        const DaoResult<std::shared_ptr<const TableInfo>> table = Find(name);
        if (table.Failed() || *table == nullptr) continue;
        const std::string column = qualifiedName.substr(name.size() + 1);
        for (const Index& index : (*table)->definition.indexes)
            if (index.primary &&
                std::find(index.fields.begin(), index.fields.end(), column) != index.fields.end())
                return true;
    }
    return false;
}

}  // namespace mailvane
