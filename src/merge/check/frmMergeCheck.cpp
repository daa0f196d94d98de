#include "merge/check/frmMergeCheck.h"

#include "core/MessageBoxes.h"
#include "core/run/LongRun.h"
#include "database/view/frmViewDatabase.h"

namespace mailvane {

namespace {

std::string Records(std::int64_t count) {
    return std::to_string(count) + (count == 1 ? " record" : " records");
}

}  // namespace

frmMergeCheck::frmMergeCheck(Workbench& wb)
    : WorkbenchForm(wb, "frmMergeCheck", "Check before sending") {
    lstFindings.onClick = [this] {
        const MergeFinding* finding = Chosen();
        cmdShow.SetEnabled(finding && !finding->rows.empty());
    };
    lstFindings.onDoubleClick = [this] { ShowRows(); };
    cmdShow.SetEnabled(false);
}

void frmMergeCheck::Check(const MergePlan& plan) {
    bool complete = true;
    {
        LongRun run(wb_, {"Checking the messages", Holds::Recipients | Holds::Message});
        if (!run.Began()) {
            Unload();
            return;
        }
        const std::string total = std::to_string(plan.UsedRecords());
        std::int64_t checked = 0;
        run.howFar = [&] { return std::to_string(checked) + " of " + total + " records"; };
        run.ShowProgress(static_cast<long>(plan.UsedRecords()), "Check", "Checking records...");
        findings_ = CheckMerge(wb_, plan, [&](std::int64_t done) {
            checked = done;
            complete = run.GoesOn(static_cast<long>(done)) && IsLoaded();
            return complete;
        });
    }
    if (IsLoaded()) ShowFindings(plan.UsedRecords(), complete);
}

void frmMergeCheck::ShowFindings(std::int64_t records, bool complete) {
    lstFindings.Clear();
    for (const MergeFinding& finding : findings_)
        lstFindings.AddItem(std::to_string(finding.count) + " x  " + finding.text);
    lstFindings.SetListIndex(findings_.empty() ? -1 : 0);
    std::string summary = findings_.empty() ? "Nothing was found" : "These things were found";
    summary += " in " + Records(records) + ".";
    if (!complete) summary += " The check was canceled before its end.";
    lblSummary.SetText(summary);
}

const MergeFinding* frmMergeCheck::Chosen() const {
    const int index = lstFindings.ListIndex();
    const bool chosen = index >= 0 && static_cast<std::size_t>(index) < findings_.size();
    return chosen ? &findings_[static_cast<std::size_t>(index)] : nullptr;
}

/// The rows become the selection of the database view, which comes to the front.
void frmMergeCheck::ShowRows() {
    const MergeFinding* finding = Chosen();
    auto* view = wb_.forms.Find<frmViewDatabase>();
    if (!finding || finding->rows.empty() || !view || !view->Data1.Recordset()) return;
    view->Grid1.SetSelected(finding->rows);
    const auto first = view->Data1.Recordset()->PositionOf(finding->rows.front());
    if (first.Ok()) view->Grid1.SetCurrentRow(*first);
    view->Show();
    view->BringToFront();
    Unload();
}

void ShowMergeCheck(Workbench& wb, const MergePlan& plan) {
    auto& form = wb.forms.Get<frmMergeCheck>();
    form.Check(plan);
    if (form.IsLoaded()) ShowModalDialog(wb, form);
}

void CheckWholeTable(Workbench& wb) {
    const MergePlan plan = MakeMergePlan(wb, {});
    if (plan.recipients) ShowMergeCheck(wb, plan);
}

}  // namespace mailvane
