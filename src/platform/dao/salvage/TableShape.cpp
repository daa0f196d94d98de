#include "platform/dao/salvage/TableShape.h"

#include <algorithm>
#include <map>

#include "platform/dao/file/Connection.h"
#include "platform/dao/sql/SqlPlan.h"

namespace mailvane {

namespace {

/// SQLite's rule: INT in the declared type goes before the words that make it a text.
bool TurnsNumbersIntoText(std::string type) {
    for (char& letter : type)
        if (letter >= 'a' && letter <= 'z') letter = static_cast<char>(letter - 'a' + 'A');
    const auto has = [&](const char* word) { return type.find(word) != std::string::npos; };
    return !has("INT") && (has("CHAR") || has("CLOB") || has("TEXT"));
}

/// Calls `take` for each row that the query gives for that name.
template <class Take>
DaoError ForEachRow(Connection& connection, const std::string& sql, const std::string& name,
                    const Take& take) {
    DaoResult<Statement> query = connection.Prepare(sql);
    if (query.Failed()) return query.Error();
    query->Bind(1, name);
    for (;;) {
        const DaoResult<bool> row = query->Step();
        if (row.Failed()) return row.Error();
        if (!*row) return {};
        take(*query);
    }
}

/// Columns by their numbers, without those that are never stored.
using Columns = std::map<std::int64_t, StoredColumn>;

DaoError ReadColumns(Connection& connection, TableShape& shape, Columns& columns,
                     std::vector<std::int64_t>& keys) {
    constexpr std::int64_t Computed = 2;
    constexpr std::int64_t ComputedAndStored = 3;
    return ForEachRow(
        connection,
        "SELECT cid, name, type, \"notnull\", hidden, pk FROM pragma_table_xinfo(?1) ORDER BY cid",
        shape.name, [&](const Statement& row) {
            if (row.Whole(5) != 0) keys.push_back(row.Whole(0));
            if (row.Whole(4) == Computed) return;
            columns[row.Whole(0)] = {row.Text(1), row.Text(2), row.Whole(3) != 0,
                                     row.Whole(4) == ComputedAndStored,
                                     TurnsNumbersIntoText(row.Text(2))};
        });
}

/// The numbers of the columns that an index, or a table kept as one, stores.
DaoError ReadIndexColumns(Connection& connection, const std::string& index,
                          std::vector<std::int64_t>& numbers) {
    return ForEachRow(connection, "SELECT cid FROM pragma_index_xinfo(?1) ORDER BY seqno", index,
                      [&](const Statement& row) { numbers.push_back(row.Whole(0)); });
}

}  // namespace

bool TableShape::CanHold(const Record& record) const {
    if (record.values.size() > columns.size()) return false;
    for (std::size_t i = 0; i < record.values.size(); ++i) {
        const StoredValue& value = record.values[i];
        const bool isKey = static_cast<int>(i) == keyColumn;
        if (isKey && !value.value.IsNull()) return false;
        if (!isKey && columns[i].required && value.value.IsNull()) return false;
        const bool text = value.bytes || TextIn(value) != nullptr;
        if (columns[i].text && !text && !value.value.IsNull()) return false;
    }
    return true;
}

DaoResult<TableShape> ReadShape(Connection& connection, const std::string& table) {
    TableShape shape;
    shape.name = table;
    Columns columns;
    std::vector<std::int64_t> keys;
    if (DaoError failed = ReadColumns(connection, shape, columns, keys); failed.Failed())
        return failed;
    std::vector<std::int64_t> order;
    if (DaoError failed = ReadIndexColumns(connection, table, order); failed.Failed())
        return failed;
    shape.keyed = order.empty();
    if (shape.keyed)
        for (const auto& [number, column] : columns)
            order.push_back(number);
    std::map<std::int64_t, int> places{{-1, IndexShape::Key}};
    for (const std::int64_t number : order) {
        if (!columns.contains(number)) continue;
        places[number] = static_cast<int>(shape.columns.size());
        shape.columns.push_back(columns[number]);
    }
    if (!shape.keyed) return shape;

    std::vector<Field> fields;
    for (const StoredColumn& column : shape.columns)
        fields.push_back({.name = column.name});
    shape.keySql = RowKeyName(fields);
    bool keyHasIndex = false;
    std::vector<std::string> names;
    if (DaoError failed =
            ForEachRow(connection, "SELECT name, origin FROM pragma_index_list(?1)", table,
                       [&](const Statement& row) {
                           names.push_back(row.Text(0));
                           if (row.Text(1) == "pk") keyHasIndex = true;
                       });
        failed.Failed())
        return failed;
    if (keys.size() == 1 && !keyHasIndex) {
        shape.keyColumn = places.at(keys.front());
        shape.keySql = QuoteName(columns.at(keys.front()).name);
    }
    for (const std::string& name : names) {
        std::vector<std::int64_t> numbers;
        if (DaoError failed = ReadIndexColumns(connection, name, numbers); failed.Failed())
            return failed;
        IndexShape index{name, {}};
        for (const std::int64_t number : numbers)
            index.places.push_back(places.contains(number) ? places.at(number)
                                                           : IndexShape::Unknown);
        shape.indexes.push_back(std::move(index));
    }
    return shape;
}

}  // namespace mailvane
