#include "send/run/frmStatusEmail.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "core/settings/Settings.h"
#include "core/settings/frmSettings.h"
#include "core/text/Text.h"

namespace mailvane {

namespace {

constexpr std::size_t StatusColumn = 3;
constexpr std::size_t MostLines = 30001;     ///< the line that comes when there are 30000 stays
constexpr std::size_t ShortProtocol = 1000;  ///< a list of so many lines is drawn at any time
constexpr std::chrono::milliseconds ProtocolInterval{250};
constexpr double DetailsHeight = 3000;  ///< twips
constexpr long SecondsOfDay = 24 * 60 * 60;

std::string StatusIcon(const std::string& status) {
    const std::string word = ToLower(status);
    if (word.starts_with("error")) return "dialog-error";
    if (word == "success") return "dialog-ok-apply";
    if (word.empty() || word == "add") return "appointment-new";
    return "media-playback-start";
}

std::vector<GridColumn> MessageColumns() {
    return {{.name = "Subject", .caption = "Subject", .width = 3600, .position = 0},
            {.name = "Recipient", .caption = "To", .width = 2700, .position = 1},
            {.name = "Sender", .caption = "From", .width = 2700, .position = 2},
            {.name = "Status", .caption = "Status", .width = 1500, .position = 3}};
}

}  // namespace

long SecondsSinceMidnight(const DateTime& time) {
    return time.Hour() * 3600L + time.Minute() * 60L + time.Second();
}

frmStatusEmail::frmStatusEmail(Workbench& wb)
    : WorkbenchForm(wb, "frmStatusEmail", SendingCaption) {
    lMessages.SetColumns(MessageColumns());
    List1.SetVisible(false);
}

void frmStatusEmail::OnLoad() {
    LoadGridLayout(lMessages, LayoutPath());
    Timer1.Start();
}

void frmStatusEmail::OnUnload() {
    SaveGridLayout(lMessages, LayoutPath());
}

std::string frmStatusEmail::LayoutPath() const {
    return wb_.platform.programFolder + "/estgd.lyt";
}

void frmStatusEmail::ShowStatus(const std::string& text) {
    lStatus.SetText(text);
    if (wb_.shell) wb_.shell->SetPanel(text);
}

// --- messages ---------------------------------------------------------------------------------

void frmStatusEmail::ClearMessages() {
    messages_ = std::make_shared<GridTable>();
    lMessages.SetRows(messages_);
}

void frmStatusEmail::AddMessage(std::string subject, std::string recipient, std::string sender) {
    messages_->rows.push_back({std::move(subject), std::move(recipient), std::move(sender), "add"});
    messages_->icons.push_back(StatusIcon("add"));
}

void frmStatusEmail::ShowMessages() {
    lMessages.RowsChanged();
    if (lMessages.RowCount() > 0) lMessages.SetCurrentRow(0);
}

void frmStatusEmail::SetMessageStatus(std::size_t row, const std::string& status) {
    if (row >= messages_->rows.size()) return;
    messages_->rows[row][StatusColumn] = status;
    messages_->icons[row] = StatusIcon(status);
    lMessages.SetCurrentRow(row);
    lMessages.RowChanged(row);
}

// --- conversation -----------------------------------------------------------------------------

void frmStatusEmail::AddProtocolLine(std::string line) {
    newLines_.push_back(std::move(line));
    if (newLines_.size() >= MostLines) ShowProtocol();
}

void frmStatusEmail::ShowProtocolWhenDue() {
    const auto passed = wb_.platform.clock.Monotonic() - protocolShown_;
    if (List1.Items().size() < ShortProtocol || passed >= ProtocolInterval) ShowProtocol();
}

void frmStatusEmail::ShowProtocol() {
    protocolShown_ = wb_.platform.clock.Monotonic();
    if (newLines_.empty()) return;
    const std::vector<std::string>& old = List1.Items();
    const std::size_t sum = old.size() + newLines_.size();
    const std::size_t dropped = sum > MostLines ? std::min(sum - MostLines, old.size()) : 0;
    std::vector<std::string> lines(old.begin() + static_cast<std::ptrdiff_t>(dropped), old.end());
    std::move(newLines_.begin(), newLines_.end(), std::back_inserter(lines));
    newLines_.clear();
    List1.SetItems(std::move(lines));
    List1.SetListIndex(List1.Count() - 1);
}

// --- buttons ----------------------------------------------------------------------------------

void frmStatusEmail::ToggleDetails() {
    const bool shown = !List1.Visible();
    ShowProtocol();
    List1.SetVisible(shown);
    cmdDetails.SetText(shown ? "<< &Details" : "&Details >>");
    FormRect rect = Rect();
    if (rect.height < 0) return;
    rect.height += shown ? DetailsHeight : -DetailsHeight;
    SetRect(rect);
}

void frmStatusEmail::GiveUpMessage() {
    if (onGiveUpMessage) onGiveUpMessage();
}

void frmStatusEmail::Cancel() {
    if (onStopTransfer) onStopTransfer();
    wb_.state.CancelRequested = true;
}

void frmStatusEmail::OnCloseBox() {
    cmdCancel.Press();
    wb_.state.CancelRequested = true;
    Hide();
}

/// Gives a message up when the server has been silent for the time that the settings allow.
void frmStatusEmail::CheckSilence() {
    const frmSettings* settings = wb_.forms.Find<frmSettings>();
    if (!settings || !settings->chkSndTimeOut.Checked() || Caption() != SendingCaption) return;
    const DateTime now = wb_.platform.clock.Now();
    long silent = SecondsSinceMidnight(now) - wb_.state.LastSmtpActivity;
    if (silent < 0) silent += SecondsOfDay;  // midnight has passed
    if (silent >= settings->Slider1.Value() * 60L) cmdNext.Press();
}

}  // namespace mailvane
