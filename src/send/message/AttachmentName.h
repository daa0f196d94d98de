#pragma once

#include <string>

namespace mailvane {

/// The bare name in the path of an attachment, which may come from another system: a drive letter
/// is dropped, and both separators count.
std::string AttachmentName(std::string path);

/// The "name" parameter of a part for a file of that name. A name of plain characters stands as it
/// is; others are quoted (RFC 2045 section 5.1) or, outside ASCII, percent-encoded (RFC 2231
/// section 4), so that no name ends the header line or adds to it.
std::string NameParameter(const std::string& name);

}  // namespace mailvane
