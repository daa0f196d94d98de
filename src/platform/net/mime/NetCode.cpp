#include "platform/net/mime/NetCode.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>

#include "platform/net/mime/Base64.h"

namespace mailvane {

namespace {

constexpr std::size_t BytesPerLine = 57;  // 76 characters of base64
constexpr std::size_t LinesPerPiece = 1024;

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using FileHandle = std::unique_ptr<std::FILE, CloseFile>;

NetError Unreadable(const std::string& file, int reason) {
    return {net_error::FileUnreadable,
            "The file \"" + file + "\" cannot be read: " + std::strerror(reason) + "."};
}

NetError Unwritable(const std::string& file, int reason) {
    return {net_error::FileUnwritable,
            "The file \"" + file + "\" cannot be written: " + std::strerror(reason) + "."};
}

void EncodeLines(std::string_view bytes, std::string& out) {
    out.clear();
    for (; !bytes.empty(); bytes.remove_prefix(std::min(BytesPerLine, bytes.size()))) {
        AppendBase64(out, bytes.substr(0, BytesPerLine));
        out += "\r\n";
    }
}

}  // namespace

NetError NetCode::SetAction(Action /*action*/) {
    // A name with a NUL in it would open another file: the one named up to there.
    if (DecodedFile.find('\0') != std::string::npos) return Unreadable(DecodedFile, EINVAL);
    const FileHandle source(std::fopen(DecodedFile.c_str(), "rb"));
    if (!source) return Unreadable(DecodedFile, errno);
    // "x" refuses a file that exists.
    FileHandle target(std::fopen(EncodedFile.c_str(), Overwrite ? "wb" : "wbx"));
    if (!target) return Unwritable(EncodedFile, errno);

    NetError error;
    std::string piece(BytesPerLine * LinesPerPiece, '\0');
    std::string lines;
    while (error.Ok()) {
        errno = 0;
        const std::size_t count = std::fread(piece.data(), 1, piece.size(), source.get());
        if (std::ferror(source.get()) != 0) error = Unreadable(DecodedFile, errno);
        if (count == 0) break;
        EncodeLines(std::string_view(piece).substr(0, count), lines);
        if (std::fwrite(lines.data(), 1, lines.size(), target.get()) != lines.size()) {
            error = Unwritable(EncodedFile, errno);
        }
    }
    if (std::fclose(target.release()) != 0 && error.Ok()) error = Unwritable(EncodedFile, errno);
    if (error.Failed()) {
        std::error_code ignored;
        std::filesystem::remove(EncodedFile, ignored);
    }
    return error;
}

}  // namespace mailvane
