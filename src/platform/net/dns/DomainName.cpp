#include "platform/net/dns/DomainName.h"

#include <unicode/uidna.h>

#include <memory>

#include "platform/net/mime/TextCoding.h"

namespace mailvane {

namespace {

constexpr std::size_t LongestDomain = 255;  // RFC 5321 section 4.5.3.1.2

struct CloseIdna {
    void operator()(const UIDNA* idna) const { uidna_close(const_cast<UIDNA*>(idna)); }
};

/// Null when ICU's data is not there.
std::unique_ptr<const UIDNA, CloseIdna> OpenIdna() {
    UErrorCode failure = U_ZERO_ERROR;
    const UIDNA* idna = uidna_openUTS46(
        UIDNA_NONTRANSITIONAL_TO_ASCII | UIDNA_CHECK_BIDI | UIDNA_USE_STD3_RULES, &failure);
    return std::unique_ptr<const UIDNA, CloseIdna>(U_SUCCESS(failure) ? idna : nullptr);
}

}  // namespace

std::string AsciiDomain(std::string_view domain) {
    const std::string asItIs(domain);
    if (IsAscii(domain)) return asItIs;
    static const std::unique_ptr<const UIDNA, CloseIdna> idna = OpenIdna();
    if (!idna) return asItIs;
    UErrorCode failure = U_ZERO_ERROR;
    char name[LongestDomain + 1];
    UIDNAInfo info = UIDNA_INFO_INITIALIZER;
    const int32_t length =
        uidna_nameToASCII_UTF8(idna.get(), domain.data(), static_cast<int32_t>(domain.size()), name,
                               static_cast<int32_t>(LongestDomain), &info, &failure);
    if (U_FAILURE(failure) || info.errors != 0) return asItIs;
    return std::string(name, static_cast<std::size_t>(length));
}

}  // namespace mailvane
