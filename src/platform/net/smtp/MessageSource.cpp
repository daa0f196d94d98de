#include "platform/net/smtp/MessageSource.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

namespace mailvane {

namespace {

constexpr std::size_t FilePiece = 64 * 1024;

NetError Unreadable(const std::string& file, int reason) {
    return {net_error::FileUnreadable,
            "The file \"" + file + "\" cannot be read: " + std::strerror(reason) + "."};
}

}  // namespace

void WireLines::Append(std::string& out, std::string_view piece, bool stuffDots) {
    if (endedWithCr_ && !piece.empty()) {
        endedWithCr_ = false;
        if (piece.front() == '\n') piece.remove_prefix(1);
    }
    std::size_t lineFeed = piece.find('\n');
    for (std::size_t at = 0; at < piece.size();) {
        if (lineFeed != std::string_view::npos && lineFeed < at) lineFeed = piece.find('\n', at);
        const std::size_t stop = std::min(lineFeed, piece.size());
        const std::string_view rest = piece.substr(at, stop - at);
        const std::size_t cr = rest.find('\r');
        const std::string_view line = rest.substr(0, cr);
        if (stuffDots && atLineStart_ && piece[at] == '.') out += '.';
        out += line;
        at += line.size();
        atLineStart_ = at < piece.size();
        if (!atLineStart_) break;
        out += "\r\n";
        const bool wasCr = piece[at++] == '\r';
        if (wasCr && at == piece.size()) endedWithCr_ = true;
        if (wasCr && at < piece.size() && piece[at] == '\n') ++at;
    }
}

void WireLines::Finish(std::string& out) {
    if (!atLineStart_) out += "\r\n";
    *this = {};
}

NetError MessageSource::Open(std::string_view head, std::string_view text, std::size_t size,
                             const std::string& file, std::string_view tail) {
    head_ = head;
    text_ = text;
    size_ = static_cast<std::int64_t>(size);
    lines_ = {};
    file_.reset();
    tail_ = {};
    atEnd_ = false;
    if (file.empty()) return {};
    tail_ = tail;

    fileName_ = file;
    file_.reset(std::fopen(file.c_str(), "rb"));
    if (!file_) return Unreadable(file, errno);
    std::setvbuf(file_.get(), nullptr, _IONBF, 0);  // it is read in large pieces anyway
    struct stat status {};
    if (fstat(fileno(file_.get()), &status) == 0) size_ += status.st_size;
    return {};
}

NetError MessageSource::ReadFilePiece() {
    buffer_.resize(FilePiece);
    errno = 0;
    buffer_.resize(std::fread(buffer_.data(), 1, FilePiece, file_.get()));
    if (std::ferror(file_.get()) != 0) return Unreadable(fileName_, errno);
    if (!buffer_.empty()) return {};
    file_.reset();
    text_ = std::exchange(tail_, {});
    return {};
}

NetError MessageSource::Read(std::string& out, std::size_t limit, bool stuffDots) {
    const std::size_t before = out.size();
    while (!atEnd_ && out.size() - before < limit) {
        const std::size_t room = limit - (out.size() - before);
        std::string_view* segment = !head_.empty() ? &head_ : &text_;
        if (!segment->empty()) {
            lines_.Append(out, segment->substr(0, room), stuffDots);
            segment->remove_prefix(std::min(room, segment->size()));
        } else if (file_) {
            if (NetError error = ReadFilePiece(); error.Failed()) return error;
            lines_.Append(out, buffer_, stuffDots);
        } else {
            lines_.Finish(out);
            atEnd_ = true;
        }
    }
    // Everything was read when only the end of the last line is left.
    if (!atEnd_ && head_.empty() && text_.empty() && !file_) {
        lines_.Finish(out);
        atEnd_ = true;
    }
    return {};
}

}  // namespace mailvane
