#include "store/SentLedger.h"

#include <string>

#include "store/MessageStore.h"

namespace mailvane {

namespace {

constexpr const char* LedgerTable = "MSysSentMessages";

constexpr std::int32_t NoMessage = 0;

Field Column(const char* name, FieldType type) {
    Field column;
    column.name = name;
    column.type = type;
    return column;
}

DaoError MakeLedger(Database& store) {
    TableDef table;
    table.name = LedgerTable;
    // No index: each entry is to cost one page of the log that is flushed for it.
    table.fields = {Column("ID", FieldType::Long), Column("Attempt", FieldType::Date)};
    return store.AppendTable(table);
}

DaoError EnsureLedger(Database& store) {
    if (!store.TableExists(LedgerTable)) return MakeLedger(store);
    const auto table = store.GetTableDef(LedgerTable);
    if (table.Failed()) return table.Error();
    return table->FindField("Attempt")
               ? DaoError()
               : store.AppendField(LedgerTable, Column("Attempt", FieldType::Date));
}

/// Writes an entry and takes it back: a full disk is found out before anything is sent.
DaoError TryOut(Database& store, Recordset& ledger) {
    if (DaoError failed = SentLedger::Record(ledger, NoMessage, DateTime()); failed.Failed())
        return failed;
    const auto deleted = store.Execute("DELETE FROM [" + std::string(LedgerTable) +
                                       "] WHERE ID = " + std::to_string(NoMessage));
    return deleted.Failed() ? deleted.Error() : DaoError();
}

}  // namespace

DaoResult<std::shared_ptr<Recordset>> SentLedger::Open(Database& store) {
    if (DaoError failed = EnsureLedger(store); failed.Failed()) return failed;
    auto ledger = store.OpenRecordset(LedgerTable);
    if (ledger.Ok())
        if (DaoError failed = TryOut(store, **ledger); failed.Failed()) return failed;
    return ledger;
}

DaoError SentLedger::Record(Recordset& ledger, std::int32_t outboxId, DateTime attempt) {
    if (DaoError failed = ledger.AddNew(); failed.Failed()) return failed;
    if (DaoError failed = ledger.Set("ID", int{outboxId}); failed.Failed()) return failed;
    if (DaoError failed = ledger.Set("Attempt", attempt); failed.Failed()) return failed;
    return ledger.Update();
}

DaoResult<AcceptedMessages> SentLedger::Entries(Database& store) {
    AcceptedMessages entries;
    if (!store.TableExists(LedgerTable)) return entries;
    const auto rows = store.OpenRecordset(LedgerTable);
    if (rows.Failed()) return rows.Error();
    for (; !(*rows)->EndOfFile(); (*rows)->MoveNext().Ignore()) {
        const DaoResult<DaoValue> id = (*rows)->Get("ID");
        if (id.Failed()) return id.Error();
        const DaoResult<DaoValue> attempt = (*rows)->Get("Attempt");
        entries[static_cast<std::int32_t>(id->NumberOr(NoMessage))] =
            attempt.Ok() ? attempt->DateOr({}) : DateTime();
    }
    return entries;
}

DaoError SentLedger::RemoveGone(Database& store) {
    return RemoveEntriesWithoutMessage(store, LedgerTable);
}

DaoError RemoveEntriesWithoutMessage(Database& store, const std::string& ledger) {
    if (!store.TableExists(ledger)) return {};
    const auto deleted = store.Execute("DELETE FROM [" + ledger +
                                       "] WHERE ID NOT IN (SELECT ID FROM [" + OutboxFolder + "])");
    return deleted.Failed() ? deleted.Error() : DaoError();
}

}  // namespace mailvane
