#include "platform/os/DomainName.h"

#include <unicode/uidna.h>

#include <algorithm>
#include <memory>

namespace mailvane {

namespace {

constexpr std::size_t LongestDomain = 255;  // RFC 5321 section 4.5.3.1.2

struct CloseIdna {
    void operator()(UIDNA* idna) const { uidna_close(idna); }
};

bool IsAsciiText(std::string_view text) {
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

}  // namespace

std::string AsciiDomain(std::string_view domain) {
    const std::string asItIs(domain);
    if (IsAsciiText(domain)) return asItIs;
    UErrorCode failure = U_ZERO_ERROR;
    const std::unique_ptr<UIDNA, CloseIdna> idna(uidna_openUTS46(
        UIDNA_NONTRANSITIONAL_TO_ASCII | UIDNA_CHECK_BIDI | UIDNA_USE_STD3_RULES, &failure));
    if (U_FAILURE(failure)) return asItIs;
    char name[LongestDomain + 1];
    UIDNAInfo info = UIDNA_INFO_INITIALIZER;
    const int32_t length =
        uidna_nameToASCII_UTF8(idna.get(), domain.data(), static_cast<int32_t>(domain.size()), name,
                               static_cast<int32_t>(LongestDomain), &info, &failure);
    if (U_FAILURE(failure) || info.errors != 0) return asItIs;
    return std::string(name, static_cast<std::size_t>(length));
}

}  // namespace mailvane
