#include "store/MergeMark.h"

#include "store/MessageStore.h"

namespace mailvane {

namespace {

constexpr const char* MarkTable = "MSysMergeRun";
constexpr std::int64_t NotCounted = -1;

DaoError MakeTable(Database& store) {
    TableDef table;
    table.name = MarkTable;
    const auto add = [&table](const char* name, FieldType type) {
        Field& field = table.fields.emplace_back();
        field.name = name;
        field.type = type;
        field.allowZeroLength = true;
    };
    add("TableName", FieldType::Text);
    add("Total", FieldType::Long);
    add("FirstRow", FieldType::Long);
    add("Started", FieldType::Date);
    add("LastID", FieldType::Long);  // of the Outbox when the run began
    add("Made", FieldType::Long);
    return store.AppendTable(table);
}

/// A number that a query of one row and column gives.
DaoResult<std::int64_t> NumberFrom(Database& store, const std::string& query) {
    const auto rows = store.OpenRecordset(query);
    if (rows.Failed()) return rows.Error();
    const DaoResult<DaoValue> value = (*rows)->Get(0);
    if (value.Failed()) return value.Error();
    return static_cast<std::int64_t>(value->NumberOr(0));
}

DaoError Add(Recordset& marks, const UnfinishedMerge& run, std::int64_t lastId) {
    const std::pair<const char*, DaoValue> values[] = {
        {"TableName", run.table}, {"Total", double(run.total)}, {"FirstRow", double(run.firstRow)},
        {"Started", run.started}, {"LastID", double(lastId)},   {"Made", double(NotCounted)},
    };
    if (DaoError failed = marks.AddNew(); failed.Failed()) return failed;
    for (const auto& [column, value] : values)
        if (DaoError failed = marks.Set(column, value); failed.Failed()) return failed;
    return marks.Update();
}

DaoResult<UnfinishedMerge> Read(const Recordset& marks) {
    UnfinishedMerge run;
    const DaoResult<DaoValue> table = marks.Get("TableName");
    const DaoResult<DaoValue> started = marks.Get("Started");
    for (const auto* value : {&table, &started})
        if (value->Failed()) return value->Error();
    run.table = table->TextOrEmpty();
    run.started = started->DateOr({});
    for (const auto& [column, number] : {std::pair("Total", &UnfinishedMerge::total),
                                         std::pair("FirstRow", &UnfinishedMerge::firstRow),
                                         std::pair("Made", &UnfinishedMerge::made)}) {
        const DaoResult<DaoValue> value = marks.Get(column);
        if (value.Failed()) return value.Error();
        run.*number = static_cast<std::int64_t>(value->NumberOr(0));
    }
    return run;
}

DaoError Count(Database& store, Recordset& mark, UnfinishedMerge& run) {
    const DaoResult<DaoValue> lastId = mark.Get("LastID");
    if (lastId.Failed()) return lastId.Error();
    const DaoResult<std::int64_t> made =
        NumberFrom(store, "SELECT count(*) FROM [" + std::string(OutboxFolder) + "] WHERE ID > " +
                              std::to_string(static_cast<std::int64_t>(lastId->NumberOr(0))));
    if (made.Failed()) return made.Error();
    run.made = *made;
    if (DaoError failed = mark.Edit(); failed.Failed()) return failed;
    if (DaoError failed = mark.Set("Made", double(run.made)); failed.Failed()) return failed;
    return mark.Update();
}

}  // namespace

DaoError MergeMark::Set(Database& store, const UnfinishedMerge& run) {
    return store.Transaction([&]() -> DaoError {
        if (DaoError failed = store.TableExists(MarkTable) ? Clear(store) : MakeTable(store);
            failed.Failed())
            return failed;
        const DaoResult<std::int64_t> lastId =
            NumberFrom(store, "SELECT max(ID) FROM [" + std::string(OutboxFolder) + "]");
        if (lastId.Failed()) return lastId.Error();
        const auto marks = store.OpenRecordset(MarkTable);
        return marks.Failed() ? marks.Error() : Add(**marks, run, *lastId);
    });
}

DaoError MergeMark::Clear(Database& store) {
    if (!store.TableExists(MarkTable)) return {};
    const auto deleted = store.Execute("DELETE * FROM [" + std::string(MarkTable) + "]");
    return deleted.Failed() ? deleted.Error() : DaoError();
}

DaoResult<std::optional<UnfinishedMerge>> MergeMark::Find(Database& store) {
    if (!store.TableExists(MarkTable)) return std::optional<UnfinishedMerge>();
    const auto marks = store.OpenRecordset(MarkTable);
    if (marks.Failed()) return marks.Error();
    if ((*marks)->RecordCount() == 0) return std::optional<UnfinishedMerge>();
    DaoResult<UnfinishedMerge> run = Read(**marks);
    if (run.Failed()) return run.Error();
    if (run->made == NotCounted)
        if (DaoError failed = Count(store, **marks, *run); failed.Failed()) return failed;
    return std::optional(std::move(*run));
}

std::string InterruptedMergeText(const UnfinishedMerge& run) {
    return "The last merge run was interrupted: " + std::to_string(run.made) + " of " +
           std::to_string(run.total) + " messages are in the Outbox.";
}

}  // namespace mailvane
