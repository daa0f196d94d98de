#include "send/report/frmDeliveryReport.h"

#include <algorithm>
#include <utility>

namespace mailvane {

namespace {

constexpr std::size_t ChartDomains = 10;
constexpr double NumberWidth = 1500;
constexpr double DomainWidth = 4500;
constexpr double AddressWidth = 3900;
constexpr double AnswerWidth = 6000;

std::string Counted(std::int64_t count, const char* one, const char* many) {
    return std::to_string(count) + " " + (count == 1 ? one : many);
}

std::string ListText(const DeliveryRun& run) {
    const std::string began = run.began.GeneralDate();
    if (run.kind == DeliveryRun::Kind::Merge)
        return began + "  Merge: " + std::to_string(run.generated) + " generated";
    return began + "  Send: " + std::to_string(run.Sent()) + " sent, " +
           std::to_string(run.Refused()) + " refused, " + std::to_string(run.left) + " left";
}

std::string SummaryText(const DeliveryRun& run) {
    if (run.kind == DeliveryRun::Kind::Merge)
        return Counted(run.generated, "message was", "messages were") +
               " generated from the table '" + run.table + "'.";
    std::string text = "Sent to " + Counted(run.Sent(), "address", "addresses") + ", refused for " +
                       std::to_string(run.Refused()) + ". " +
                       Counted(run.left, "message was", "messages were") + " left in the Outbox.";
    if (static_cast<std::int64_t>(run.refused.size()) < run.Refused())
        text += " Only the first " + std::to_string(run.refused.size()) +
                " refused addresses are listed.";
    return text;
}

std::string DomainText(const DomainOutcome& outcome) {
    return outcome.domain.empty() ? "(no valid address)" : outcome.domain;
}

std::shared_ptr<GridTable> RefusedRows(const DeliveryRun& run) {
    auto table = std::make_shared<GridTable>();
    for (const RefusedRecipient& refused : run.refused)
        table->rows.push_back({refused.address, refused.answer});
    return table;
}

}  // namespace

frmDeliveryReport::frmDeliveryReport(Workbench& wb)
    : WorkbenchForm(wb, "frmDeliveryReport", "Delivery report") {
    cmbRun.onClick = [this] { ShowRun(); };
    grdDomains.SetColumns(
        {{.name = "Domain", .caption = "Domain", .width = DomainWidth, .position = 0},
         {.name = "Sent",
          .caption = "Sent",
          .width = NumberWidth,
          .position = 1,
          .kind = CellKind::Number},
         {.name = "Refused",
          .caption = "Refused",
          .width = NumberWidth,
          .position = 2,
          .kind = CellKind::Number}});
    grdRefused.SetColumns(
        {{.name = "Address", .caption = "Address", .width = AddressWidth, .position = 0},
         {.name = "Answer", .caption = "Answer", .width = AnswerWidth, .position = 1}});
}

void frmDeliveryReport::Refresh() {
    runs_ = ReadDeliveryRuns(DeliveryReportPath(wb_, wb_.state.ProjectFolder), unreadable_);
    std::reverse(runs_.begin(), runs_.end());
    std::vector<std::string> texts;
    for (const DeliveryRun& run : runs_)
        texts.push_back(ListText(run));
    cmbRun.SetItems(std::move(texts));
    cmbRun.SetEnabled(!runs_.empty());
    cmbRun.SetListIndex(runs_.empty() ? -1 : 0);
    ShowRun();
}

void frmDeliveryReport::ShowRun() {
    const DeliveryRun none;
    const auto index = static_cast<std::size_t>(std::max(cmbRun.ListIndex(), 0));
    const DeliveryRun& run = index < runs_.size() ? runs_[index] : none;
    std::string text = unreadable_;
    if (text.empty()) text = runs_.empty() ? "No run has been recorded yet." : SummaryText(run);
    lblSummary.SetText(lost_.empty() ? text : text + "\r\n" + lost_);
    ShowDomains(run);
    grdRefused.SetRows(RefusedRows(run));
}

void frmDeliveryReport::ShowDomains(const DeliveryRun& run) {
    const auto table = std::make_shared<GridTable>();
    for (const DomainOutcome& outcome : run.domains)
        table->rows.push_back(
            {DomainText(outcome), std::to_string(outcome.sent), std::to_string(outcome.refused)});
    grdDomains.SetRows(table);

    std::vector<std::string> names;
    ChartSeries sent{"Sent", {}};
    ChartSeries refused{"Refused", {}};
    for (const DomainOutcome& outcome : LargestDomains(run.domains, ChartDomains)) {
        names.push_back(DomainText(outcome));
        sent.values.push_back(outcome.sent);
        refused.values.push_back(outcome.refused);
    }
    chtDomains.SetData(std::move(names), {std::move(sent), std::move(refused)});
}

void frmDeliveryReport::TellLost(DateTime began, const std::string& reason) {
    lost_ = "The run of " + began.GeneralDate() + " could not be added. " + reason;
}

void ShowDeliveryReport(Workbench& wb) {
    wb.forms.Get<frmDeliveryReport>().Show();
}

void RecordDeliveryRun(Workbench& wb, const std::string& projectFolder, DeliveryRun run) {
    const DateTime began = run.began;
    const std::string failure =
        AddDeliveryRun(DeliveryReportPath(wb, projectFolder), std::move(run));
    if (!failure.empty()) wb.forms.Get<frmDeliveryReport>().TellLost(began, failure);
}

}  // namespace mailvane
