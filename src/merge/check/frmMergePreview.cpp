#include "merge/check/frmMergePreview.h"

#include <utility>

#include "core/MessageBoxes.h"
#include "core/Waiting.h"
#include "core/run/LongRun.h"
#include "core/settings/frmSettings.h"
#include "send/message/MessageAssembly.h"

namespace mailvane {

namespace {

constexpr int TextPage = 0;
constexpr int HtmlPage = 1;
constexpr const char* FindCaption = "F&ind Next";
constexpr const char* StopCaption = "Stop S&earch";

}  // namespace

frmMergePreview::frmMergePreview(Workbench& wb)
    : WorkbenchForm(wb, "frmMergePreview", "Preview of the messages") {
    cmdFind.SetText(FindCaption);
    txtFind.onEnter = [this] { cmdFind.Press(); };
    txtBCC.SetVisible(false);
    lblProblem.SetVisible(false);
    EnableButtons();
}

void frmMergePreview::Preview(MergePlan plan) {
    preview_.emplace(wb_, std::move(plan));
    txtBCC.SetVisible(!preview_->Personal());
    EnableButtons();
    if (preview_->Count() == 0) return lblPosition.SetText("There is no message to show.");
    GoTo(0);
    tabMessage.SetCurrent(htmMessage.Text().empty() ? TextPage : HtmlPage);
}

void frmMergePreview::GoTo(std::size_t number) {
    const BusyPointer busy(wb_);
    DaoResult<MessageRecord> message = preview_->Message(number);
    if (message.Failed()) return Tell(wb_, message.Error().description, BoxIcon::Exclamation);
    number_ = number;
    lblFound.SetText("");
    ShowMessage(std::move(*message));
    EnableButtons();
}

void frmMergePreview::ShowMessage(MessageRecord message) {
    const bool addressed = HasAddress(message);
    lblProblem.SetText(addressed ? "" : "This message would not be sent: invalid e-mail address.");
    lblProblem.SetVisible(!addressed);
    lblPosition.SetText("Message " + std::to_string(number_ + 1) + " of " +
                        std::to_string(preview_->Count()) +
                        (IsHtmlMessage(message) ? ", HTML" : ", plain text"));
    ShowParts(message);
}

void frmMergePreview::ShowParts(const MessageRecord& message) {
    const auto& settings = wb_.forms.Get<frmSettings>();
    txtFrom.SetText(message.From);
    txtTo.SetText(message.To);
    txtBCC.SetText(message.BCC);
    txtSubject.SetText(message.Subject);
    txtAttach.SetText(message.Attach);
    txtText.SetText(message.Body);
    htmMessage.SetText(IsHtmlMessage(message) ? BodyText(settings, message) : std::string());
    txtSource.SetText(WireText(settings, message));
}

void frmMergePreview::EnableButtons() {
    const std::size_t count = preview_ ? preview_->Count() : 0;
    const bool backward = !searching_ && number_ > 0;
    const bool forward = !searching_ && number_ + 1 < count;
    cmdFirst.SetEnabled(backward);
    cmdPrevious.SetEnabled(backward);
    cmdNext.SetEnabled(forward);
    cmdLast.SetEnabled(forward);
    txtFind.SetEnabled(!searching_ && count > 0);
    cmdFind.SetEnabled(count > 0);
    cmdFind.SetText(searching_ ? StopCaption : FindCaption);
}

/// Starts a search, or ends the one that goes on.
void frmMergePreview::Find() {
    if (std::exchange(searching_, false)) return;
    const std::string text = txtFind.Text();
    if (text.empty()) return;
    LongRun run(wb_, {"Searching the messages", Holds::Recipients | Holds::Message});
    if (!run.Began()) return;
    searching_ = true;
    EnableButtons();
    Search(run, text);
    searching_ = false;
    if (IsLoaded()) EnableButtons();
}

void frmMergePreview::Search(LongRun& run, const std::string& text) {
    const std::string total = std::to_string(preview_->Count());
    const auto found = preview_->Find(text, number_ + 1, [&](std::size_t looked) {
        if (Windows().YieldIsDue())
            lblFound.SetText("Searching... " + std::to_string(looked) + " of " + total);
        return run.GoesOn() && searching_ && IsLoaded();
    });
    if (!IsLoaded()) return;
    const bool stopped = !std::exchange(searching_, false) || run.Cancelled();
    if (found.Failed())
        lblFound.SetText(found.Error().description);
    else if (*found)
        GoTo(**found);
    else
        lblFound.SetText(stopped ? "The search was stopped." : "'" + text + "' was not found.");
}

void ShowMergePreview(Workbench& wb, MergePlan plan) {
    auto& form = wb.forms.Get<frmMergePreview>();
    form.Preview(std::move(plan));
    ShowModalDialog(wb, form);
}

void PreviewWholeTable(Workbench& wb) {
    MergePlan plan = MakeMergePlan(wb, {});
    if (plan.recipients) ShowMergePreview(wb, std::move(plan));
}

}  // namespace mailvane
