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

std::string BoundaryOf(const HeaderBlock& headers) {
    const std::string value = headers.Value("Content-Type");
    if (!StartsWithIgnoringCase(value, "multipart/")) return {};
    const auto [first, stop] = FindParameter(value, "boundary");
    if (first == None) return {};
    std::string boundary = value.substr(first, stop - first);
    std::erase(boundary, '"');
    return boundary;
}

std::size_t LineStart(std::string_view text, std::size_t at) {
    const std::size_t before = at == 0 ? None : text.find_last_of("\r\n", at - 1);
    return before == None ? 0 : before + 1;
}

/// Behind the end of the line that holds `at`.
std::size_t NextLine(std::string_view text, std::size_t at) {
    const std::size_t stop = text.find_first_of("\r\n", at);
    if (stop == None) return text.size();
    return stop + (text.substr(stop, 2) == "\r\n" ? 2 : 1);
}

/// A multipart body cut where the first part begins and ends.
struct FirstPart {
    bool found = false;
    std::string_view before;   ///< up to and with the first boundary line
    std::string_view headers;  ///< the Content-... lines of the part
    std::string_view text;     ///< without the line end that belongs to the boundary
    std::string_view after;    ///< that line end and everything from the last boundary line on
};

FirstPart FindFirstPart(std::string_view body, const std::string& boundary) {
    const std::string delimiter = "--" + boundary;
    std::size_t first = body.find(delimiter);
    while (first != None && LineStart(body, first) != first)
        first = body.find(delimiter, first + 1);
    std::size_t last = body.rfind(delimiter);
    while (last != None && last > 0 && LineStart(body, last) != last) {
        last = body.rfind(delimiter, last - 1);
    }
    if (boundary.empty() || first == None || last == None || last <= first) return {};

    FirstPart part;
    part.found = true;
    const std::size_t start = NextLine(body, first);
    std::size_t text = start;
    while (text < last && StartsWithIgnoringCase(body.substr(text, last - text), "Content-")) {
        do {
            text = NextLine(body, text);
        } while (text < last && (body[text] == ' ' || body[text] == '\t'));
    }
    part.before = body.substr(0, start);
    part.headers = body.substr(start, text - start);
    // The empty line behind the headers; a body that follows them at once begins here.
    if (text < last && (body[text] == '\r' || body[text] == '\n')) text = NextLine(body, text);
    std::size_t stop = last;
    if (stop > text && body[stop - 1] == '\n') --stop;
    if (stop > text && body[stop - 1] == '\r') --stop;
    part.text = body.substr(text, stop - text);
    part.after = body.substr(stop);
    return part;
}

/// The end of a multipart body: its boundary line, then the headers of the file that follows.
void AppendTail(std::string& out, std::string_view tail) {
    if (IsAscii(tail)) {
        out += tail;
        return;
    }
    const std::size_t start = NextLine(tail, tail.find_first_not_of("\r\n"));
    std::size_t stop = start;
    while (stop < tail.size() && tail[stop] != '\r' && tail[stop] != '\n')
        stop = NextLine(tail, stop);
    HeaderBlock headers(tail.substr(start, stop - start));
    headers.EncodeFields(false);
    out += tail.substr(0, start);
    headers.AppendTo(out);
    out += tail.substr(stop);
}

void AdaptMultipart(const FirstPart& part, bool eightBit, std::string& out) {
    const Need need = NeedOf(part.text, ScanText(part.text), eightBit);
    out += part.before;
    if (need.utf8 || need.encoded) {
        HeaderBlock headers(part.headers);
        Declare(headers, need);
        headers.AppendTo(out);
        out += "\r\n";
        AppendText(out, part.text, need);
    } else {
        out.append(part.headers.begin(), part.text.end());
    }
    AppendTail(out, part.after);
}

}  // namespace

bool AdaptBody(HeaderBlock& headers, std::string_view body, const TextScan& scan, bool eightBit,
               std::string& out) {
    const Need need = NeedOf(body, scan, eightBit);
    if (!need.utf8 && !need.encoded) return false;
    out.clear();
    if (StartsWithIgnoringCase(headers.Value("Content-Type"), "multipart/")) {
        const FirstPart part = FindFirstPart(body, BoundaryOf(headers));
        if (!part.found) return false;
        AdaptMultipart(part, eightBit, out);
        return true;
    }
    Declare(headers, need);
    AppendText(out, body, need);
    return true;
}

}  // namespace mailvane
