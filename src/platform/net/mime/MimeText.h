#pragma once

#include <string>
#include <string_view>

#include "platform/net/mime/HeaderBlock.h"
#include "platform/net/mime/TextCoding.h"

namespace mailvane {

/// Makes the body of a message fit for the wire. Text in ASCII with lines of allowed length needs
/// nothing and gives false. Otherwise the result stands in `out`, and `headers` say so:
///
/// - the charset of text outside ASCII is utf-8 (bytes that are no UTF-8 are taken as
/// Windows-1252),
///   and a Content-Transfer-Encoding line stands directly behind Content-Type: 8bit when the server
///   takes that (`eightBit`), quoted-printable when it does not;
/// - lines over 998 bytes and NUL bytes go as quoted-printable in any case (RFC 5322
/// section 2.1.1).
///
/// In a multipart body all this happens to the first part: the text between the first line of the
/// boundary and the last one, with the header lines (Content-...) of that part. Header lines behind
/// the last boundary, those of a file that follows, get encoded words.
/// `scan` is that of the body.
bool AdaptBody(HeaderBlock& headers, std::string_view body, const TextScan& scan, bool eightBit,
               std::string& out);

}  // namespace mailvane
