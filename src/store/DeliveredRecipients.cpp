#include "store/DeliveredRecipients.h"

#include "store/SentLedger.h"

namespace mailvane {

namespace {

constexpr const char* LedgerTable = "MSysDeliveredRecipients";

DaoError EnsureTable(Database& store) {
    if (store.TableExists(LedgerTable)) return {};
    TableDef table;
    table.name = LedgerTable;
    const auto add = [&table](const char* name, FieldType type) {
        Field& field = table.fields.emplace_back();
        field.name = name;
        field.type = type;
    };
    add("ID", FieldType::Long);
    add("Address", FieldType::Text);
    return store.AppendTable(table);
}

DaoError Add(Recordset& ledger, std::int32_t outboxId, const std::string& address) {
    if (DaoError failed = ledger.AddNew(); failed.Failed()) return failed;
    if (DaoError failed = ledger.Set("ID", int{outboxId}); failed.Failed()) return failed;
    if (DaoError failed = ledger.Set("Address", address); failed.Failed()) return failed;
    return ledger.Update();
}

}  // namespace

DaoError DeliveredLedger::Record(Database& store, std::int32_t outboxId,
                                 const std::vector<std::string>& addresses) {
    if (DaoError failed = EnsureTable(store); failed.Failed()) return failed;
    return store.Transaction(
        [&]() -> DaoError {
            const auto ledger = store.OpenRecordset(LedgerTable);
            if (ledger.Failed()) return ledger.Error();
            for (const std::string& address : addresses)
                if (DaoError failed = Add(**ledger, outboxId, address); failed.Failed())
                    return failed;
            return {};
        },
        true);
}

DaoResult<DeliveredRecipients> DeliveredLedger::Entries(Database& store) {
    DeliveredRecipients entries;
    if (!store.TableExists(LedgerTable)) return entries;
    const auto rows = store.OpenRecordset(LedgerTable);
    if (rows.Failed()) return rows.Error();
    for (; !(*rows)->EndOfFile(); (*rows)->MoveNext().Ignore()) {
        const DaoResult<DaoValue> id = (*rows)->Get("ID");
        if (id.Failed()) return id.Error();
        const DaoResult<DaoValue> address = (*rows)->Get("Address");
        if (address.Failed()) return address.Error();
        entries[static_cast<std::int32_t>(id->NumberOr(0))].insert(address->TextOrEmpty());
    }
    return entries;
}

DaoError DeliveredLedger::RemoveGone(Database& store) {
    return RemoveEntriesWithoutMessage(store, LedgerTable);
}

}  // namespace mailvane
