#include "send/OutgoingMessage.h"

#include <algorithm>
#include <fstream>

#include "connection/ConnectionService.h"
#include "core/Paths.h"
#include "core/Settings.h"
#include "core/Text.h"
#include "platform/net/Base64.h"
#include "platform/net/NetCode.h"
#include "platform/os/Files.h"
#include "send/AttachmentName.h"

namespace mailvane {

namespace {

constexpr const char* Boundary = "abcdfwefjsdvsdfg";
constexpr std::size_t ShortestAddress = 6;
constexpr double LargestPort = 65535;
constexpr int AuthenticationRequired = 530;  ///< RFC 4954 section 6

bool IsHtml(const MessageRecord& record) {
    return ToLower(record.ContentType) == "html";
}

/// A value may not end its line: it would add headers of its own.
std::string OneLine(std::string value) {
    std::erase_if(value, [](char c) { return c == '\r' || c == '\n' || c == '\0'; });
    return value;
}

/// A display name with a comma in it is no list: only the address between the brackets stays.
std::string NarrowRecipient(std::string to) {
    const bool oneInBrackets = CountOccurrences(to, ",") >= 1 && CountOccurrences(to, "@") >= 1 &&
                               CountOccurrences(to, "<") == 1 && CountOccurrences(to, ">") == 1;
    return oneInBrackets ? ExtractAddress(to) : to;
}

std::string PriorityHeaders(const std::string& priority) {
    if (priority == "1") return "X-Priority: 1\r\nX-MSMail-Priority: High";
    if (priority == "3") return "X-Priority: 3\r\nX-MSMail-Priority: Normal";
    if (priority == "5") return "X-Priority: 5\r\nX-MSMail-Priority: Low";
    return {};
}

bool AppendLine(const std::string& path, const std::string& line) {
    std::ofstream file(path, std::ios::binary | std::ios::app);
    file << line << "\r\n" << std::flush;
    return file.good();
}

std::string MultipartText(const MessageRecord& record, const std::string& text) {
    const std::string delimiter = std::string("--") + Boundary + "\r\n";
    std::string multipart = "This is a multi-part message in MIME format.\r\n" + delimiter;
    if (!record.HTML.empty())
        multipart +=
            "Content-Type: text/html;    charset=\"iso-8859-1\""
            "Content-Transfer-Encoding: quoted-printable";
    multipart += "\r\n" + text + "\r\n" + delimiter;
    multipart += "Content-Type: application/octet-stream; " +
                 NameParameter(AttachmentName(record.Attach)) +
                 "\r\nContent-Transfer-Encoding: base64\r\n\r\n";
    return multipart;
}

}  // namespace

OutgoingMessage::OutgoingMessage(Workbench& wb, frmSettings& settings, SmtpClient& smtp)
    : wb_(wb), settings_(settings), smtp_(smtp), certificateAuthorities_(TrustedAuthorities(wb)) {}

OutgoingMessage::~OutgoingMessage() {
    DeleteFile(EncodedFile());
}

std::string OutgoingMessage::EncodedFile() const {
    return wb_.platform.programFolder + "/_dsmail.tmp";
}

std::string OutgoingMessage::BuildOutgoingMessage(MessageRecord& record) {
    refused_.clear();
    record.To = Trim(record.To);
    if (record.To.find('@') == std::string::npos || record.To.size() < ShortestAddress)
        return "Invalid e-mail address.";
    TakeConnectionSettings();
    record.To = NarrowRecipient(std::move(record.To));
    TakeMessage(record);
    if (IsHtml(record) && !record.HTML.empty()) {
        AddHtml(record);
        smtp_.MessageText = record.Body;
    }
    if (!record.Attach.empty())
        if (NetError failed = AddAttachment(record); failed.Failed()) return failed.description;
    if (!LeaveOutDelivered()) return {};
    const NetError outcome = Deliver();
    return outcome.Ok() ? std::string() : ErrorText(outcome);
}

void OutgoingMessage::GiveUp() {
    if (direct_)
        direct_->GiveUp();
    else
        smtp_.SetAction(SmtpClient::Action::Idle).Ignore();
}

std::string OutgoingMessage::ErrorText(const NetError& error) const {
    const bool refusal = error.code >= 400 && error.description != logonFailure_;
    if (logonFailure_.empty() || !refusal) return error.description;
    if (error.code == AuthenticationRequired) return logonFailure_;
    return error.description + " (" + logonFailure_ + ")";
}

void OutgoingMessage::TakeConnectionSettings() {
    smtp_.SetAction(SmtpClient::Action::Reset).Ignore();
    if (!IsNumeric(settings_.txtSMTPPort.Text())) settings_.txtSMTPPort.SetText("25");
    smtp_.MailPort =
        static_cast<int>(std::clamp(NumberOf(settings_.txtSMTPPort.Text()), 0.0, LargestPort));
    smtp_.ConnectionSecurity =
        static_cast<Security>(std::max(settings_.cmbSMTPSecurity.ListIndex(), 0));
    smtp_.VerifyCertificate = settings_.chkSMTPVerify.Checked();
    smtp_.CertificateAuthorities = certificateAuthorities_;
}

void OutgoingMessage::TakeMessage(const MessageRecord& record) {
    smtp_.From = record.From;
    smtp_.SendTo = record.To;
    smtp_.Cc = record.CC;
    smtp_.BCc = record.BCC;
    smtp_.Subject = record.Subject;
    smtp_.MessageText = record.Body;
    smtp_.OtherHeaders = BuildExtraHeaders(record);
}

void OutgoingMessage::AddHtml(MessageRecord& record) const {
    std::string& body = record.Body;
    if (!body.empty()) body = "---\r\n" + body + "<br><br>\r\n";
    if (settings_.chkAddHTMLHeader.Checked())
        body += "\r\n<!-- " + settings_.txtAddHTMLHeader.Text() + " -->\r\n";
    body += Trim(record.HTMLCode).empty() ? ReadFileText(record.HTML) : record.HTMLCode;
}

NetError OutgoingMessage::AddAttachment(const MessageRecord& record) {
    smtp_.OtherHeaders +=
        std::string("MIME-Version: 1.0\r\nContent-Type: multipart/mixed; boundary=") + Boundary +
        "\r\n";
    NetCode coder;
    coder.DecodedFile = record.Attach;
    coder.CodeFormat = NetCode::Format::Base64;
    coder.EncodedFile = EncodedFile();
    coder.Overwrite = true;
    if (NetError failed = coder.SetAction(NetCode::Action::Encode); failed.Failed()) return failed;
    if (!AppendLine(EncodedFile(), std::string("--") + Boundary + "--"))
        return {net_error::FileUnwritable, "Cannot write the file '" + EncodedFile() + "'."};
    smtp_.AttachedFile = EncodedFile();
    smtp_.MessageText = MultipartText(record, smtp_.MessageText);
    return {};
}

/// False when nobody is left to get the message.
bool OutgoingMessage::LeaveOutDelivered() {
    if (DeliveredBefore.empty()) return true;
    smtp_.Recipients = smtp_.EnvelopeRecipients();
    std::erase_if(smtp_.Recipients,
                  [this](const std::string& address) { return DeliveredBefore.contains(address); });
    return !smtp_.Recipients.empty();
}

NetError OutgoingMessage::Deliver() {
    if (settings_.chkServer.Checked()) {
        if (!direct_) direct_ = std::make_unique<DirectDelivery>(wb_, smtp_);
        NetError outcome = direct_->Deliver(smtp_.EnvelopeRecipients(), OnDelivered);
        refused_ = direct_->RefusedRecipients();
        return outcome;
    }
    if (NetError failed = LogOn(); failed.Failed()) return failed;
    NetError outcome = smtp_.SetAction(SmtpClient::Action::Send);
    if (outcome.Ok()) refused_ = smtp_.RefusedRecipients();
    return outcome;
}

/// Once a run: a wrong password that is tried again and again locks the account.
NetError OutgoingMessage::LogOn() {
    if (!settings_.chkSMTPAuth.Checked() || !FirstMessage) return {};
    FirstMessage = false;
    const LogonData logon = ReadLogon(wb_);
    if (logon.user.empty() || logon.password.empty()) return {};
    if (NetError failed = smtp_.SetAction(SmtpClient::Action::Connect); failed.Failed()) {
        FirstMessage = true;  // the server has not been asked
        return failed;
    }
    NetError failed = TellLogon(logon);
    if (failed.Failed())
        failed.description = logonFailure_ = "The logon failed: " + failed.description;
    return failed;
}

NetError OutgoingMessage::TellLogon(const LogonData& logon) {
    const bool safe = smtp_.IsSecured() || smtp_.IsLocalPeer();
    // Asked for before the logon begins: a server left in the middle of one takes the next line
    // for a password.
    if (!safe && smtp_.ConnectionSecurity != Security::None)
        return {net_error::LogonImpossible,
                "The password was not sent, because the connection to the server is not secured."};
    if (NetError failed = smtp_.Command("AUTH LOGIN"); failed.Failed()) return failed;
    if (NetError failed = smtp_.Command(Base64Line(logon.user)); failed.Failed()) return failed;
    return smtp_.Command(Base64Line(logon.password), true);
}

std::string OutgoingMessage::BuildExtraHeaders(const MessageRecord& record) const {
    std::string headers;
    if (settings_.optIdentityDefault.IsSet())
        headers += std::string("X-Mailer: ") + ProgramTitle + " " + ProgramVersion + "\r\n";
    if (settings_.optIdentityCustom.IsSet())
        headers += "X-Mailer: " + OneLine(settings_.txtIdentityCustom.Text()) + "\r\n";
    if (record.Attach.empty())
        headers += IsHtml(record) ? "Content-Type: text/html; charset=us-ascii\r\n"
                                  : "Content-Type: text/plain; charset=us-ascii\r\n";
    headers += "Reply-To: " + OneLine(record.ReplyTo) + "\r\n";
    return headers + PriorityHeaders(record.Priority);
}

std::string OutgoingMessage::Base64Line(const std::string& text) {
    // Made in memory: a password in a file of the shared temporary folder would be everybody's.
    std::string line;
    AppendBase64(line, text);
    return line;
}

}  // namespace mailvane
