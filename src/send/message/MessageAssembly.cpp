#include "send/message/MessageAssembly.h"

#include <algorithm>

#include "core/Paths.h"
#include "core/settings/Settings.h"
#include "core/text/Text.h"
#include "platform/net/smtp/SmtpMessage.h"
#include "platform/os/Files.h"
#include "send/message/AttachmentName.h"

namespace mailvane {

namespace {

constexpr const char* Boundary = "abcdfwefjsdvsdfg";
constexpr std::size_t ShortestAddress = 6;

bool IsHtml(const MessageRecord& record) {
    return ToLower(record.ContentType) == "html";
}

/// A value may not end its line: it would add headers of its own.
std::string OneLine(std::string value) {
    std::erase_if(value, [](char c) { return c == '\r' || c == '\n' || c == '\0'; });
    return value;
}

std::string PriorityHeaders(const std::string& priority) {
    if (priority == "1") return "X-Priority: 1\r\nX-MSMail-Priority: High";
    if (priority == "3") return "X-Priority: 3\r\nX-MSMail-Priority: Normal";
    if (priority == "5") return "X-Priority: 5\r\nX-MSMail-Priority: Low";
    return {};
}

std::string HtmlText(const frmSettings& settings, const MessageRecord& record) {
    std::string text;
    if (!record.Body.empty()) text = "---\r\n" + record.Body + "<br><br>\r\n";
    if (settings.chkAddHTMLHeader.Checked())
        text += "\r\n<!-- " + settings.txtAddHTMLHeader.Text() + " -->\r\n";
    return text + (Trim(record.HTMLCode).empty() ? ReadFileText(record.HTML) : record.HTMLCode);
}

MessageParts PartsOf(const frmSettings& settings, const MessageRecord& record) {
    MessageParts parts;
    parts.form = settings.chkStandardParts.Checked() ? MessageParts::Form::Standard
                                                     : MessageParts::Form::AsGiven;
    parts.boundary = Boundary;
    parts.opening = "This is a multi-part message in MIME format.\r\n";
    parts.textType = IsHtml(record) ? "text/html" : "text/plain";
    if (!record.HTML.empty())
        parts.textHeaders =
            "Content-Type: text/html;    charset=\"iso-8859-1\""
            "Content-Transfer-Encoding: quoted-printable";
    parts.fileType = "application/octet-stream; " + NameParameter(AttachmentName(record.Attach));
    return parts;
}

std::string AttachmentRemark(const std::string& path) {
    const std::int64_t size = FileSize(path);
    if (size < 0) return "[" + AttachmentName(path) + ": the file cannot be read]\r\n";
    return "[" + AttachmentName(path) + ": " + std::to_string(size) +
           " bytes, coded as base64]\r\n";
}

}  // namespace

bool HasAddress(MessageRecord& record) {
    record.To = Trim(record.To);
    return record.To.find('@') != std::string::npos && record.To.size() >= ShortestAddress;
}

std::string NarrowRecipient(std::string to) {
    const bool oneInBrackets = CountOccurrences(to, ",") >= 1 && CountOccurrences(to, "@") >= 1 &&
                               CountOccurrences(to, "<") == 1 && CountOccurrences(to, ">") == 1;
    return oneInBrackets ? ExtractAddress(to) : to;
}

AssembledMessage AssembleMessage(const frmSettings& settings, const MessageRecord& record) {
    AssembledMessage message;
    message.from = record.From;
    message.to = NarrowRecipient(record.To);
    message.cc = record.CC;
    message.bcc = record.BCC;
    message.subject = record.Subject;
    message.otherHeaders = BuildExtraHeaders(settings, record);
    message.text = BodyText(settings, record);
    message.leaveOutEmptyReplyTo = settings.chkStandardParts.Checked();
    if (record.Attach.empty()) return message;
    message.otherHeaders +=
        std::string("MIME-Version: 1.0\r\nContent-Type: multipart/mixed; boundary=") + Boundary +
        "\r\n";
    message.parts = PartsOf(settings, record);
    return message;
}

bool IsHtmlMessage(const MessageRecord& record) {
    return IsHtml(record) && !record.HTML.empty();
}

std::string BodyText(const frmSettings& settings, const MessageRecord& record) {
    return IsHtmlMessage(record) ? HtmlText(settings, record) : record.Body;
}

std::string BuildExtraHeaders(const frmSettings& settings, const MessageRecord& record) {
    std::string headers;
    if (settings.optIdentityDefault.IsSet())
        headers += std::string("X-Mailer: ") + ProgramTitle + " " + ProgramVersion + "\r\n";
    if (settings.optIdentityCustom.IsSet())
        headers += "X-Mailer: " + OneLine(settings.txtIdentityCustom.Text()) + "\r\n";
    if (record.Attach.empty())
        headers += IsHtml(record) ? "Content-Type: text/html; charset=us-ascii\r\n"
                                  : "Content-Type: text/plain; charset=us-ascii\r\n";
    headers += "Reply-To: " + OneLine(record.ReplyTo) + "\r\n";
    return headers + PriorityHeaders(record.Priority);
}

std::string WireText(const frmSettings& settings, const MessageRecord& record) {
    const AssembledMessage message = AssembleMessage(settings, record);
    SmtpMessage wire;
    wire.Compose({.from = message.from,
                  .sendTo = message.to,
                  .cc = message.cc,
                  .subject = message.subject,
                  .otherHeaders = message.otherHeaders,
                  .text = message.text,
                  .parts = message.parts ? &*message.parts : nullptr,
                  .leaveOutEmptyReplyTo = message.leaveOutEmptyReplyTo},
                 {.eightBit = true});
    std::string text(wire.Head());
    text += wire.Body();
    if (message.parts) text += AttachmentRemark(record.Attach);
    text += wire.Tail();
    return text;
}

}  // namespace mailvane
