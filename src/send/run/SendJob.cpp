#include "send/run/SendJob.h"

#include "core/Waiting.h"
#include "send/run/SentMessages.h"
#include "store/view/frmViewEmail.h"

namespace mailvane {

namespace {

constexpr const char* LineEnd = "\r\n";

}  // namespace

SendJob::SendJob(Workbench& workbench, frmSettings& projectSettings, SendMemory& sendMemory)
    : wb(workbench),
      settings(projectSettings),
      memory(sendMemory),
      projectFolder(workbench.state.ProjectFolder),
      notes(workbench.platform.clock.Now()) {}

SendJob::~SendJob() {
    UnloadStatusForm();
}

void SendJob::TakeStatusForm() {
    status = &wb.forms.Get<frmStatusEmail>();
    status->onStopTransfer = onStopTransfer;
    status->onGiveUpMessage = onGiveUpMessage;
}

void SendJob::UnloadStatusForm() {
    frmStatusEmail* form = std::exchange(status, nullptr);
    if (!form) return;
    form->onStopTransfer = nullptr;
    form->onGiveUpMessage = nullptr;
    form->Unload();
}

void SendJob::ShowStatus(const std::string& text) {
    if (status)
        status->ShowStatus(text);
    else if (wb.shell)
        wb.shell->SetPanel(text);
}

void SendJob::RefreshMailView() {
    frmViewEmail* view = wb.forms.Find<frmViewEmail>();
    if (!view) return;
    view->cmdRefresh.Press();
    view->EmailGrid.RowsChanged();
}

void SendJob::AddError(const std::string& text) {
    errors += text;
    log.Print(text);
}

void SendJob::AddMessageError(const std::string& error, const std::string& first,
                              const std::string& to, const std::string& subject,
                              const std::string& date) {
    AddError("Error: " + error + LineEnd + first + "To: " + to + LineEnd + "Subject: " + subject +
             LineEnd + "Date: " + date + LineEnd + LineEnd);
}

void SendJob::NoteError(const DaoError& error) {
    if (error.Failed() && error.number != dao_error::NoCurrentRecord)
        AddError("Error: " + error.description + LineEnd);
}

AcceptedMessages SendJob::FinishMessages(const AcceptedMessages& accepted) {
    AcceptedMessages unfinished = FinishSentMessages(
        wb, accepted, settings.chkSaveSentMessages.Checked(), [this] { YieldBriefly(wb); },
        [this](const DaoError& error) { NoteError(error); });
    for (const auto& [id, attempt] : accepted) {
        if (unfinished.contains(id)) continue;
        memory.unrecorded.erase(id);
        memory.unrecordedRecipients.erase(id);
        memory.reported.erase(id);
    }
    return unfinished;
}

}  // namespace mailvane
