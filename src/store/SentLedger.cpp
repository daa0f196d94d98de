#include "store/SentLedger.h"

#include <string>

namespace mailvane {

namespace {

constexpr const char* LedgerTable = "MSysSentMessages";

DaoError MakeLedger(Database& store) {
    TableDef table;
    table.name = LedgerTable;
    Field& id = table.fields.emplace_back();
    id.name = "ID";
    id.type = FieldType::Long;
    table.indexes = {{.name = "PrimaryKey", .fields = {"ID"}, .primary = true}};
    return store.AppendTable(table);
}

}  // namespace

DaoResult<std::shared_ptr<Recordset>> SentLedger::Open(Database& store) {
    if (!store.TableExists(LedgerTable))
        if (DaoError failed = MakeLedger(store); failed.Failed()) return failed;
    return store.OpenRecordset(LedgerTable);
}

DaoError SentLedger::Record(Recordset& ledger, std::int32_t outboxId) {
    if (DaoError failed = ledger.AddNew(); failed.Failed()) return failed;
    if (DaoError failed = ledger.Set("ID", int{outboxId}); failed.Failed()) return failed;
    return ledger.Update();
}

DaoResult<std::vector<std::int32_t>> SentLedger::Entries(Database& store) {
    std::vector<std::int32_t> ids;
    if (!store.TableExists(LedgerTable)) return ids;
    const auto rows = store.OpenRecordset(LedgerTable);
    if (rows.Failed()) return rows.Error();
    for (; !(*rows)->EndOfFile(); (*rows)->MoveNext().Ignore()) {
        const DaoResult<DaoValue> id = (*rows)->Get("ID");
        if (id.Failed()) return id.Error();
        ids.push_back(static_cast<std::int32_t>(id->NumberOr(0)));
    }
    return ids;
}

DaoError SentLedger::Remove(Database& store, std::int32_t outboxId) {
    if (!store.TableExists(LedgerTable)) return {};
    const auto deleted = store.Execute("DELETE FROM [" + std::string(LedgerTable) +
                                       "] WHERE ID = " + std::to_string(outboxId));
    return deleted.Failed() ? deleted.Error() : DaoError();
}

}  // namespace mailvane
