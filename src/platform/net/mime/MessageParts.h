#pragma once

#include <string>

namespace mailvane {

/// What makes a multipart of a message: a file that it carries behind its text.
struct MessageParts {
    /// How the parts are written. AsGiven takes boundary and headers as they stand here. Standard
    /// closes the header of the text's part, with the type, the charset and the encoding that the
    /// text has on the wire, and takes another boundary where the given one stands in the text.
    enum class Form { AsGiven, Standard };

    Form form = Form::Standard;
    std::string boundary;
    std::string opening;      ///< before the first part, for programs that know none
    std::string textType;     ///< "text/html"
    std::string textHeaders;  ///< AsGiven: one line; the text follows the end of that line
    std::string fileType;     ///< "application/octet-stream; name=a.txt"
    std::string codedFile;    ///< a file that holds the bytes in base64, in lines
};

}  // namespace mailvane
