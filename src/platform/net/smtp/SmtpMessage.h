#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/net/mime/HeaderBlock.h"
#include "platform/net/mime/MessageParts.h"

namespace mailvane {

/// What a message is made of; the views must outlive the composed message.
struct MessageFields {
    std::string_view from;
    std::string_view sendTo;
    std::string_view cc;
    std::string_view subject;
    std::string_view otherHeaders;
    std::string_view text;
    std::string_view date;       ///< "" for the present moment
    std::string_view localName;  ///< for the Message-ID when the sender's address has no domain
    bool again = false;          ///< the last message once more: it keeps its Message-ID and Date
    const MessageParts* parts = nullptr;  ///< of a message with a file
    bool leaveOutEmptyReplyTo = false;
};

/// What the server of the moment takes.
struct WireAbilities {
    bool eightBit = false;       ///< 8BITMIME (RFC 6152)
    bool utf8Addresses = false;  ///< SMTPUTF8 (RFC 6531)
};

/// Composes the wire form of one message after another, with its buffers kept.
///
/// Head: Date, Message-ID, From, To, Cc, Subject (none that is empty, none that the block of other
/// headers holds itself), the block of other headers, MIME-Version when no line of the block begins
/// with it, the empty line. Body: the text, fit for the wire (MimeText.h); in a message with a file
/// all that stands before its coded bytes, and Tail is what follows them.
class SmtpMessage {
public:
    SmtpMessage();

    void Compose(const MessageFields& fields, WireAbilities server);

    std::string_view Head() const { return head_; }
    std::string_view Body() const { return body_; }  ///< line ends as they were written
    std::string_view Tail() const { return tail_; }
    std::size_t WireSize() const { return wireSize_; }
    bool BodyOutsideAscii() const { return bodyOutsideAscii_; }
    bool HeadOutsideAscii() const { return headOutsideAscii_; }

private:
    void ComposeBody(HeaderBlock& block, const MessageFields& fields, bool eightBit);
    void AppendField(const HeaderBlock& block, std::string_view name, const std::string& value);
    std::string NewMessageId(std::string_view from, std::string_view localName);

    std::string head_;
    std::string adapted_;
    std::string_view body_;
    std::string tail_;
    std::size_t bodySize_ = 0;
    std::size_t wireSize_ = 0;
    bool bodyOutsideAscii_ = false;
    bool headOutsideAscii_ = false;
    std::string idPrefix_;  // random, so that no two processes give the same Message-ID
    std::uint64_t idCount_ = 0;
    std::string id_;    // of the last message
    std::string date_;  // when it was composed
};

}  // namespace mailvane
