#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/dao/DaoError.h"
#include "platform/dao/structure/TableDef.h"

namespace mailvane {

class Connection;

/// What is known of a table beyond its description.
struct TableInfo {
    TableDef definition;
    std::string keySql;  ///< the expression that names a row; "" when rows have no key
    bool isView = false;
    std::string createSql;
};

/// The tables of one database file, read once and again after a structure change by anyone.
class Schema {
public:
    explicit Schema(Connection& connection) : connection_(connection) {}

    DaoResult<std::vector<std::string>> TableNames();  ///< in creation order
    /// The table or view of that name, case ignored; null when there is none.
    DaoResult<std::shared_ptr<const TableInfo>> Find(const std::string& name);
    /// Whether "table.column" names a column of a primary index.
    bool IsPrimaryKeyColumn(const std::string& qualifiedName);
    /// To be called when a structure change was undone.
    void Forget();

private:
    using Tables = std::map<std::string, std::shared_ptr<const TableInfo>>;

    DaoError DropStale();
    DaoResult<std::shared_ptr<const TableInfo>> Read(const std::string& name);
    DaoError ReadFields(TableInfo& table);
    DaoError ReadIndexes(TableInfo& table);
    DaoError ReadRowKey(TableInfo& table);
    DaoResult<std::vector<std::string>> IndexFields(const std::string& indexName);

    Connection& connection_;
    std::int64_t version_ = -1;
    Tables tables_;  ///< by name in lower case
};

/// The name under which SQLite keeps an index: names are unique in a file there, but only in a
/// table here, so a number follows, and the marks that SQLite has no place for.
std::string StoredIndexName(const Index& index, int number);
/// Gives the index's name and marks back. False for a name that another program chose.
bool ReadStoredIndexName(const std::string& storedName, Index& index);
/// Name of the key constraint of an auto-number column that no primary index was given for.
inline constexpr const char* AutoNumberConstraint = "MSysAutoNumber";
/// "MSys..." and "sqlite_...", case ignored.
bool IsSystemName(const std::string& name);
/// The name of row keys in a table with these columns; "" when all its names are taken.
std::string RowKeyName(const std::vector<Field>& fields);

}  // namespace mailvane
