#pragma once

#include <chrono>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "platform/net/smtp/SmtpClient.h"
#include "send/message/OutgoingMessage.h"
#include "send/run/SendJob.h"

namespace mailvane {

/// The way of a run's messages to the server, one at a time. Its events go to the status form, the
/// session log and the run's errors; buttons may stop it from inside its waits.
class MessageTransfer {
public:
    explicit MessageTransfer(SendJob& job);
    MessageTransfer(const MessageTransfer&) = delete;
    MessageTransfer& operator=(const MessageTransfer&) = delete;

    /// "" when the message was accepted, else the error text. The blanks around the To line of
    /// `record` are taken away. Addresses that have the message already get it no more.
    std::string Send(MessageRecord& record, const std::set<std::string>& deliveredBefore);
    /// Of the last message: addresses refused while it was taken for others.
    const std::vector<RefusedRecipient>& Refused() const { return outgoing_.RefusedRecipients(); }
    /// The same, and with `all` the answers that each recipient got when nobody took the message.
    std::vector<RefusedRecipient> Refusals(bool all) const;

    /// Ends the transfer of the moment and the connection.
    void Stop();
    /// The same, with a few seconds for the message of the moment: what a server has taken without
    /// having said so would be sent again.
    void StopSoon();
    /// The same, so that the run goes on with the next message.
    void GiveUpMessage();
    void Disconnect();
    void Yield();

    /// Of a part of the message of the moment, as DirectDelivery tells it.
    DirectDelivery::NoteDelivered onDelivered;

private:
    void OnError(int code, const std::string& description);
    void OnProtocol(Direction direction, const std::string& text);
    void NoteActivity();

    SendJob& job_;
    SmtpClient smtp_;
    OutgoingMessage outgoing_;
    MessageRecord current_;  ///< what the error log says of the message of the moment
    bool sending_ = false;
    std::optional<std::chrono::milliseconds> stopAt_;
};

}  // namespace mailvane
