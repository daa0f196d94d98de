#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <set>
#include <string>

#include "core/settings/frmSettings.h"
#include "platform/dao/file/Database.h"
#include "send/report/DeliveryNotes.h"
#include "send/run/SessionLog.h"
#include "send/run/frmStatusEmail.h"
#include "store/DeliveredRecipients.h"
#include "store/SentLedger.h"

namespace mailvane {

/// What one send run leaves to the next while the program runs.
struct SendMemory {
    bool dialPromptShown = false;              ///< the warning of a missing line has been shown
    AcceptedMessages unrecorded;               ///< accepted messages that the store could not note
    DeliveredRecipients unrecordedRecipients;  ///< the same for parts of messages
    std::set<std::int32_t> reported;  ///< accepted messages of the Outbox that a report counts
};

/// How a send run comes to its end.
enum class SendOutcome {
    NothingToSend,  ///< the Outbox is empty
    NotStarted,     ///< the store or its Outbox cannot be opened, which is among the errors
    Complete,       ///< every message was tried
    Cancelled,
    StoreFailed  ///< the store takes nothing any more: what it cannot record would be sent again
};

/// What the phases of one send run share: the store, the status form, and what became of the
/// messages so far.
class SendJob {
public:
    /// `memory` outlives the run.
    SendJob(Workbench& workbench, frmSettings& projectSettings, SendMemory& sendMemory);
    ~SendJob();
    SendJob(const SendJob&) = delete;
    SendJob& operator=(const SendJob&) = delete;

    void TakeStatusForm();
    void UnloadStatusForm();
    /// On the status form, when there is one, and in panel 1 of the main window.
    void ShowStatus(const std::string& text);
    void RefreshMailView();

    void AddError(const std::string& text);  ///< one text to the run's errors and the log
    /// The block of the error log for one message; `first` names the sender or nothing.
    void AddMessageError(const std::string& error, const std::string& first, const std::string& to,
                         const std::string& subject, const std::string& date);
    void NoteError(const DaoError& error);
    /// Takes accepted messages out of the Outbox; returns those that stay.
    AcceptedMessages FinishMessages(const AcceptedMessages& accepted);

    Workbench& wb;
    frmSettings& settings;
    SendMemory& memory;
    const std::string projectFolder;       ///< the run reports to the project that it began in
    std::function<void()> onStopTransfer;  ///< the work of the status form's buttons
    std::function<void()> onGiveUpMessage;
    frmStatusEmail* status = nullptr;
    std::shared_ptr<Database> store;
    SessionLog log;
    DeliveryNotes notes;
    std::int64_t count = 0;     ///< rows of the Outbox when the run began
    std::int64_t handled = 0;   ///< the progress counter
    std::int64_t left = 0;      ///< rows of the Outbox when the run ended
    std::int64_t doubtful = 0;  ///< messages whose answer was lost
    AcceptedMessages sent;
    DaoError storeFailure;
    bool partUnrecorded = false;  ///< a part of a message was taken, which could not be noted
    std::string errors;
};

}  // namespace mailvane
