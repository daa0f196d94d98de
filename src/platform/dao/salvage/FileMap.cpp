#include "platform/dao/salvage/FileMap.h"

#include <algorithm>
#include <limits>

#include "platform/dao/salvage/Record.h"

namespace mailvane {

namespace {

/// A root belongs to its tree, whatever other links lead to it.
constexpr int FitnessOfRoot = 1000;
constexpr std::size_t SampledCells = 20;

bool LeadsOutOfFile(const PageFile& file, const TreePage& page) {
    const auto outside = [&](PageNumber number) {
        return number == 0 || number > file.PageCount();
    };
    return outside(page.lastChild) ||
           std::any_of(page.cells.begin(), page.cells.end(),
                       [&](const Cell& one) { return outside(one.child); });
}

}  // namespace

TreePage ReadLinkedPage(const PageFile& file, PageNumber number, bool ofTable) {
    TreePage page = ReadTreePage(file, number);
    const bool rightKind = page.kind != PageKind::None && page.IsTable() == ofTable;
    if (rightKind && (page.IsLeaf() || !LeadsOutOfFile(file, page))) return page;
    const PageKind leaf = ofTable ? PageKind::TableLeaf : PageKind::IndexLeaf;
    TreePage other = ReadTreePageAs(file, number, leaf);
    if (other.kind == leaf && HoldsWholeRecords(file, other)) {
        other.damaged = true;
        return other;
    }
    return rightKind ? page : TreePage();
}

FileMap::FileMap(const PageFile& file, const std::vector<TreeRoot>& roots)
    : file_(file), roots_(roots), trees_(roots.size()) {
    for (std::size_t root = 0; root < roots.size(); ++root)
        Walk(root);
    Settle();
    ReadFreePages();
    FindLoosePages();
}

void FileMap::Walk(std::size_t root) {
    Tree& tree = trees_[root];
    std::set<PageNumber> seen;
    std::vector<PlacedPage> ahead{{roots_[root].page, std::numeric_limits<std::int64_t>::min(),
                                   std::numeric_limits<std::int64_t>::max()}};
    while (!ahead.empty()) {
        const PlacedPage visit = ahead.back();
        ahead.pop_back();
        TreePage page;
        if (seen.insert(visit.number).second)
            page = ReadLinkedPage(file_, visit.number, roots_[root].isTable);
        if (page.damaged || page.kind == PageKind::None) tree.damaged = true;
        if (page.kind == PageKind::None) continue;
        claims_[visit.number].push_back({root, visit});
        if (page.HoldsRecords()) tree.pages.push_back(visit);
        if (page.IsLeaf()) continue;
        const std::int64_t last = page.cells.empty() ? visit.low : page.cells.back().key;
        ahead.push_back({page.lastChild, last, visit.high});
        for (std::size_t i = page.cells.size(); i-- > 0;)
            ahead.push_back({page.cells[i].child, i == 0 ? visit.low : page.cells[i - 1].key,
                             page.cells[i].key});
    }
}

int FileMap::Fitness(const Claim& claim) const {
    const TreeRoot& root = roots_[claim.root];
    int fitness = root.page == claim.page.number ? FitnessOfRoot : 0;
    const TreePage page = ReadLinkedPage(file_, claim.page.number, root.isTable);
    for (std::size_t i = 0; i < std::min(page.cells.size(), SampledCells); ++i) {
        const Cell& cell = page.cells[i];
        if (root.isTable && cell.key > claim.page.low && cell.key <= claim.page.high) ++fitness;
        if (!page.HoldsRecords()) continue;
        const auto record = ReadRecord(file_, page, cell);
        if (record && record->values.size() == root.columns) ++fitness;
    }
    return fitness;
}

/// Leaves each page to one tree.
void FileMap::Settle() {
    for (const auto& [number, claims] : claims_) {
        if (claims.size() == 1) continue;
        std::size_t owner = 0;
        int best = -1;
        for (const Claim& claim : claims)
            if (const int fitness = Fitness(claim); fitness > best)
                best = fitness, owner = claim.root;
        for (const Claim& claim : claims) {
            if (claim.root == owner) continue;
            trees_[claim.root].damaged = true;
            std::erase_if(trees_[claim.root].pages, [number = number](const PlacedPage& one) {
                return one.number == number;
            });
        }
    }
}

void FileMap::ReadFreePages() {
    const std::uint32_t told = file_.HeadNumber(36);
    PageNumber trunk = file_.HeadNumber(32);
    freePagesKnown_ = file_.HeadIsSound();
    const auto add = [this](PageNumber page) {
        const bool sound = page > 1 && page <= file_.PageCount() && free_.insert(page).second;
        if (!sound) freePagesKnown_ = false;
        return sound;
    };
    while (trunk != 0 && add(trunk)) {
        const std::string page = file_.Read(trunk);
        const std::size_t most = file_.UsableSize() / 4 - 2;
        const std::size_t count = WholeAt(page, 4, 4);
        if (count > most) freePagesKnown_ = false;
        for (std::size_t i = 0; i < std::min(count, most); ++i)
            add(WholeAt(page, 8 + 4 * i, 4));
        trunk = WholeAt(page, 0, 4);
    }
    if (free_.size() != told) freePagesKnown_ = false;
    for (const PageNumber page : free_) {
        const auto claimed = claims_.find(page);
        if (claimed == claims_.end()) continue;
        freePagesKnown_ = false;
        for (const Claim& claim : claimed->second)
            trees_[claim.root].damaged = true;
    }
}

void FileMap::FindLoosePages() {
    for (PageNumber number = 2; number <= file_.PageCount(); ++number) {
        if (claims_.contains(number) || free_.contains(number)) continue;
        const TreePage page = ReadTreePage(file_, number);
        const bool holdsRecord =
            page.HoldsRecords() &&
            std::any_of(page.cells.begin(), page.cells.end(), [&](const Cell& cell) {
                return ReadRecord(file_, page, cell).has_value();
            });
        if (holdsRecord) loose_.push_back(number);
    }
}

}  // namespace mailvane
