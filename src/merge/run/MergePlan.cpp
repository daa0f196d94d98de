#include "merge/run/MergePlan.h"

#include <algorithm>
#include <cmath>

#include "core/settings/frmSettings.h"
#include "database/view/frmViewDatabase.h"
#include "merge/message/frmViewMerge.h"
#include "merge/run/MailingTable.h"

namespace mailvane {

namespace {

std::string RecipientsSource(const std::string& table, const MergeOptions& options) {
    if (!options.maximum) return table;
    const std::string all = Bracketed(table);
    return "SELECT TOP " + std::to_string(*options.maximum) + " " + all + ".* FROM " + all + ";";
}

std::string DateFilter(const MergeOptions::Dates& dates) {
    return Bracketed(dates.column) + " BETWEEN #" + dates.from.GeneralDate() + "# And #" +
           dates.to.GeneralDate() + "#";
}

}  // namespace

std::string Bracketed(std::string name) {
    std::erase(name, ']');
    return "[" + name + "]";
}

MergeMessage CopyMessage(Workbench& wb, const frmViewMerge& view) {
    MergeMessage message;
    message.from = view.txtFrom.Text();
    message.subject = view.txtSubject.Text();
    message.body = view.txtBody.Text();
    message.attachment = view.lstAttach.FirstItem();
    if (view.lstHTML.Count() > 0) message.htmlFile = view.lstHTML.FirstItem();
    message.replyTo = wb.forms.Get<frmSettings>().txtReplyTo.Text();
    message.priority = view.PriorityValue();
    message.addressColumn = view.txtTo.Text();
    message.columns = view.lstFields.Items();
    return message;
}

MergePlan OpenMergePlan(Workbench& wb, MergeOptions options) {
    MergePlan plan;
    plan.options = std::move(options);
    plan.message = CopyMessage(wb, wb.forms.Get<frmViewMerge>());
    const DataControl& shown = wb.forms.Get<frmViewDatabase>().Data1;
    plan.database = shown.Database();
    plan.table = shown.CurrentTable();
    if (!plan.database) return plan;
    plan.recipients =
        plan.database->OpenRecordset(RecipientsSource(plan.table, plan.options)).ValueOr(nullptr);
    if (plan.options.mailingTable)
        plan.mailingTable =
            FreeMailingTableName(*plan.database, plan.table, wb.platform.clock.Now());
    return plan;
}

/// Dates that cannot be compared select nobody, rather than everybody. Rows of nobody's dates are
/// none; rows of an empty table count as they stand.
void NarrowMergePlan(MergePlan& plan) {
    const MergeOptions& options = plan.options;
    if (plan.recipients && options.dates) {
        plan.recipients->SetFilter(DateFilter(*options.dates));
        plan.recipients = plan.recipients->OpenFiltered().ValueOr(nullptr);
    }
    plan.records = plan.total = plan.recipients ? plan.recipients->RecordCount() : 0;
    const bool nobody = !plan.recipients || (options.dates && plan.records == 0);
    if (!options.rows || nobody) return;
    plan.firstRow = options.rows->first;
    plan.total = options.rows->last - options.rows->first + 1;
}

MergePlan MakeMergePlan(Workbench& wb, MergeOptions options) {
    MergePlan plan = OpenMergePlan(wb, std::move(options));
    NarrowMergePlan(plan);
    return plan;
}

std::int64_t MergePlan::UsedRecords() const {
    return std::clamp<std::int64_t>(records - firstRow + 1, 0, total);
}

std::int64_t MergePlan::PacketRecords() const {
    const double size = options.packetSize;
    const bool reachesSize = size == std::floor(size) && size <= static_cast<double>(total);
    if (!reachesSize) return records;
    const auto full = static_cast<std::int64_t>(size);
    return records > 0 ? std::min(full, records) : full;
}

std::int64_t MergePlan::MessageCount() const {
    if (options.personal) return total;
    return PacketRecords() > 0 ? total / PacketRecords() : 0;
}

DaoError MergePlan::GoTo(std::int64_t number) const {
    const std::int64_t row = firstRow - 1 + number;
    if (row < records) {
        const auto bookmark = recipients->BookmarkAt(static_cast<std::size_t>(row));
        return bookmark.Ok() ? recipients->SetBookmark(*bookmark) : bookmark.Error();
    }
    // On an empty table both fail, and there is no current row either.
    recipients->MoveLast().Ignore();
    recipients->MoveNext().Ignore();
    return {};
}

}  // namespace mailvane
