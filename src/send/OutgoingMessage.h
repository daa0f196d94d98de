#pragma once

#include <string>

#include "core/frmSettings.h"
#include "platform/net/SmtpClient.h"
#include "store/MessageRecord.h"

namespace mailvane {

/// Turns Outbox rows into settings of the mail transfer component and sends them, with the
/// project's settings. One per run: it remembers whether the logon of the run has been made, and
/// keeps the coded attachment of the message of the moment.
class OutgoingMessage {
public:
    OutgoingMessage(Workbench& wb, frmSettings& settings, SmtpClient& smtp);
    ~OutgoingMessage();
    OutgoingMessage(const OutgoingMessage&) = delete;
    OutgoingMessage& operator=(const OutgoingMessage&) = delete;

    /// Sends one message. "" when it was accepted, else the error text. `record` is changed on the
    /// way as the wire form needs it.
    std::string BuildOutgoingMessage(MessageRecord& record);
    /// The last line has no line end when there is a priority.
    std::string BuildExtraHeaders(const MessageRecord& record) const;
    /// Base64 of a short text, without a line end.
    static std::string Base64Line(const std::string& text);

    bool FirstMessage = true;

private:
    void TakeConnectionSettings();
    void TakeMessage(const MessageRecord& record);
    void AddHtml(MessageRecord& record) const;
    NetError AddAttachment(const MessageRecord& record);
    NetError LogOn();
    std::string EncodedFile() const;

    Workbench& wb_;
    frmSettings& settings_;
    SmtpClient& smtp_;
};

}  // namespace mailvane
