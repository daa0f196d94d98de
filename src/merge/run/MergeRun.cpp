#include "merge/run/MergeRun.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "core/MessageBoxes.h"
#include "core/Waiting.h"
#include "core/run/frmStatus.h"
#include "core/settings/frmSettings.h"
#include "core/text/Text.h"

namespace mailvane {

namespace {

constexpr const char* AccessingRecords = "Accessing records, please wait...";
constexpr const char* FilteringRecords = "Filtering records, please wait...";
constexpr std::size_t MailingTableNameLength = 58;

std::string MailingTableName(const std::string& table, DateTime now) {
    std::string name = table + " " + now.Stamp();
    std::size_t length = std::min(name.size(), MailingTableNameLength);
    // No letter is cut in the middle of its bytes.
    while (length < name.size() && (static_cast<unsigned char>(name[length]) & 0xC0) == 0x80)
        --length;
    return name.substr(0, length);
}

}  // namespace

MergeRun::MergeRun(Workbench& wb, frmMerge& dialog)
    : wb_(wb),
      dialog_(dialog),
      view_(wb.forms.Get<frmViewDatabase>()),
      message_(wb.forms.Get<frmViewMerge>()) {}

void MergeRun::Start() {
    if (!CheckOptions()) return;
    CopySettings();
    Begin();
    OpenRecipients();
    if (!Narrow()) return FinishMergeRun();
    ShowPanel("");
    wb_.platform.windows.SetPointer(MousePointer::ArrowBusy);
    const Outcome outcome = GenerateMessages();
    FinishMergeRun();
    if (outcome == Outcome::Complete) HandOver();
    if (outcome == Outcome::Cancelled) {
        AskToDelete();
        dialog_.Unload();
    }
}

bool MergeRun::AskToProceed(const std::string& text, BoxIcon icon) {
    return AskYesNo(wb_, text + "\r\nDo you want to proceed anyway?", icon);
}

bool MergeRun::IsBelowOneOrNoNumber(const std::string& text) {
    return !IsNumeric(text) || NumberOf(text) < 1;
}

bool MergeRun::CheckOptions() {
    return CheckDateColumn() && CheckMaximum() && CheckRange();
}

bool MergeRun::CheckDateColumn() {
    if (!dialog_.chkDate.Checked() || dialog_.DateColumnChosen()) return true;
    dialog_.chkDate.SetChecked(false);
    return AskToProceed("Your database field '" + dialog_.cmbField.Text() +
                        "' is not a date data type field. \r\n"
                        "You can use this criteria only with date data type fields.");
}

bool MergeRun::CheckMaximum() {
    if (!dialog_.chkMax.Checked()) return true;
    dialog_.txtMax.SetText(Trim(dialog_.txtMax.Text()));
    const std::string value = dialog_.txtMax.Text();
    if (!IsBelowOneOrNoNumber(value)) return true;
    dialog_.chkMax.SetChecked(false);
    return AskToProceed("'Maximum number of messages' text box contains invalid value: '" + value +
                        "'.");
}

bool MergeRun::CheckRange() {
    if (!dialog_.chkFractional.Checked()) return true;
    for (TextBox* field : {&dialog_.txtFractional1, &dialog_.txtFractional2})
        field->SetText(Trim(field->Text()));
    const std::string first = dialog_.txtFractional1.Text();
    const std::string second = dialog_.txtFractional2.Text();
    if (!IsBelowOneOrNoNumber(first) && !IsBelowOneOrNoNumber(second) &&
        NumberOf(first) <= NumberOf(second))
        return true;
    dialog_.chkFractional.SetChecked(false);
    return AskToProceed("Invalid range of rows for fractional sending: " + RangeText());
}

std::string MergeRun::RangeText() const {
    return "'from " + dialog_.txtFractional1.Text() + " to " + dialog_.txtFractional2.Text() + "'.";
}

void MergeRun::CopySettings() {
    frmSettings& settings = wb_.forms.Get<frmSettings>();
    settings.txtSMTPServer.SetText(dialog_.txtSMTPServer.Text());
    settings.txtSMTPPort.SetText(dialog_.txtSMTPPort.Text());
    settings.chkServer.SetChecked(dialog_.chkServer.Checked());
    settings.chkSaveSentMessages.SetChecked(dialog_.chkSaveSentMessages.Checked());
}

void MergeRun::Begin() {
    message_.Grid1.SetRedraw(false);
    view_.Grid1.SetRedraw(false);
    message_.SetRunning(true);
    dialog_.cmdStart.SetEnabled(false);
    wb_.state.CancelRequested = false;
    if (const auto shown = view_.Data1.Recordset()) {
        const auto bookmark = shown->GetBookmark();
        if (bookmark.Ok()) savedBookmark_ = *bookmark;
    }
    wb_.platform.windows.SetPointer(MousePointer::Busy);
    table_ = view_.Data1.CurrentTable();
    mailingTable_ = MailingTableName(table_, wb_.platform.clock.Now());
}

/// A table that cannot be opened leaves no recipients and a total of 0.
void MergeRun::OpenRecipients() {
    ShowPreparing(wb_, AccessingRecords);
    ShowPanel(AccessingRecords);
    database_ = view_.Data1.Database();
    if (database_) {
        const auto opened = database_->OpenRecordset(dialog_.RecipientsSource(table_));
        if (opened.Ok()) recipients_ = *opened;
    }
    if (recipients_) total_ = recipients_->RecordCount();
    EndPreparing(wb_);
}

bool MergeRun::Narrow() {
    if (recipients_ && dialog_.chkDate.Checked() && !NarrowByDate()) return false;
    if (recipients_ && dialog_.chkFractional.Checked() && !NarrowByRows()) return false;
    if (total_ == 0)
        return RefuseStart(
            "This message cannot be sent. You don't have any records.\r\n"
            "Choose another table or select another date range.");
    return dialog_.IsLoaded();
}

/// Dates that cannot be compared select nobody, rather than everybody.
bool MergeRun::NarrowByDate() {
    ShowPanel(FilteringRecords);
    recipients_->SetFilter(dialog_.DateFilter());
    const auto filtered = recipients_->OpenFiltered();
    recipients_ = filtered.Ok() ? *filtered : nullptr;
    total_ = recipients_ ? recipients_->RecordCount() : 0;
    if (total_ > 0) return true;
    return RefuseStart(
        "This message cannot be sent. \r\nChoose another table or select another date range.");
}

bool MergeRun::NarrowByRows() {
    ShowPanel(FilteringRecords);
    firstRow_ = dialog_.FirstRow();
    total_ = dialog_.LastRow() - firstRow_ + 1;
    SkipRows(firstRow_ - 1);
    if (total_ >= 1) return true;
    return RefuseStart(
        "This message can't be sent. Invalid range of rows for fractional sending: " + RangeText() +
        "\r\nChoose another table or select another range.");
}

bool MergeRun::RefuseStart(const std::string& text) {
    wb_.platform.windows.SetPointer(MousePointer::Normal);
    Tell(wb_, text, BoxIcon::Exclamation);
    return false;
}

void MergeRun::SkipRows(std::int64_t count) {
    // A failed step leaves the position past the end, which the next message then meets.
    recipients_->MoveFirst().Ignore();
    for (std::int64_t i = 0; i < count && !recipients_->EndOfFile(); ++i) {
        recipients_->MoveNext().Ignore();
        YieldBriefly(wb_);
    }
}

void MergeRun::ShowPanel(const std::string& text) {
    if (wb_.shell) wb_.shell->SetPanel(text);
}

}  // namespace mailvane
