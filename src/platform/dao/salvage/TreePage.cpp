#include "platform/dao/salvage/TreePage.h"

#include <utility>

namespace mailvane {

namespace {

constexpr std::size_t FileHeadLength = 100;  // in front of page 1's own head
constexpr std::size_t LeafHeadLength = 8;
constexpr std::size_t InnerHeadLength = 12;

bool IsKind(std::uint32_t mark) {
    return mark == 2 || mark == 5 || mark == 10 || mark == 13;
}

/// How much of a record stays in the page, by the rules of the file format.
std::size_t LocalLength(std::uint64_t payload, std::size_t usable, bool table) {
    const std::size_t most = table ? usable - 35 : (usable - 12) * 64 / 255 - 23;
    if (payload <= most) return static_cast<std::size_t>(payload);
    const std::size_t least = (usable - 12) * 32 / 255 - 23;
    const auto wanted = least + static_cast<std::size_t>((payload - least) % (usable - 4));
    return wanted <= most ? wanted : least;
}

/// Nothing when the entry does not fit into the page.
std::optional<Cell> ReadCell(std::string_view page, std::size_t place, PageKind kind) {
    Cell cell;
    std::string_view rest = page.substr(place);
    if (kind == PageKind::TableInner || kind == PageKind::IndexInner) {
        if (rest.size() < 4) return std::nullopt;
        cell.child = WholeAt(rest, 0, 4);
        rest.remove_prefix(4);
    }
    if (kind != PageKind::TableInner) {
        const auto payload = TakeVarint(rest);
        if (!payload || *payload > std::numeric_limits<std::int32_t>::max()) return std::nullopt;
        cell.payload = *payload;
    }
    if (kind == PageKind::TableInner || kind == PageKind::TableLeaf) {
        const auto key = TakeVarint(rest);
        if (!key) return std::nullopt;
        cell.key = static_cast<std::int64_t>(*key);
    }
    if (kind == PageKind::TableInner) return cell;
    cell.place = page.size() - rest.size();
    cell.local = LocalLength(cell.payload, page.size(), kind == PageKind::TableLeaf);
    const bool continues = cell.local < cell.payload;
    if (cell.local + (continues ? 4 : 0) > rest.size()) return std::nullopt;
    if (continues) cell.overflow = WholeAt(rest, cell.local, 4);
    return cell;
}

TreePage TakeApart(std::string bytes, PageNumber number, std::size_t usable, PageKind kind) {
    TreePage page;
    page.kind = kind;
    page.bytes = std::move(bytes);
    const std::string_view view = std::string_view(page.bytes).substr(0, usable);
    const std::size_t head = number == 1 ? FileHeadLength : 0;
    if (!page.IsLeaf()) page.lastChild = WholeAt(view, head + 8, 4);
    const std::size_t pointers = head + (page.IsLeaf() ? LeafHeadLength : InnerHeadLength);
    const std::size_t count = WholeAt(view, head + 3, 2);
    const std::size_t contents = pointers + 2 * count;
    if (contents > view.size()) page.damaged = true;
    std::vector<bool> taken(view.size());
    for (std::size_t at = pointers; at < contents && at + 2 <= view.size(); at += 2) {
        const std::size_t place = WholeAt(view, at, 2);
        std::optional<Cell> cell;
        if (place >= pointers && place < view.size() && !taken[place])
            cell = ReadCell(view, place, kind);
        if (!cell || place < contents) page.damaged = true;
        if (!cell) continue;
        taken[place] = true;
        page.cells.push_back(*cell);
    }
    return page;
}

}  // namespace

std::optional<std::uint64_t> TakeVarint(std::string_view& bytes) {
    std::uint64_t number = 0;
    for (std::size_t i = 0; i < 9 && i < bytes.size(); ++i) {
        const auto byte = static_cast<unsigned char>(bytes[i]);
        const bool last = i == 8 || (byte & 0x80) == 0;
        number = i == 8 ? number << 8 | byte : number << 7 | (byte & 0x7Fu);
        if (!last) continue;
        bytes.remove_prefix(i + 1);
        return number;
    }
    return std::nullopt;
}

TreePage ReadTreePage(const PageFile& file, PageNumber number) {
    std::string bytes = file.Read(number);
    const std::uint32_t mark = WholeAt(bytes, number == 1 ? FileHeadLength : 0, 1);
    if (bytes.empty() || !IsKind(mark)) return {};
    return TakeApart(std::move(bytes), number, file.UsableSize(), static_cast<PageKind>(mark));
}

TreePage ReadTreePageAs(const PageFile& file, PageNumber number, PageKind kind) {
    std::string bytes = file.Read(number);
    if (bytes.empty()) return {};
    return TakeApart(std::move(bytes), number, file.UsableSize(), kind);
}

}  // namespace mailvane
