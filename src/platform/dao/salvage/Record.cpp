#include "platform/dao/salvage/Record.h"

#include <unicode/unistr.h>

#include <algorithm>
#include <bit>

namespace mailvane {

namespace {

/// The bytes of the record, from the page and those that it goes on in, as far as they are there.
std::string Gather(const PageFile& file, const TreePage& page, const Cell& cell) {
    std::string bytes = page.bytes.substr(cell.place, cell.local);
    const std::uint64_t fileSize = std::uint64_t{file.PageCount()} * file.PageSize();
    if (cell.payload > fileSize) return bytes;
    for (PageNumber next = cell.overflow; next != 0 && bytes.size() < cell.payload;) {
        const std::string more = file.Read(next);
        if (more.empty()) break;
        const std::size_t wanted = static_cast<std::size_t>(cell.payload) - bytes.size();
        bytes.append(more, 4, std::min(wanted, file.UsableSize() - 4));
        next = WholeAt(more, 0, 4);
    }
    return bytes;
}

/// Lengths by the kinds of values that stand in the head of a record; nothing for a kind that there
/// is not.
std::optional<std::uint64_t> LengthOf(std::uint64_t kind) {
    constexpr std::uint64_t Lengths[] = {0, 1, 2, 3, 4, 6, 8, 8, 0, 0};
    if (kind < std::size(Lengths)) return Lengths[kind];
    if (kind < 12) return std::nullopt;
    return (kind - 12) / 2;
}

std::int64_t SignedWhole(std::string_view bytes) {
    std::uint64_t whole = (static_cast<unsigned char>(bytes.front()) & 0x80) != 0 ? ~0ULL : 0;
    for (const char byte : bytes)
        whole = whole << 8 | static_cast<unsigned char>(byte);
    return static_cast<std::int64_t>(whole);
}

std::string ToUtf8(std::string_view bytes, TextEncoding encoding) {
    if (encoding == TextEncoding::Utf8) return std::string(bytes);
    icu::UnicodeString text;
    const std::size_t high = encoding == TextEncoding::Utf16BigEndian ? 0 : 1;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2)
        text.append(static_cast<char16_t>(static_cast<unsigned char>(bytes[i + high]) << 8 |
                                          static_cast<unsigned char>(bytes[i + 1 - high])));
    std::string converted;
    return text.toUTF8String(converted);
}

StoredValue ReadValue(std::uint64_t kind, std::string_view bytes, TextEncoding encoding) {
    if (kind == 0) return {};
    if (kind == 7)
        return {DaoValue(std::bit_cast<double>(static_cast<std::uint64_t>(SignedWhole(bytes))))};
    if (kind < 7) return {DaoValue(SignedWhole(bytes))};
    if (kind < 10) return {DaoValue(static_cast<std::int64_t>(kind - 8))};
    if (kind % 2 == 0) return {DaoValue(std::string(bytes)), true};
    return {DaoValue(ToUtf8(bytes, encoding))};
}

}  // namespace

std::optional<Record> ReadRecord(const PageFile& file, const TreePage& page, const Cell& cell) {
    const std::string bytes = Gather(file, page, cell);
    std::string_view head = bytes;
    const auto headLength = TakeVarint(head);
    if (!headLength || *headLength > bytes.size()) return std::nullopt;
    const std::size_t taken = bytes.size() - head.size();
    if (*headLength < taken || cell.payload == 0) return std::nullopt;
    head = head.substr(0, static_cast<std::size_t>(*headLength) - taken);

    Record record;
    std::string_view rest = std::string_view(bytes).substr(static_cast<std::size_t>(*headLength));
    while (!head.empty()) {
        const auto kind = TakeVarint(head);
        const auto length = kind ? LengthOf(*kind) : std::nullopt;
        if (!length) return std::nullopt;
        if (*length > rest.size()) {
            record.whole = false;
            record.values.emplace_back();
            rest = {};
            continue;
        }
        const auto size = static_cast<std::size_t>(*length);
        record.values.push_back(ReadValue(*kind, rest.substr(0, size), file.Encoding()));
        rest.remove_prefix(size);
    }
    if (record.values.empty()) return std::nullopt;
    if (*headLength + (bytes.size() - *headLength - rest.size()) != cell.payload)
        record.whole = false;
    return record;
}

bool HoldsWholeRecords(const PageFile& file, const TreePage& page) {
    return !page.damaged && !page.cells.empty() &&
           std::all_of(page.cells.begin(), page.cells.end(), [&](const Cell& cell) {
               const auto record = ReadRecord(file, page, cell);
               return record && record->whole;
           });
}

const std::string* TextIn(const StoredValue& value) {
    return value.bytes ? nullptr : std::get_if<std::string>(&value.value.Raw());
}

std::optional<std::int64_t> WholeIn(const StoredValue& value) {
    const auto* whole = std::get_if<std::int64_t>(&value.value.Raw());
    return whole == nullptr ? std::nullopt : std::optional(*whole);
}

}  // namespace mailvane
