#include "platform/os/TextCase.h"

#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include <cstdint>

namespace mailvane {

std::string LowerCase(std::string_view text) {
    std::string lower(text);
    const auto length = static_cast<std::int32_t>(text.size());
    for (std::int32_t next = 0; next < length;) {
        const std::int32_t start = next;
        const auto at = static_cast<std::size_t>(start);
        if (static_cast<unsigned char>(lower[at]) < 0x80) {
            lower[at] = LowerAscii(lower[at]);
            ++next;
            continue;
        }
        UChar32 letter = 0;
        U8_NEXT(text.data(), next, length, letter);
        const UChar32 changed = letter < 0 ? letter : u_tolower(letter);
        if (changed == letter || U8_LENGTH(changed) != next - start) continue;
        std::int32_t end = start;
        U8_APPEND_UNSAFE(lower.data(), end, changed);
    }
    return lower;
}

}  // namespace mailvane
