#include "platform/net/mime/MimeText.h"

#include <algorithm>

#include "platform/net/mime/TextCoding.h"

namespace mailvane {

namespace {

constexpr auto None = std::string_view::npos;

struct Need {
    bool utf8 = false;     ///< the text holds more than ASCII
    bool encoded = false;  ///< it cannot go as it is
};

Need NeedOf(std::string_view text, const TextScan& scan, bool eightBit) {
    if (scan.holdsNul || scan.longestLine > MaxMailLine) return {scan.outsideAscii, true};
    if (!scan.outsideAscii) return {};
    // A byte that is no UTF-8 becomes up to three: the lines may have grown.
    return {true, !eightBit || ScanText(ToUtf8(text)).longestLine > MaxMailLine};
}

std::size_t FindIgnoringCase(std::string_view text, std::string_view part) {
    for (std::size_t i = 0; i + part.size() <= text.size(); ++i) {
        if (StartsWithIgnoringCase(text.substr(i), part)) return i;
    }
    return None;
}

/// The value of a parameter begins at the result's first and ends before its second.
std::pair<std::size_t, std::size_t> FindParameter(std::string_view value, std::string_view name) {
    const std::size_t found = FindIgnoringCase(value, std::string(name) + "=");
    if (found == None) return {None, None};
    const std::size_t first = found + name.size() + 1;
    const bool quoted = first < value.size() && value[first] == '"';
    const std::size_t stop =
        quoted ? value.find('"', first + 1) : value.find_first_of("; \t", first);
    return {first, stop == None ? value.size() : stop + (quoted ? 1 : 0)};
}

/// `text/html; charset=us-ascii; format=flowed` with the charset utf-8.
std::string WithUtf8Charset(const std::string& contentType) {
    if (contentType.empty()) return "text/plain; charset=utf-8";
    const auto [first, stop] = FindParameter(contentType, "charset");
    if (first == None) return contentType + "; charset=utf-8";
    const std::string before = contentType.substr(0, first);
    // What follows the charset without a semicolon is no parameter.
    const std::string_view after = Trimmed(std::string_view(contentType).substr(stop));
    return before + "utf-8" + std::string(after.substr(0, 1) == ";" ? after : "");
}

void Declare(HeaderBlock& headers, Need need) {
    std::string contentType = headers.Value("Content-Type");
    if (need.utf8) contentType = WithUtf8Charset(contentType);
    if (contentType.empty()) contentType = "text/plain; charset=us-ascii";
    headers.Set("Content-Type", contentType);
    headers.SetBehind("Content-Type", "Content-Transfer-Encoding",
                      need.encoded ? "quoted-printable" : "8bit");
}

void AppendText(std::string& out, std::string_view text, Need need) {
    const std::string utf8 = need.utf8 ? ToUtf8(text) : std::string(text);
    if (need.encoded) {
        AppendQuotedPrintable(out, utf8);
    } else {
        out += utf8;
    }
}

/// Header and text of the text's part in the standard form.
void AppendStandardText(std::string& out, const MessageParts& parts, std::string_view text,
                        Need need) {
    const char* plain = need.utf8 ? "8bit" : "7bit";
    out += "Content-Type: " + parts.textType + "; charset=" + (need.utf8 ? "utf-8" : "us-ascii");
    out += std::string("\r\nContent-Transfer-Encoding: ") +
           (need.encoded ? "quoted-printable" : plain) + "\r\n\r\n";
    AppendText(out, text, need);
}

/// Both as they were given, as long as that says what the text is.
void AppendGivenText(std::string& out, const MessageParts& parts, std::string_view text,
                     Need need) {
    if (need.utf8 || need.encoded) {
        HeaderBlock headers(parts.textHeaders);
        Declare(headers, need);
        headers.AppendTo(out);
    } else {
        out += parts.textHeaders;
    }
    out += "\r\n";
    AppendText(out, text, need);
}

}  // namespace

std::string FreeBoundary(const std::string& boundary, std::string_view text) {
    std::string free = boundary;
    for (int i = 1; text.find(free) != None; ++i)
        free = boundary + std::to_string(i);
    return free;
}

void WriteParts(const MessageParts& parts, const std::string& boundary, std::string_view text,
                bool eightBit, std::string& out) {
    const Need need = NeedOf(text, ScanText(text), eightBit);
    const std::string delimiter = "--" + boundary + "\r\n";
    out = parts.opening + delimiter;
    if (parts.form == MessageParts::Form::Standard) {
        AppendStandardText(out, parts, text, need);
    } else {
        AppendGivenText(out, parts, text, need);
    }
    out += "\r\n" + delimiter + "Content-Type: " + parts.fileType +
           "\r\nContent-Transfer-Encoding: base64\r\n\r\n";
}

bool AdaptBody(HeaderBlock& headers, std::string_view body, const TextScan& scan, bool eightBit,
               std::string& out) {
    const Need need = NeedOf(body, scan, eightBit);
    if (!need.utf8 && !need.encoded) return false;
    out.clear();
    Declare(headers, need);
    AppendText(out, body, need);
    return true;
}

}  // namespace mailvane
