#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/dao/salvage/PageFile.h"

namespace mailvane {

/// What a page of a tree holds, by the mark that it begins with.
enum class PageKind { None = 0, IndexInner = 2, TableInner = 5, IndexLeaf = 10, TableLeaf = 13 };

/// One entry of a page of a tree.
struct Cell {
    PageNumber child = 0;       ///< of an inner page: what comes before this entry
    std::int64_t key = 0;       ///< of a table: the row's key
    std::uint64_t payload = 0;  ///< bytes of the record, 0 for the inner page of a table
    std::size_t place = 0;      ///< where the record begins in the page
    std::size_t local = 0;      ///< how much of it is in the page
    PageNumber overflow = 0;    ///< where the rest begins
};

/// A page of a tree taken apart. Entries that lead out of the page are left out.
struct TreePage {
    PageKind kind = PageKind::None;
    std::string bytes;
    std::vector<Cell> cells;
    PageNumber lastChild = 0;  ///< of an inner page: what comes after its last entry
    bool damaged = false;      ///< something in it makes no sense

    bool IsLeaf() const { return kind == PageKind::TableLeaf || kind == PageKind::IndexLeaf; }
    bool IsTable() const { return kind == PageKind::TableLeaf || kind == PageKind::TableInner; }
    bool HoldsRecords() const { return kind != PageKind::None && kind != PageKind::TableInner; }
};

/// Of kind None when the page is missing or no page of a tree.
TreePage ReadTreePage(const PageFile& file, PageNumber number);
/// The page as if it began with the mark of that kind: for one whose mark alone is damaged.
TreePage ReadTreePageAs(const PageFile& file, PageNumber number, PageKind kind);

/// Takes a number of variable length off the front; nothing when the bytes end in it.
std::optional<std::uint64_t> TakeVarint(std::string_view& bytes);

}  // namespace mailvane
