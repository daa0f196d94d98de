#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "core/settings/frmSettings.h"
#include "platform/net/smtp/SmtpClient.h"
#include "send/message/OutgoingMessage.h"
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

/// One send run: takes every row of the Outbox, in table order, through BuildOutgoingMessage,
/// records what became of it, moves the good ones out, and reports. Runs on the one thread; buttons
/// and events arrive while a message goes out, as flags and actions of the transfer component.
///
/// Forms that are unloaded under it stay in memory until the program is idle, so that the run only
/// has to notice, and ends as if it had been cancelled.
class SendRun {
public:
    /// `memory` outlives the run.
    SendRun(Workbench& wb, frmSettings& settings, SendMemory& memory);
    ~SendRun();
    SendRun(const SendRun&) = delete;
    SendRun& operator=(const SendRun&) = delete;

    void SendAll();

private:
    // Preparation.
    bool Open();
    void FinishInterruptedRun();
    bool PrepareSendList();
    void FillMessageList(const Recordset& list);
    void TakeStatusForm();
    bool OpenOutbox();
    DaoError OpenLedgers();
    void OfferToEmptySentItems();
    void StartLog();
    void ResetRetries();

    // One message.
    bool WalkOutbox();
    void SendCurrentMessage(std::size_t row);
    void RecordSendResult(std::int32_t id, const std::string& error, std::size_t row);
    DaoError NoteDelivered(const std::vector<std::string>& addresses);
    void NoteRefusedRecipients();
    void NoteOutcome(const MessageRecord& record, const std::string& error);
    DaoError MarkFailed();
    void StepOn(const std::function<DaoError()>& noteResult, bool durable);
    void TakeUp();

    // The end.
    bool CheckCancel();
    void StopForStore();
    void RemoveSentMessages();
    AcceptedMessages FinishMessages(const AcceptedMessages& accepted);
    void DeleteUndeliverables();
    void HangUp();
    void FinishEmptyRun();
    void FinishSendRun();
    void ReportDelivery(std::int64_t left);
    void ReportErrors();
    void RefreshMailView();

    // Events of the transfer component.
    void OnSmtpError(int code, const std::string& description);
    void OnProtocol(Direction direction, const std::string& text);
    void NoteActivity();
    void Yield();

    void ShowStatus(const std::string& text);
    void LeaveStatusForm();
    void UnloadStatus();
    void AddError(const std::string& text);  ///< one text to the run's errors and the log
    void NoteError(const DaoError& error);
    bool Interrupted() const;

    /// What the error log says of a message, as its row has it.
    struct Addressed {
        std::string from;
        std::string to;
        std::string subject;
    };

    Workbench& wb_;
    frmSettings& settings_;
    SendMemory& memory_;
    const std::string projectFolder_;  ///< the run reports to the project that it began in
    frmStatusEmail* status_ = nullptr;
    SmtpClient smtp_;
    OutgoingMessage outgoing_;
    SessionLog log_;
    DeliveryNotes notes_;
    std::shared_ptr<Database> database_;
    std::shared_ptr<Recordset> outbox_;
    std::shared_ptr<Recordset> ledger_;
    DaoError storeFailure_;                            ///< the store takes nothing any more
    std::int64_t count_ = 0;                           ///< rows of the Outbox when the run began
    std::int64_t handled_ = 0;                         ///< the progress counter
    bool sending_ = false;                             ///< a message is with the transfer component
    Addressed current_;                                ///< the message of the moment
    DateTime attempt_;                                 ///< when it was tried
    std::int32_t nextId_ = 0;                          ///< of the row that the run stands on
    DaoResult<MessageRecord> next_ = MessageRecord();  ///< and what is in it
    AcceptedMessages sent_;
    AcceptedMessages acceptedBefore_;  ///< an earlier run could not take these out
    DeliveredRecipients deliveredBefore_;
    DaoError partFailure_;       ///< the store could not note that a part of a message was taken
    std::int64_t doubtful_ = 0;  ///< messages whose answer was lost
    std::string errors_;
};

}  // namespace mailvane
