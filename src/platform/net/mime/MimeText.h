#pragma once

#include <string>
#include <string_view>

#include "platform/net/mime/HeaderBlock.h"
#include "platform/net/mime/MessageParts.h"
#include "platform/net/mime/TextCoding.h"

namespace mailvane {

/// Makes a text fit for the wire. In ASCII with lines of allowed length it needs nothing, which
/// gives false. Otherwise the result stands in `out`, and `headers` say so:
///
/// - the charset of text outside ASCII is utf-8 (bytes that are no UTF-8 are taken as
///   Windows-1252), and a Content-Transfer-Encoding line stands directly behind Content-Type: 8bit
///   when the server takes that (`eightBit`), quoted-printable when it does not;
/// - lines over 998 bytes and NUL bytes go as quoted-printable in any case (RFC 5322 section
///   2.1.1).
///
/// `scan` is that of the text.
bool AdaptBody(HeaderBlock& headers, std::string_view body, const TextScan& scan, bool eightBit,
               std::string& out);

/// The boundary itself, or one like it that does not stand in the text.
std::string FreeBoundary(const std::string& boundary, std::string_view text);

/// Writes a message with a file up to where the coded file follows. The text is made fit for the
/// wire as AdaptBody does it.
void WriteParts(const MessageParts& parts, const std::string& boundary, std::string_view text,
                bool eightBit, std::string& out);

}  // namespace mailvane
