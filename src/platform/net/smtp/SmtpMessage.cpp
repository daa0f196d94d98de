#include "platform/net/smtp/SmtpMessage.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>
#include <random>
#include <utility>

#include "platform/net/mime/MailAddress.h"
#include "platform/net/mime/MimeText.h"
#include "platform/net/mime/TextCoding.h"

namespace mailvane {

namespace {

/// RFC 5322 section 3.3; never in the words of the locale.
std::string PresentDate() {
    constexpr std::array<const char*, 7> Days = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    constexpr std::array<const char*, 12> Months = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                    "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    const long offset = local.tm_gmtoff / 60;
    const long distance = offset < 0 ? -offset : offset;
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%s, %02d %s %d %02d:%02d:%02d %c%02ld%02ld",
                  Days.at(static_cast<std::size_t>(local.tm_wday)), local.tm_mday,
                  Months.at(static_cast<std::size_t>(local.tm_mon)), local.tm_year + 1900,
                  local.tm_hour, local.tm_min, local.tm_sec, offset < 0 ? '-' : '+', distance / 60,
                  distance % 60);
    return text.data();
}

std::string RandomPrefix() {
    std::random_device random;
    std::array<char, 40> text{};
    std::snprintf(text.data(), text.size(), "%08x%08x%08x", random(), random(), random());
    return text.data();
}

bool IsDomainCharacter(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '.' ||
           c == '-';
}

}  // namespace

SmtpMessage::SmtpMessage() : idPrefix_(RandomPrefix()) {}

std::string SmtpMessage::NewMessageId(std::string_view from, std::string_view localName) {
    const std::vector<std::string> addresses = AddressesOf(from);
    std::string_view domain;
    if (!addresses.empty()) {
        const std::string& address = addresses.front();
        domain = std::string_view(address).substr(address.rfind('@') + 1);
    }
    if (domain.empty() || !std::all_of(domain.begin(), domain.end(), IsDomainCharacter)) {
        domain = localName;
    }
    return '<' + std::to_string(std::time(nullptr)) + '.' + std::to_string(++idCount_) + '.' +
           idPrefix_ + '@' + std::string(domain) + '>';
}

void SmtpMessage::AppendField(const HeaderBlock& block, std::string_view name,
                              const std::string& value) {
    if (value.empty() || block.Has(name)) return;
    head_ += name;
    head_ += ": ";
    head_ += value;
    head_ += "\r\n";
}

void SmtpMessage::ComposeBody(HeaderBlock& block, const MessageFields& fields, bool eightBit) {
    tail_.clear();
    body_ = fields.text;
    TextScan scan;
    if (fields.parts == nullptr) {
        scan = ScanText(fields.text);
        if (AdaptBody(block, fields.text, scan, eightBit, adapted_)) {
            body_ = adapted_;
            scan = ScanText(body_);
        }
    } else {
        const MessageParts& parts = *fields.parts;
        const bool standard = parts.form == MessageParts::Form::Standard;
        const std::string boundary =
            standard ? FreeBoundary(parts.boundary, fields.text) : parts.boundary;
        block.Set("Content-Type", "multipart/mixed; boundary=" + boundary);
        WriteParts(parts, boundary, fields.text, eightBit, adapted_);
        tail_ = "--" + boundary + "--\r\n";
        body_ = adapted_;
        scan = ScanText(body_);
    }
    bodySize_ = scan.wireSize;
    bodyOutsideAscii_ = scan.outsideAscii;
}

void SmtpMessage::Compose(const MessageFields& fields, WireAbilities server) {
    HeaderBlock block(fields.otherHeaders);
    if (fields.leaveOutEmptyReplyTo) block.RemoveEmpty("Reply-To");
    ComposeBody(block, fields, server.eightBit);
    const bool utf8 = server.utf8Addresses;
    block.EncodeFields(utf8);

    if (!fields.again) {
        id_ = NewMessageId(fields.from, fields.localName);
        date_ = PresentDate();
    }
    head_.clear();
    const std::string date = WithoutLineBreaks(fields.date);
    AppendField(block, "Date", date.empty() ? date_ : EncodeHeaderText(date, 5));
    AppendField(block, "Message-ID", id_);
    AppendField(block, "From", EncodeHeaderAddresses(fields.from, 5, utf8));
    AppendField(block, "To", EncodeHeaderAddresses(fields.sendTo, 3, utf8));
    AppendField(block, "Cc", EncodeHeaderAddresses(fields.cc, 3, utf8));
    AppendField(block, "Subject", EncodeHeaderText(fields.subject, 8));
    block.AppendTo(head_);
    AppendField(block, "MIME-Version", "1.0");
    head_ += "\r\n";

    wireSize_ = head_.size() + bodySize_ + tail_.size();
    headOutsideAscii_ = !IsAscii(head_);
}

}  // namespace mailvane
