#pragma once

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/dao/sql/SqlFunctions.h"
#include "platform/dao/sql/SqlPlan.h"
#include "platform/dao/structure/FieldTypes.h"

namespace mailvane {

/// A database in memory that runs plans, with a few small tables of awkward names.
class SqlTestBase {
public:
    SqlTestBase() {
        sqlite3_open(":memory:", &database_);
        RegisterSqlFunctions(database_);
        const Field id{"ID", FieldType::Long, 0, AutoNumberAttributes, false, false, ""};
        Create({Clients,
                0,
                {id, Column("First Name"), Column("E-mail"), Column("Born", FieldType::Date),
                 Column("Score", FieldType::Double), Column("Active", FieldType::Boolean),
                 Column("Notes", FieldType::Memo)},
                {}});
        Create({Quoted, 0, {id, Column("E-mail"), Column("City")}, {}});
        const Field retries = Column("Retries", FieldType::Integer);
        const Field date = Column("Date", FieldType::Date);
        Create({"Outbox", 0, {id, Column("Subject"), date, retries}, {}});
        Create({"Mine", 0, {id, Column("Subject"), Column("Date"), retries}, {}});
        RunSql(R"sql(INSERT INTO "Clients 1/2/2003 4:05:06 PM" VALUES
            (1, 'Ann', 'ANN@a.com', '2003-01-02 00:00:00', 1.5, 1, 'x'),
            (2, 'Bob', 'bob@b.com', '2003-01-31 12:00:00', 10, 0, NULL),
            (3, 'ÄRGER', '"Cy" <cy@A.com>', NULL, NULL, -1, ''),
            (4, NULL, NULL, '2010-05-05', 3, 0, '50% [ok]'),
            (5, 'ann', 'ann@a.com', '1899-12-30 16:05:06', -4, 1, 'it''s'))sql");
        RunSql(
            R"sql(INSERT INTO "O'Brien ""x""" VALUES (1, 'Ann@A.com', 'Rome'), (2, 'zoe@z.com', 'Oslo'),
            (3, NULL, 'Bonn'), (4, 'ann@a.com', 'Graz'))sql");
        RunSql(R"sql(INSERT INTO "Outbox" VALUES (1, 'one', '2003-01-02 00:00:00', NULL),
            (2, 'two', '2003-01-02 16:05:06', 3), (3, 'three', NULL, 0))sql");
        RunSql(R"sql(INSERT INTO "Mine" VALUES (7, 'old', '1/2/2003 4:05:06 PM', 1),
            (8, 'odd', 'yesterday', 2))sql");
    }
    ~SqlTestBase() { sqlite3_close(database_); }
    SqlTestBase(const SqlTestBase&) = delete;
    SqlTestBase& operator=(const SqlTestBase&) = delete;

    static constexpr const char* Clients = "Clients 1/2/2003 4:05:06 PM";
    static constexpr const char* Quoted = "O'Brien \"x\"";

    static Field Column(const char* name, FieldType type = FieldType::Text) {
        Field field;
        field.name = name;
        field.type = type;
        return field;
    }

    void Create(const TableDef& table) {
        std::string columns;
        for (const Field& field : table.fields)
            columns += (columns.empty() ? "" : ", ") + QuoteName(field.name) + " " +
                       DeclaredType(field) + (field.IsAutoNumber() ? " PRIMARY KEY" : "");
        RunSql("CREATE TABLE " + QuoteName(table.name) + " (" + columns + ")");
        tables_[table.name] = table;
    }

    SchemaReader Schema() const {
        return [this](const std::string& name) -> std::optional<TableDef> {
            for (const auto& [known, table] : tables_)
                if (SameName(known, name)) return table;
            return std::nullopt;
        };
    }

    const TableDef& Table(const std::string& name) const { return tables_.at(name); }

    /// Runs one statement of the dialect: 0 or the error number. `counted` takes the rows changed.
    int Execute(const std::string& sql, int* counted = nullptr) {
        const DaoResult<SqlPlan> plan = PlanStatement(sql, Schema());
        if (plan.Failed()) return plan.Error().number;
        RunSql("SAVEPOINT plan");
        for (const TableDef& table : plan->createdTables)
            Create(table);
        for (std::size_t i = 0; i < plan->statements.size(); ++i) {
            if (!TryRun(plan->statements[i])) {
                RunSql("ROLLBACK TO plan");
                return -1;
            }
            if (counted != nullptr && i == plan->countedStatement)
                *counted = sqlite3_changes(database_);
        }
        for (const std::string& table : plan->droppedTables) {
            RunSql("DROP TABLE " + QuoteName(table));
            tables_.erase(table);
        }
        RunSql("RELEASE plan");
        return 0;
    }

    /// Rows as texts, with blanks between values and "; " between rows; Null is a minus sign.
    std::string Rows(const std::string& sqliteSql) {
        std::string rows;
        rows_ = &rows;
        RunSql(sqliteSql);
        rows_ = nullptr;
        return rows;
    }

    bool TryRun(const std::string& sqliteSql) {
        failure_.clear();
        char* message = nullptr;
        const int result = sqlite3_exec(
            database_, sqliteSql.c_str(),
            [](void* base, int count, char** values, char**) {
                static_cast<SqlTestBase*>(base)->AddRow(count, values);
                return 0;
            },
            this, &message);
        if (message != nullptr) failure_ = message;
        sqlite3_free(message);
        return result == SQLITE_OK;
    }

    void RunSql(const std::string& sqliteSql) {
        if (!TryRun(sqliteSql)) ADD_FAILURE() << failure_ << "\nin " << sqliteSql;
    }

    const std::string& Failure() const { return failure_; }

protected:
    sqlite3* database_ = nullptr;
    std::map<std::string, TableDef> tables_;

private:
    void AddRow(int count, char** values) {
        if (rows_ == nullptr) return;
        if (!rows_->empty()) *rows_ += "; ";
        for (int i = 0; i < count; ++i) {
            *rows_ += i > 0 ? " " : "";
            *rows_ += values[i] != nullptr ? values[i] : "-";
        }
    }

    std::string* rows_ = nullptr;
    std::string failure_;
};

}  // namespace mailvane
