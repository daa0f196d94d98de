#include "database/exchange/frmDatabasePrint.h"

#include "database/exchange/TablePrint.h"
#include "database/view/frmViewDatabase.h"

namespace mailvane {

namespace {

constexpr const char* PageNumber = "Page number";
constexpr const char* DateTimeLine = "Date time";
constexpr PrintLines GridLines[] = {PrintLines::ColumnHeaders, PrintLines::Rows, PrintLines::All};

}  // namespace

frmDatabasePrint::frmDatabasePrint(Workbench& wb) : WorkbenchForm(wb, "frmDatabasePrint", "Print") {
    for (ComboBox* line : {&cmbHeader, &cmbFooter})
        line->SetItems({PageNumber, DateTimeLine});
    cmbHeader.SetText(PageNumber);
    cmbFooter.SetText(DateTimeLine);
    cmbGrid.SetItems(
        {"Borders around column headers", "Borders around data cells (rows)", "All grid lines"});
    cmbGrid.SetListIndex(0);
}

std::string frmDatabasePrint::LineText(const CheckBox& shown, const ComboBox& kind) const {
    if (!shown.Checked()) return {};
    if (kind.Text() == PageNumber) return "Page " + std::string(PageNumberMark);
    const DateTime now = wb_.platform.clock.Now();
    return "Printed " + now.ShortDate() + " " + now.LongTime();
}

void frmDatabasePrint::Print(bool preview) {
    auto* view = wb_.forms.Find<frmViewDatabase>();
    if (!view) return;
    PrintKind kind = PrintKind::CurrentRow;
    if (optPrint1.IsSet()) kind = PrintKind::AllRows;
    if (optPrint2.IsSet()) kind = PrintKind::NonSelectedRows;
    if (optPrint3.IsSet()) kind = PrintKind::SelectedRows;
    PrintJob job = PrintJobOf(view->Grid1, kind);
    job.title = view->Data1.CurrentTable();
    job.header = LineText(chkHeader, cmbHeader);
    job.footer = LineText(chkFooter, cmbFooter);
    if (chkGrid.Checked()) job.lines = GridLines[std::max(cmbGrid.ListIndex(), 0)];
    job.colors = chkColors.Checked();
    job.pageSetup = chkSetup.Checked();
    job.printDialog = chkPrint.Checked();
    job.preview = preview;
    if (RunPrint(wb_, job)) Unload();
}

}  // namespace mailvane
