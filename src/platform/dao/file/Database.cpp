#include "platform/dao/file/Database.h"

#include <utility>

#include "platform/dao/file/Connection.h"
#include "platform/dao/records/KeysetRecordset.h"
#include "platform/dao/records/SnapshotRecordset.h"
#include "platform/dao/sql/SqlPlan.h"
#include "platform/dao/structure/SchemaChange.h"
#include "platform/dao/structure/TableBuild.h"

namespace mailvane {

namespace {

using FoundTable = DaoResult<std::shared_ptr<const TableInfo>>;

/// Plans a statement over the tables of the file; an error in reading them comes before what the
/// planner makes of a table that it cannot see.
DaoResult<SqlPlan> PlanOver(Connection& connection, const std::string& sql) {
    DaoError unread;
    DaoResult<SqlPlan> plan =
        PlanStatement(sql, [&](const std::string& name) -> std::optional<TableDef> {
            const FoundTable table = connection.Tables().Find(name);
            if (table.Failed()) unread = table.Error();
            if (table.Failed() || *table == nullptr) return std::nullopt;
            return (*table)->definition;
        });
    if (unread.Failed()) return unread;
    return plan;
}

DaoError RunPlan(Connection& connection, const SqlPlan& plan, std::int64_t& changed) {
    for (const TableDef& table : plan.createdTables) {
        if (DaoError bad = CheckName(table.name); bad.Failed()) return bad;
        if (DaoError bad = CheckTable(table); bad.Failed()) return bad;
        if (DaoError failed = CreateEmptyTable(connection, table); failed.Failed()) return failed;
    }
    for (std::size_t i = 0; i < plan.statements.size(); ++i) {
        if (DaoError failed = connection.Run(plan.statements[i]); failed.Failed()) return failed;
        if (i == plan.countedStatement) changed = connection.Changes();
    }
    for (const std::string& table : plan.droppedTables)
        if (DaoError failed = DeleteTableFrom(connection, table); failed.Failed()) return failed;
    return {};
}

/// A table name may stand in brackets.
std::string WithoutBrackets(const std::string& source) {
    const bool bracketed = source.size() > 2 && source.front() == '[' && source.back() == ']';
    return bracketed ? source.substr(1, source.size() - 2) : source;
}

bool IsSelect(const std::string& source) {
    const std::size_t start = source.find_first_not_of(" \t\r\n(");
    return start != std::string::npos && SameName(source.substr(start, 6), "SELECT");
}

std::vector<std::string> FieldNames(const TableDef& table) {
    std::vector<std::string> names;
    for (const Field& field : table.fields)
        names.push_back(field.name);
    return names;
}

/// The keys' query with the table's row key in place of its mark.
std::string WithKey(std::string keyQuery, const std::string& keySql) {
    constexpr std::string_view Mark = "{key}";
    const std::size_t place = keyQuery.find(Mark);
    return place == std::string::npos ? keyQuery : keyQuery.replace(place, Mark.size(), keySql);
}

DaoResult<std::shared_ptr<Recordset>> OpenTable(const std::shared_ptr<Connection>& connection,
                                                const std::string& source,
                                                std::shared_ptr<const TableInfo> table) {
    const std::string from = " FROM " + QuoteName(table->definition.name);
    if (table->keySql.empty())
        return SnapshotRecordset::Open(connection, source, "SELECT *" + from, {});
    std::string keys = "SELECT " + table->keySql + from + " ORDER BY " + table->keySql;
    std::vector<std::string> columns = FieldNames(table->definition);
    return KeysetRecordset::Open(connection, source,
                                 {std::move(table), std::move(columns), std::move(keys), {}});
}

DaoResult<std::shared_ptr<Recordset>> OpenQuery(const std::shared_ptr<Connection>& connection,
                                                const std::string& source) {
    DaoResult<SqlPlan> plan = PlanOver(*connection, source);
    if (plan.Failed()) return plan.Error();
    if (plan->kind != SqlPlan::Kind::Select) return MakeDaoError(dao_error::QuerySyntax, source);
    if (!plan->table.empty()) {
        const FoundTable table = connection->Tables().Find(plan->table);
        if (table.Failed()) return table.Error();
        if (*table != nullptr && !(*table)->keySql.empty())
            return KeysetRecordset::Open(
                connection, source,
                {*table, std::move(plan->columns), WithKey(plan->keyQuery, (*table)->keySql), {}});
    }
    return SnapshotRecordset::Open(connection, source, plan->query, {});
}

}  // namespace

Database::Database(std::shared_ptr<Connection> connection) : connection_(std::move(connection)) {}
Database::~Database() {
    Close();
}

const std::string& Database::Path() const {
    return connection_->Path();
}
bool Database::IsOpen() const {
    return connection_->IsOpen();
}
void Database::Close() {
    connection_->Close();
}

DaoResult<std::vector<std::string>> Database::TableNames() const {
    return connection_->Tables().TableNames();
}

DaoResult<std::vector<std::string>> Database::UserTableNames() const {
    DaoResult<std::vector<std::string>> names = TableNames();
    if (names.Ok()) std::erase_if(*names, IsSystemName);
    return names;
}

bool Database::TableExists(const std::string& name) const {
    const FoundTable table = connection_->Tables().Find(name);
    return table.Ok() && *table != nullptr;
}

DaoResult<TableDef> Database::GetTableDef(const std::string& name) const {
    const FoundTable table = connection_->Tables().Find(name);
    if (table.Failed()) return table.Error();
    if (*table == nullptr) return MakeDaoError(dao_error::ItemNotFound);
    return (*table)->definition;
}

DaoError Database::AppendTable(const TableDef& table) {
    return AppendTableTo(*connection_, table);
}

DaoError Database::DeleteTable(const std::string& name) {
    return DeleteTableFrom(*connection_, name);
}

DaoError Database::RenameTable(const std::string& name, const std::string& newName) {
    return RenameTableIn(*connection_, name, newName);
}

DaoError Database::AppendField(const std::string& table, const Field& field) {
    return AppendFieldTo(*connection_, table, field);
}

DaoError Database::DeleteField(const std::string& table, const std::string& field) {
    return DeleteFieldFrom(*connection_, table, field);
}

DaoError Database::RenameField(const std::string& table, const std::string& field,
                               const std::string& newName) {
    return RenameFieldIn(*connection_, table, field, newName);
}

DaoError Database::AppendIndex(const std::string& table, const Index& index) {
    return AppendIndexTo(*connection_, table, index);
}

DaoResult<std::int64_t> Database::Execute(const std::string& sql) {
    if (!IsOpen()) return MakeDaoError(dao_error::ObjectInvalid);
    const DaoResult<SqlPlan> plan = PlanOver(*connection_, sql);
    if (plan.Failed()) return plan.Error();
    if (plan->kind == SqlPlan::Kind::Select) return MakeDaoError(dao_error::IsSelectQuery);
    std::int64_t changed = 0;
    const DaoError outcome =
        connection_->InUnit([&] { return RunPlan(*connection_, *plan, changed); });
    if (outcome.Failed()) return outcome;
    return changed;
}

DaoResult<std::shared_ptr<Recordset>> Database::OpenRecordset(const std::string& source,
                                                              RecordsetType type) {
    if (!IsOpen()) return MakeDaoError(dao_error::ObjectInvalid);
    for (const std::string& name : {source, WithoutBrackets(source)}) {
        FoundTable table = connection_->Tables().Find(name);
        if (table.Failed()) return table.Error();
        if (*table != nullptr) return OpenTable(connection_, source, std::move(*table));
    }
    if (type == RecordsetType::Table || !IsSelect(source))
        return MakeDaoError(dao_error::TableNotFound, source);
    return OpenQuery(connection_, source);
}

DaoResult<std::unique_ptr<TableAppender>> Database::OpenAppender(
    const std::string& table, const std::vector<std::string>& columns) {
    return TableAppender::Open(connection_, table, columns);
}

DaoResult<std::unique_ptr<TableScan>> Database::OpenScan(const std::string& table) {
    return TableScan::Open(connection_, table);
}

DaoError Database::OneRead(const std::function<DaoError()>& work) {
    return connection_->InOneRead(work);
}

DaoError Database::Transaction(const std::function<DaoError()>& work, bool durable) {
    return connection_->InUnit(work, durable);
}

}  // namespace mailvane
