#include "store/SentLedger.h"

#include <string>

#include "store/MessageStore.h"

namespace mailvane {

namespace {

constexpr const char* LedgerTable = "MSysSentMessages";

DaoError MakeLedger(Database& store) {
    TableDef table;
    table.name = LedgerTable;
    Field& id = table.fields.emplace_back();
    id.name = "ID";
    id.type = FieldType::Long;
    // No index: each entry is to cost one page of the log that is flushed for it.
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

DaoError SentLedger::RemoveGone(Database& store) {
    if (!store.TableExists(LedgerTable)) return {};
    const auto deleted = store.Execute("DELETE FROM [" + std::string(LedgerTable) +
                                       "] WHERE ID NOT IN (SELECT ID FROM [" + OutboxFolder + "])");
    return deleted.Failed() ? deleted.Error() : DaoError();
}

}  // namespace mailvane
