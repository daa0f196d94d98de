#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/dao/DaoError.h"
#include "platform/dao/records/Recordset.h"
#include "platform/dao/records/TableRows.h"
#include "platform/dao/structure/TableDef.h"

namespace mailvane {

class Connection;

enum class OpenMode { Shared, Exclusive };

/// An open database file. Made by Workspace; shared by its users. After Close every operation
/// answers 3420, and so do the recordsets that were opened on it.
class Database : public std::enable_shared_from_this<Database> {
public:
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    const std::string& Path() const;
    bool IsOpen() const;
    void Close();

    /// Names of all tables, system ones (names that begin with "MSys") included, in creation order.
    DaoResult<std::vector<std::string>> TableNames() const;
    /// The tables that are neither system nor hidden, in creation order.
    DaoResult<std::vector<std::string>> UserTableNames() const;
    bool TableExists(const std::string& name) const;
    DaoResult<TableDef> GetTableDef(const std::string& name) const;  ///< 3265 when absent

    // Structure. Each call is one unit: it does all of its work or none.
    DaoError AppendTable(
        const TableDef& table);  ///< with its fields and indexes; 3010 when present
    DaoError DeleteTable(const std::string& name);
    DaoError RenameTable(const std::string& name, const std::string& newName);
    DaoError AppendField(const std::string& table, const Field& field);
    DaoError DeleteField(const std::string& table, const std::string& field);
    DaoError RenameField(const std::string& table, const std::string& field,
                         const std::string& newName);
    DaoError AppendIndex(const std::string& table, const Index& index);

    /// Runs one statement of the dialect; returns the number of rows changed. A statement either
    /// does all of its work or none.
    DaoResult<std::int64_t> Execute(const std::string& sql);
    /// A table name or a SELECT. A table-type recordset walks the table in row order.
    DaoResult<std::shared_ptr<Recordset>> OpenRecordset(
        const std::string& source, RecordsetType type = RecordsetType::Dynaset);

    /// To add many rows to these columns of a table; the others take their defaults. 3078 for an
    /// unknown table, 3265 for an unknown column, 3164 for a computed one.
    DaoResult<std::unique_ptr<TableAppender>> OpenAppender(const std::string& table,
                                                           const std::vector<std::string>& columns);
    /// To read all rows of a table once, in row order; 3078 for an unknown table.
    DaoResult<std::unique_ptr<TableScan>> OpenScan(const std::string& table);

    /// Runs `work` in one transaction; a failure that `work` returns undoes it all. With
    /// `durable`, the commit is on the disk when the call returns, even if power fails then.
    DaoError Transaction(const std::function<DaoError()>& work, bool durable = false);
    /// Runs many small reads on one state of the file, with the cost of one lock. Others may write
    /// meanwhile; `work` does not see it, and should not either.
    DaoError OneRead(const std::function<DaoError()>& work);

private:
    friend class Workspace;
    explicit Database(std::shared_ptr<Connection> connection);
    std::shared_ptr<Connection> connection_;
};

}  // namespace mailvane
