#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

#include "platform/net/NetError.h"

namespace mailvane {

/// Turns any bytes, given in pieces, into lines ended by CR LF.
class WireLines {
public:
    /// With `stuffDots` a line that begins with a dot gets a second one (RFC 5321 section 4.5.2).
    void Append(std::string& out, std::string_view piece, bool stuffDots);
    /// Ends the last line.
    void Finish(std::string& out);

private:
    bool endedWithCr_ = false;
    bool atLineStart_ = true;
};

/// The bytes of one message in the order of the wire: head, text, and where there is a file, that
/// and the tail. The file is read in pieces.
class MessageSource {
public:
    /// The views must outlive the reading. `size` is what they come to on the wire. Fails with
    /// FileUnreadable. An empty `file` is none.
    NetError Open(std::string_view head, std::string_view text, std::size_t size,
                  const std::string& file = "", std::string_view tail = "");

    /// Bytes of the message on the wire, without stuffed dots; exact when the lines of the file end
    /// in CR LF.
    std::int64_t Size() const { return size_; }
    /// Appends the next bytes, about `limit` of them, less only at the end; the message ends in CR
    /// LF. Fails with FileUnreadable.
    NetError Read(std::string& out, std::size_t limit, bool stuffDots);
    bool AtEnd() const { return atEnd_; }

private:
    struct CloseFile {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    NetError ReadFilePiece();

    std::string_view head_;
    std::string_view text_;
    std::string_view tail_;
    std::string fileName_;
    std::unique_ptr<std::FILE, CloseFile> file_;
    std::string buffer_;  // the present piece of the file
    WireLines lines_;
    std::int64_t size_ = 0;
    bool atEnd_ = true;
};

}  // namespace mailvane
