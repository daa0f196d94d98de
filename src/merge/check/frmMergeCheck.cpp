#include "merge/check/frmMergeCheck.h"

#include "core/MessageBoxes.h"
#include "core/Waiting.h"
#include "core/run/Progress.h"
#include "database/view/frmViewDatabase.h"
#include "merge/message/frmViewMerge.h"

namespace mailvane {

namespace {

std::string Records(std::size_t count) {
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

void frmMergeCheck::Check(const MergeParts& parts, const MergeRows& rows) {
    const auto total = static_cast<long>(rows.count) + 1;
    bool complete = true;
    wb_.state.CancelRequested = false;
    UpdateProgress(wb_, total, 0, "Check", "Checking records...");
    findings_ = CheckMerge(parts, rows, [&](std::size_t done) {
        UpdateProgress(wb_, 0, static_cast<long>(done));
        YieldBriefly(wb_);
        complete = !wb_.state.CancelRequested && IsLoaded() && !Windows().Quitting();
        return complete;
    });
    wb_.state.CancelRequested = false;
    UpdateProgress(wb_, 0, total);
    ShowFindings(rows.count, complete);
}

void frmMergeCheck::ShowFindings(std::size_t rows, bool complete) {
    lstFindings.Clear();
    for (const MergeFinding& finding : findings_)
        lstFindings.AddItem(std::to_string(finding.count) + " x  " + finding.text);
    lstFindings.SetListIndex(findings_.empty() ? -1 : 0);
    std::string summary = findings_.empty() ? "Nothing was found" : "These things were found";
    summary += " in " + Records(rows) + ".";
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

MergeParts PartsOf(const frmViewMerge& message) {
    return {message.txtFrom.Text(),        message.txtSubject.Text(),   message.txtBody.Text(),
            message.lstAttach.FirstItem(), message.lstHTML.FirstItem(), message.txtTo.Text()};
}

void ShowMergeCheck(Workbench& wb, const MergeParts& parts, const MergeRows& rows) {
    auto& form = wb.forms.Get<frmMergeCheck>();
    form.Check(parts, rows);
    if (form.IsLoaded()) ShowModalDialog(wb, form);
}

MergeRows WholeTable(Workbench& wb) {
    const auto& message = wb.forms.Get<frmViewMerge>();
    MergeRows rows;
    if (!message.Data1.Database()) return rows;
    rows.recipients =
        message.Data1.Database()->OpenRecordset(message.CurrentMergeTable()).ValueOr({});
    if (rows.recipients) rows.count = static_cast<std::size_t>(rows.recipients->RecordCount());
    return rows;
}

void CheckWholeTable(Workbench& wb) {
    const MergeRows rows = WholeTable(wb);
    if (rows.recipients) ShowMergeCheck(wb, PartsOf(wb.forms.Get<frmViewMerge>()), rows);
}

}  // namespace mailvane
