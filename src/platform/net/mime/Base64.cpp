#include "platform/net/mime/Base64.h"

#include <cstdint>

namespace mailvane {

namespace {
constexpr std::string_view Alphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
}  // namespace

void AppendBase64(std::string& out, std::string_view bytes) {
    for (std::size_t at = 0; at < bytes.size(); at += 3) {
        const std::string_view group = bytes.substr(at, 3);
        std::uint32_t bits = 0;
        for (std::size_t i = 0; i < 3; ++i) {
            bits = bits << 8 | (i < group.size() ? static_cast<unsigned char>(group[i]) : 0U);
        }
        for (std::size_t i = 0; i < 4; ++i) {
            out += i <= group.size() ? Alphabet[bits >> (18 - 6 * i) & 63U] : '=';
        }
    }
}

std::string Base64Line(std::string_view text) {
    std::string line;
    AppendBase64(line, text);
    return line;
}

}  // namespace mailvane
