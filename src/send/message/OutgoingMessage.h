#pragma once

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "connection/Logon.h"
#include "connection/ProjectAccounts.h"
#include "core/settings/frmSettings.h"
#include "platform/net/smtp/SmtpClient.h"
#include "send/direct/DirectDelivery.h"
#include "send/message/MessageAssembly.h"
#include "store/MessageRecord.h"

namespace mailvane {

/// Turns Outbox rows into settings of the mail transfer component and sends them, with the
/// project's settings. One per run: it remembers what became of the run's logon, and keeps the
/// coded attachment of the message of the moment.
class OutgoingMessage {
public:
    OutgoingMessage(Workbench& wb, frmSettings& settings, SmtpClient& smtp);
    ~OutgoingMessage();
    OutgoingMessage(const OutgoingMessage&) = delete;
    OutgoingMessage& operator=(const OutgoingMessage&) = delete;

    /// Sends one message. "" when it was accepted, else the error text. The blanks around the To
    /// line of `record` are taken away.
    std::string BuildOutgoingMessage(MessageRecord& record);
    /// Ends BuildOutgoingMessage from inside its waits.
    void GiveUp();
    /// Of the last message: addresses that were refused while it was taken for others.
    const std::vector<RefusedRecipient>& RefusedRecipients() const { return refused_; }
    /// The error text of a failure: what a server refuses after a failed logon is put down to that.
    std::string ErrorText(const NetError& error) const;

    bool FirstMessage = true;               ///< the logon of the run is still to be made
    std::set<std::string> DeliveredBefore;  ///< addresses that have the next message already
    /// Of a part of the present message, as DirectDelivery tells it.
    DirectDelivery::NoteDelivered OnDelivered = [](const auto&) { return true; };

private:
    void TakeConnectionSettings();
    void TakeMessage(AssembledMessage message);
    NetError EncodeAttachment(const std::string& path);
    bool LeaveOutDelivered();
    NetError Deliver();
    NetError LogOn();
    std::string EncodedFile() const;

    Workbench& wb_;
    frmSettings& settings_;
    SmtpClient& smtp_;
    const ProjectAccounts accounts_;
    LogonData logon_;                         ///< of the run, once it was asked for
    std::unique_ptr<DirectDelivery> direct_;  ///< made for the first message that goes so
    std::vector<RefusedRecipient> refused_;
    std::string logonFailure_;  ///< why the run's logon failed
};

}  // namespace mailvane
