#pragma once

#include <functional>

#include "core/run/LongRun.h"
#include "send/run/MessageTransfer.h"
#include "send/run/SendPreparation.h"

namespace mailvane {

/// The way through the Outbox, in table order: each row goes out, and what became of it is noted.
/// A message that was accepted is on the disk as such before the next one starts.
class OutboxWalk {
public:
    OutboxWalk(SendJob& job, OpenOutbox& outbox, MessageTransfer& transfer);

    /// Complete, Cancelled or StoreFailed.
    SendOutcome Walk(LongRun& run);

private:
    void SendCurrentMessage();
    void RecordSendResult(std::int32_t id, const std::string& error);
    DaoError NoteDelivered(const std::vector<std::string>& addresses);
    void AddErrors(const std::string& subject, const std::string& error);
    DaoError MarkFailed();
    void StepOn(const std::function<DaoError()>& noteResult, bool durable);
    void TakeUp();
    void ShowResult(const char* status);

    SendJob& job_;
    OpenOutbox& outbox_;
    MessageTransfer& transfer_;
    DateTime attempt_;                                 ///< when the message of the moment was tried
    std::string to_;                                   ///< of that message, as its row has it
    std::int32_t nextId_ = 0;                          ///< of the row that the run stands on
    DaoResult<MessageRecord> next_ = MessageRecord();  ///< and what is in it
    DaoError partFailure_;  ///< the store could not note that a part of a message was taken
};

}  // namespace mailvane
