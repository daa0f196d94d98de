#pragma once

#include <optional>
#include <string>

#include "core/settings/frmSettings.h"
#include "platform/net/mime/MessageParts.h"
#include "store/MessageRecord.h"

namespace mailvane {

/// The parts of one message as the mail transfer component takes them.
struct AssembledMessage {
    std::string from;
    std::string to;
    std::string cc;
    std::string bcc;
    std::string subject;
    std::string otherHeaders;
    std::string text;
    std::optional<MessageParts> parts;  ///< with an attachment; its coded file is not made yet
    bool leaveOutEmptyReplyTo = false;
};

/// Whether a To line could hold an address; the blanks around it are taken away.
bool HasAddress(MessageRecord& record);

/// The To line as the envelope takes it: a display name with a comma in it is no list, and only the
/// address between the brackets stays.
std::string NarrowRecipient(std::string to);

/// Assembles a row of the Outbox with the project's settings. Reads only; an attachment is not
/// looked at.
AssembledMessage AssembleMessage(const frmSettings& settings, const MessageRecord& record);

/// Whether the text of the message is HTML.
bool IsHtmlMessage(const MessageRecord& record);
/// The text of the message as its reader gets it, without the attachment.
std::string BodyText(const frmSettings& settings, const MessageRecord& record);

/// The last line has no line end when there is a priority.
std::string BuildExtraHeaders(const frmSettings& settings, const MessageRecord& record);

/// The whole message as it would go to a server now, with a line that names the attachment in place
/// of its coded bytes.
std::string WireText(const frmSettings& settings, const MessageRecord& record);

}  // namespace mailvane
