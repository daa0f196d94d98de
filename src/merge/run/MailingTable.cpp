#include "merge/run/MailingTable.h"

#include "core/MessageBoxes.h"
#include "core/Waiting.h"

namespace mailvane {

namespace {

constexpr const char* CreatingMailingTable = "Creating mailing table, please wait...";
constexpr std::size_t LongestName = 58;

std::string FirstCharacters(const std::string& text, std::size_t count) {
    std::size_t length = 0;
    while (length < text.size()) {
        const bool begins = (static_cast<unsigned char>(text[length]) & 0xC0) != 0x80;
        if (begins && count-- == 0) break;
        ++length;
    }
    return text.substr(0, length);
}

/// The rows from one yield to the next, as one unit.
DaoError CopyGroup(Workbench& wb, const MergePlan& plan, Recordset& mailingTable,
                   std::int64_t& copied) {
    const Recordset& recipients = *plan.recipients;
    return plan.database->Transaction([&]() -> DaoError {
        do {
            mailingTable.AddNew().Ignore();
            for (const Field& field : recipients.Fields()) {
                const auto value = recipients.Get(field.name);
                if (value.Ok()) mailingTable.Set(field.name, *value).Ignore();
            }
            const DaoError failed = mailingTable.Update();
            if (IsStorageFailure(failed)) return failed;
            ++copied;
            plan.recipients->MoveNext().Ignore();
        } while (copied < plan.UsedRecords() && !wb.platform.windows.YieldIsDue());
        return {};
    });
}

void CopyRows(Workbench& wb, LongRun& run, const MergePlan& plan, Recordset& mailingTable) {
    plan.GoTo(0).Ignore();
    run.ShowProgress(static_cast<long>(plan.total), CreatingMailingTable);
    std::int64_t copied = 0;
    while (copied < plan.UsedRecords()) {
        const DaoError failed = CopyGroup(wb, plan, mailingTable, copied);
        if (failed.Failed())
            return Tell(wb,
                        "The table '" + plan.mailingTable + "' cannot be written: " +
                            failed.description + "\r\nIts last rows are missing.",
                        BoxIcon::Critical);
        run.Step(static_cast<long>(copied));
        YieldBriefly(wb);
    }
}

}  // namespace

std::string FreeMailingTableName(const Database& database, const std::string& table,
                                 DateTime moment) {
    std::string end = " " + moment.Stamp();
    std::string name = FirstCharacters(table + end, LongestName);
    for (int number = 2; database.TableExists(name); ++number) {
        name = FirstCharacters(table, LongestName - end.size()) + end;
        end = " " + moment.Stamp() + " (" + std::to_string(number) + ")";
    }
    return name;
}

void CreateMailingTable(Workbench& wb, LongRun& run, const MergePlan& plan) {
    if (wb.shell) wb.shell->SetPanel(CreatingMailingTable);
    const std::string source = Bracketed(plan.table);
    const std::string target = Bracketed(plan.mailingTable);
    Database& database = *plan.database;
    const auto made =
        database.Execute("SELECT TOP 1 " + source + ".* INTO " + target + " FROM " + source);
    if (made.Failed() || database.Execute("DELETE * FROM " + target).Failed()) return;
    const auto mailingTable = database.OpenRecordset(plan.mailingTable);
    if (mailingTable.Failed()) return;
    CopyRows(wb, run, plan, **mailingTable);
    (*mailingTable)->Close();
}

}  // namespace mailvane
