#include "send/message/OutgoingMessage.h"

#include "core/settings/Settings.h"
#include "core/text/Text.h"
#include "platform/net/mime/NetCode.h"
#include "platform/os/Files.h"

namespace mailvane {

namespace {

constexpr int AuthenticationRequired = 530;  ///< RFC 4954 section 6

}  // namespace

OutgoingMessage::OutgoingMessage(Workbench& wb, frmSettings& settings, SmtpClient& smtp)
    : wb_(wb), settings_(settings), smtp_(smtp), accounts_(wb) {}

OutgoingMessage::~OutgoingMessage() {
    DeleteFile(EncodedFile());
}

std::string OutgoingMessage::EncodedFile() const {
    return wb_.platform.programFolder + "/_dsmail.tmp";
}

std::string OutgoingMessage::BuildOutgoingMessage(MessageRecord& record) {
    refused_.clear();
    if (!HasAddress(record)) return "Invalid e-mail address.";
    TakeConnectionSettings();
    TakeMessage(AssembleMessage(settings_, record));
    if (!record.Attach.empty())
        if (NetError failed = EncodeAttachment(record.Attach); failed.Failed())
            return failed.description;
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
    MailAccount account = accounts_.Outgoing(settings_);
    account.User = logon_.user;
    account.Password = logon_.password;
    static_cast<MailAccount&>(smtp_) = std::move(account);
}

void OutgoingMessage::TakeMessage(AssembledMessage message) {
    smtp_.From = std::move(message.from);
    smtp_.SendTo = std::move(message.to);
    smtp_.Cc = std::move(message.cc);
    smtp_.BCc = std::move(message.bcc);
    smtp_.Subject = std::move(message.subject);
    smtp_.MessageText = std::move(message.text);
    smtp_.Parts = std::move(message.parts);
    smtp_.LeaveOutEmptyReplyTo = message.leaveOutEmptyReplyTo;
    smtp_.OtherHeaders = std::move(message.otherHeaders);
}

NetError OutgoingMessage::EncodeAttachment(const std::string& path) {
    NetCode coder;
    coder.DecodedFile = path;
    coder.CodeFormat = NetCode::Format::Base64;
    coder.EncodedFile = EncodedFile();
    coder.Overwrite = true;
    if (NetError failed = coder.SetAction(NetCode::Action::Encode); failed.Failed()) return failed;
    smtp_.Parts->codedFile = EncodedFile();
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
    logon_ = ReadLogon(wb_);
    if (logon_.user.empty() || logon_.password.empty()) {
        logon_ = {};
        return {};
    }
    smtp_.User = logon_.user;
    smtp_.Password = logon_.password;
    if (NetError failed = smtp_.SetAction(SmtpClient::Action::Connect); failed.Failed()) {
        FirstMessage = true;  // the server has not been asked
        return failed;
    }
    NetError failed = smtp_.LogOn();
    if (failed.Failed())
        failed.description = logonFailure_ = "The logon failed: " + failed.description;
    return failed;
}

}  // namespace mailvane
