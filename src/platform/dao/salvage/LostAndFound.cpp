#include "platform/dao/salvage/LostAndFound.h"

#include <algorithm>

#include "platform/dao/file/Connection.h"
#include "platform/dao/salvage/RowWriter.h"
#include "platform/dao/sql/SqlPlan.h"

namespace mailvane {

DaoResult<std::string> LostAndFound::FreeName(const std::string& wanted) {
    for (int number = 1;; ++number) {
        const std::string name = number == 1 ? wanted : wanted + "_" + std::to_string(number);
        const auto taken = connection_.Tables().Find(name);
        if (taken.Failed()) return taken.Error();
        if (*taken == nullptr) return name;
    }
}

DaoError LostAndFound::Insert(const std::string& table, const std::vector<StoredValue>& values) {
    std::string places;
    for (std::size_t i = 0; i < values.size(); ++i)
        places += i == 0 ? "?" : ", ?";
    // The last columns of a wider table stay empty.
    std::string columns;
    const auto found = connection_.Tables().Find(table);
    if (found.Failed()) return found.Error();
    for (std::size_t i = 0; i < values.size(); ++i)
        columns += (i == 0 ? "" : ", ") + QuoteName((*found)->definition.fields[i].name);
    DaoResult<Statement> insert = connection_.Prepare("INSERT INTO " + QuoteName(table) + " (" +
                                                      columns + ") VALUES (" + places + ")");
    if (insert.Failed()) return insert.Error();
    for (std::size_t i = 0; i < values.size(); ++i)
        BindStored(*insert, static_cast<int>(i) + 1, values[i]);
    if (DaoError failed = insert->Finish(); failed.Failed()) return failed;
    ++rows_[table];
    return {};
}

DaoError LostAndFound::PutRow(const TableShape& shape, const std::string& suffix, std::int64_t key,
                              const std::vector<StoredValue>& values) {
    std::string& name = tables_[suffix + "|" + shape.name];
    if (name.empty()) {
        DaoResult<std::string> free = FreeName("lost_and_found" + suffix);
        if (free.Failed()) return free.Error();
        std::string columns;
        for (const StoredColumn& column : shape.columns)
            columns +=
                (columns.empty() ? "" : ", ") + QuoteName(column.name) + " " + column.declaredType;
        if (DaoError failed =
                connection_.Run("CREATE TABLE " + QuoteName(*free) + " (" + columns + ")");
            failed.Failed())
            return failed;
        name = *free;
    }
    std::vector<StoredValue> row = values;
    const auto place = static_cast<std::size_t>(shape.keyColumn);
    if (shape.keyColumn >= 0 && place < row.size()) row[place].value = DaoValue(key);
    return Insert(name, row);
}

DaoError LostAndFound::PutRecord(PageNumber page, std::int64_t key,
                                 const std::vector<StoredValue>& values) {
    std::string& name = tables_["records"];
    if (name.empty()) {
        DaoResult<std::string> free = FreeName("lost_and_found_records");
        if (free.Failed()) return free.Error();
        if (DaoError failed = connection_.Run("CREATE TABLE " + QuoteName(*free) +
                                              " (Page BIGINT, RowKey BIGINT)");
            failed.Failed())
            return failed;
        name = *free;
    }
    // A column for the page, one for the key, and what else a table takes.
    const std::size_t count = std::min<std::size_t>(values.size(), 1998);
    for (; recordColumns_ < count; ++recordColumns_)
        if (DaoError failed =
                connection_.Run("ALTER TABLE " + QuoteName(name) + " ADD COLUMN Value" +
                                std::to_string(recordColumns_ + 1));
            failed.Failed())
            return failed;
    std::vector<StoredValue> row{{DaoValue(static_cast<std::int64_t>(page))}, {DaoValue(key)}};
    row.insert(row.end(), values.begin(), values.begin() + static_cast<std::ptrdiff_t>(count));
    return Insert(name, row);
}

}  // namespace mailvane
