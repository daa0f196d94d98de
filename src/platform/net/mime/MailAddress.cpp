#include "platform/net/mime/MailAddress.h"

#include <algorithm>
#include <utility>

#include "platform/net/dns/DomainName.h"
#include "platform/net/mime/AddressList.h"
#include "platform/net/mime/Base64.h"
#include "platform/net/mime/TextCoding.h"

namespace mailvane {

namespace {

constexpr std::size_t LineWidth = 78;         // RFC 5322 section 2.1.1
constexpr std::size_t EncodedLineWidth = 76;  // RFC 2047 section 2
constexpr std::size_t MaxEncodedWord = 75;    // RFC 2047 section 2
constexpr std::size_t MaxPlainWord = 900;     // keeps a line with a long word under MaxMailLine
constexpr std::size_t LongestMailbox = 64 + 1 + 255;         // RFC 5321 section 4.5.3.1
constexpr std::string_view MailSpecials = " <>()[]@,;\\\"";  // without quotes no part of a mailbox
constexpr std::string_view WordStart = "=?utf-8?B?";
constexpr std::string_view WordEnd = "?=";
constexpr std::string_view Fold = "\r\n ";

std::size_t ColumnBehind(std::string_view text, std::size_t column) {
    const std::size_t lineEnd = text.rfind('\n');
    return lineEnd == std::string_view::npos ? column + text.size() : text.size() - lineEnd - 1;
}

/// Bytes of text that fit into an encoded word of the given width.
std::size_t EncodedCapacity(std::size_t width) {
    const std::size_t frame = WordStart.size() + WordEnd.size();
    return width <= frame ? 0 : (width - frame) / 4 * 3;
}

/// The front of `text`, at most `capacity` bytes of whole characters, at least one.
std::string_view TakeCharacters(std::string_view& text, std::size_t capacity) {
    std::size_t length = 0;
    while (length < text.size()) {
        const std::size_t next = std::max<std::size_t>(1, Utf8CharacterLength(text, length));
        if (length > 0 && length + next > capacity) break;
        length += next;
    }
    const std::string_view taken = text.substr(0, length);
    text.remove_prefix(length);
    return taken;
}

/// Encoded words for UTF-8 text that begins at `column` of its line.
std::string EncodedWords(std::string_view text, std::size_t column) {
    constexpr std::size_t Smallest = 12;
    std::string out;
    std::size_t capacity = EncodedCapacity(EncodedLineWidth - std::min(column, EncodedLineWidth));
    if (capacity < Smallest) capacity = Smallest;
    capacity = std::min(capacity, EncodedCapacity(MaxEncodedWord));
    while (!text.empty()) {
        if (!out.empty()) out += Fold;
        out += WordStart;
        AppendBase64(out, TakeCharacters(text, capacity));
        out += WordEnd;
        capacity = EncodedCapacity(MaxEncodedWord);
    }
    return out;
}

/// A word with the blanks before it, taken off the front of `text`.
std::string_view TakeWord(std::string_view& text) {
    const std::size_t word = std::min(text.find_first_not_of(" \t"), text.size());
    const std::size_t stop = std::min(text.find_first_of(" \t", word), text.size());
    const std::string_view taken = text.substr(0, stop);
    text.remove_prefix(stop);
    return taken;
}

bool HasOverlongWord(std::string_view text) {
    while (!text.empty()) {
        if (TakeWord(text).size() > MaxPlainWord) return true;
    }
    return false;
}

/// Breaks before blanks only, so that taking the breaks out gives the value again; no line is made
/// of blanks alone (RFC 5322 section 3.2.2).
std::string Folded(std::string_view value, std::size_t column) {
    std::string out;
    while (!value.empty()) {
        const std::string_view word = TakeWord(value);
        if (!out.empty() && column + word.size() > LineWidth) {
            out += "\r\n";
            column = 0;
        }
        out += word;
        column += word.size();
    }
    return out;
}

std::string QuotedName(std::string_view name) {
    std::string out = "\"";
    for (const char c : name) {
        if (c == '"' || c == '\\') out += '\\';
        out += c;
    }
    return out + '"';
}

/// An item of a list, at `column` of its line.
std::string EncodedItem(const AddressItem& item, std::size_t column) {
    const bool asItStands = !item.source.empty() && item.source.size() <= MaxPlainWord;
    if (asItStands && IsAscii(item.source)) return item.source;
    if (item.name.empty()) return item.address;
    const bool plainName = IsAscii(item.name) && item.name.size() <= MaxPlainWord / 2;
    const std::string name =
        plainName ? QuotedName(item.name) : EncodedWords(ToUtf8(item.name), column);
    const bool fits = ColumnBehind(name, column) + item.address.size() + 3 <= LineWidth;
    return name + (fits ? " <" : "\r\n <") + item.address + '>';
}

/// Servers that know nothing of other scripts take such an address too.
std::string WithAsciiDomain(const std::string& address) {
    const std::size_t domain = address.rfind('@') + 1;
    return domain == 0
               ? address
               : address.substr(0, domain) + AsciiDomain(std::string_view(address).substr(domain));
}

bool IsControl(char c) {
    return (c >= 0 && c < ' ') || c == '\x7F';
}

/// Length of a quoted string at the front, 0 when there is none or nothing ends it.
std::size_t QuotedLength(std::string_view text) {
    if (text.substr(0, 1) != "\"") return 0;
    for (std::size_t i = 1; i < text.size(); ++i) {
        if (text[i] == '"') return i + 1;
        if (text[i] == '\\') ++i;
    }
    return 0;
}

bool HasNone(std::string_view text, std::string_view characters) {
    return text.find_first_of(characters) == std::string_view::npos;
}

}  // namespace

std::vector<std::string> AddressesOf(std::string_view list) {
    std::vector<std::string> addresses;
    for (const AddressItem& item : ParseAddressList(list))
        addresses.push_back(WithAsciiDomain(item.address));
    return addresses;
}

bool IsMailbox(std::string_view address) {
    if (address.empty() || address.size() > LongestMailbox) return false;
    if (std::any_of(address.begin(), address.end(), IsControl)) return false;
    if (ToUtf8(address) != address) return false;  // RFC 6531 section 3.3
    const std::size_t quoted = QuotedLength(address);
    if (quoted > 0 && address.substr(quoted, 1) != "@") return false;
    address.remove_prefix(quoted);
    const std::size_t at = std::min(address.find('@'), address.size());
    std::string_view domain = address.substr(std::min(at + 1, address.size()));
    const bool literal = domain.size() > 2 && domain.front() == '[' && domain.back() == ']';
    if (literal) domain = domain.substr(1, domain.size() - 2);
    const bool named = at < address.size();
    const bool nobody = named && at == 0 && quoted == 0;
    const bool emptyPart =
        domain.empty() || domain.front() == '.' || domain.find("..") != std::string_view::npos;
    if (nobody || (named && emptyPart)) return false;
    return HasNone(address.substr(0, at), MailSpecials) && HasNone(domain, MailSpecials) &&
           (literal || HasNone(domain, ":"));
}

std::string EncodeHeaderText(std::string_view value, std::size_t nameLength) {
    const std::string clean = WithoutLineBreaks(value);
    const std::string_view text = Trimmed(clean);
    const std::size_t column = nameLength + 1;
    if (!IsAscii(text) || HasOverlongWord(text)) return EncodedWords(ToUtf8(text), column);
    return Folded(text, column);
}

std::string EncodeHeaderAddresses(std::string_view value, std::size_t nameLength, bool utf8) {
    std::string out;
    std::size_t column = nameLength + 1;
    for (AddressItem& item : ParseAddressList(value)) {
        item.address = WithAsciiDomain(item.address);
        if (!IsMailbox(item.address) || (!utf8 && !IsAscii(item.address))) continue;
        if (!out.empty()) {
            const std::size_t width =
                item.source.empty() ? item.address.size() : item.source.size();
            const bool fits = column + 2 + width <= LineWidth;
            out += fits ? ", " : ",\r\n ";
            column = fits ? column + 2 : 1;
        }
        const std::string text = EncodedItem(item, column);
        out += text;
        column = ColumnBehind(text, column);
    }
    return out;
}

}  // namespace mailvane
