#include "platform/net/mime/HeaderBlock.h"

#include <algorithm>
#include <array>

#include "platform/net/mime/MailAddress.h"
#include "platform/net/mime/TextCoding.h"

namespace mailvane {

namespace {

constexpr std::array<std::string_view, 8> AddressFields = {
    "From", "Sender", "Reply-To", "To", "Cc", "Resent-From", "Resent-To", "Errors-To"};

bool IsNamed(std::string_view field, std::string_view name) {
    return field.size() > name.size() && field[name.size()] == ':' &&
           StartsWithIgnoringCase(field, name);
}

/// The text up to the next CR or LF; a CR LF gives an empty line more, which the block leaves out.
std::string_view TakeLine(std::string_view& text) {
    const std::size_t stop = std::min(text.find_first_of("\r\n"), text.size());
    const std::string_view line = text.substr(0, stop);
    text.remove_prefix(std::min(stop + 1, text.size()));
    return line;
}

std::string Unfolded(std::string_view text) {
    return std::string(Trimmed(WithoutLineBreaks(text)));
}

/// A parameter with text outside ASCII, as in `application/x; name=Žan.doc`: what follows the
/// equals sign becomes encoded words in quotes, the form that mail programs read in file names.
std::string EncodedParameter(std::string_view value) {
    const auto outside = std::find_if(value.begin(), value.end(), [](char c) {
        return !IsAscii({&c, 1});
    });
    const std::size_t equals = value.rfind('=', static_cast<std::size_t>(outside - value.begin()));
    if (equals == std::string_view::npos) return EncodeHeaderText(value, 0);
    std::string name(value.substr(equals + 1));
    std::erase(name, '"');
    return std::string(value.substr(0, equals)) + "=\"" + EncodeHeaderText(name, equals) + '"';
}

std::string EncodedField(const std::string& field, bool utf8) {
    const std::size_t colon = field.find(':');
    if (colon == std::string::npos) return EncodeHeaderText(field, 0);
    const std::string_view name = std::string_view(field).substr(0, colon);
    const std::string value = Unfolded(std::string_view(field).substr(colon + 1));
    const bool addresses = std::any_of(AddressFields.begin(), AddressFields.end(),
                                       [&](auto known) { return EqualsIgnoringCase(known, name); });
    std::string coded;
    if (addresses) {
        coded = EncodeHeaderAddresses(value, colon + 1, utf8);
    } else if (StartsWithIgnoringCase(name, "Content-")) {
        coded = EncodedParameter(value);
    } else {
        coded = EncodeHeaderText(value, colon + 1);
    }
    return std::string(name) + ": " + coded;
}

}  // namespace

HeaderBlock::HeaderBlock(std::string_view text) {
    while (!text.empty()) {
        std::string line(TakeLine(text));
        std::erase(line, '\0');
        if (Trimmed(line).empty()) continue;
        const bool continues = line.front() == ' ' || line.front() == '\t';
        if (continues && !fields_.empty()) {
            fields_.back() += "\r\n" + line;
        } else {
            fields_.push_back(std::move(line));
        }
    }
}

std::size_t HeaderBlock::Find(std::string_view name) const {
    const auto found = std::find_if(fields_.begin(), fields_.end(),
                                    [&](const auto& field) { return IsNamed(field, name); });
    return static_cast<std::size_t>(found - fields_.begin());
}

bool HeaderBlock::Has(std::string_view name) const {
    return Find(name) < fields_.size();
}

std::string HeaderBlock::Value(std::string_view name) const {
    const std::size_t at = Find(name);
    if (at == fields_.size()) return {};
    return Unfolded(std::string_view(fields_[at]).substr(name.size() + 1));
}

void HeaderBlock::RemoveEmpty(std::string_view name) {
    std::erase_if(fields_, [&](const std::string& field) {
        return IsNamed(field, name) && Unfolded(field.substr(name.size() + 1)).empty();
    });
}

void HeaderBlock::Set(std::string_view name, std::string_view value) {
    std::string field = std::string(name) + ": " + std::string(value);
    const std::size_t at = Find(name);
    if (at < fields_.size()) {
        fields_[at] = std::move(field);
    } else {
        fields_.push_back(std::move(field));
    }
}

void HeaderBlock::SetBehind(std::string_view other, std::string_view name, std::string_view value) {
    std::erase_if(fields_, [&](const auto& field) { return IsNamed(field, name); });
    const std::size_t at = std::min(Find(other) + 1, fields_.size());
    fields_.insert(fields_.begin() + static_cast<std::ptrdiff_t>(at),
                   std::string(name) + ": " + std::string(value));
}

void HeaderBlock::EncodeFields(bool utf8) {
    for (std::string& field : fields_) {
        const TextScan scan = ScanText(field);
        if (scan.outsideAscii || scan.longestLine > MaxMailLine) field = EncodedField(field, utf8);
    }
}

void HeaderBlock::AppendTo(std::string& out) const {
    for (const std::string& field : fields_) {
        out += field;
        out += "\r\n";
    }
}

}  // namespace mailvane
