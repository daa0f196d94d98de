#pragma once

#include <string>

#include "platform/net/NetError.h"

namespace mailvane {

/// The coder component: turns a file into its base64 form.
class NetCode {
public:
    enum class Format { Base64 = 1 };
    enum class Action { Encode = 2 };

    std::string DecodedFile;  ///< read
    std::string EncodedFile;  ///< written
    Format CodeFormat = Format::Base64;
    bool Overwrite = false;

    /// Encodes DecodedFile into EncodedFile, in lines of 76 characters ended by CR LF (RFC 2045
    /// section 6.8), in pieces, so that size costs no memory. Fails with FileUnreadable and a text
    /// that names the file.
    NetError SetAction(Action action);
};

}  // namespace mailvane
