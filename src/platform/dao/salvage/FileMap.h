#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <vector>

#include "platform/dao/salvage/TreePage.h"

namespace mailvane {

/// Where a table or an index begins.
struct TreeRoot {
    PageNumber page = 0;
    bool isTable = true;      ///< false: an index, or a table that is kept as one
    std::size_t columns = 0;  ///< of its records; 0 when not known
};

/// A page, and the keys that its place in a table's tree allows it: above `low`, up to `high`.
struct PlacedPage {
    PageNumber number;
    std::int64_t low;
    std::int64_t high;
};

/// The pages of one table or index that still hang together.
struct Tree {
    std::vector<PlacedPage> pages;  ///< those with records, in their order
    bool damaged = false;           ///< some of its pages are lost or make no sense
};

/// Which page of a file belongs to which tree. Damaged links may lead in circles or into other
/// trees; a page belongs to the tree that it fits best.
class FileMap {
public:
    FileMap(const PageFile& file, const std::vector<TreeRoot>& roots);

    const Tree& Of(std::size_t root) const { return trees_[root]; }
    /// Pages with records to which no way leads.
    const std::vector<PageNumber>& LoosePages() const { return loose_; }
    /// Whether it is known which pages are free. Otherwise a loose page may hold deleted rows.
    bool FreePagesKnown() const { return freePagesKnown_; }

private:
    struct Claim {
        std::size_t root;
        PlacedPage page;
    };

    void Walk(std::size_t root);
    int Fitness(const Claim& claim) const;
    void Settle();
    void ReadFreePages();
    void FindLoosePages();

    const PageFile& file_;
    const std::vector<TreeRoot>& roots_;
    std::vector<Tree> trees_;
    std::map<PageNumber, std::vector<Claim>> claims_;
    std::set<PageNumber> free_;
    std::vector<PageNumber> loose_;
    bool freePagesKnown_ = false;
};

/// A page to which a table's or an index's link leads: of kind None when nothing of such a tree is
/// there, and as a leaf when only its mark is damaged.
TreePage ReadLinkedPage(const PageFile& file, PageNumber number, bool ofTable);

}  // namespace mailvane
