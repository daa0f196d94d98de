#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace mailvane {

/// The keys of a recordset's rows in their order. A slot is a row's fixed place in it; a removed
/// row leaves its slot empty. A position counts the rows that are left, as a grid shows them. No
/// operation is linear in the number of rows, so that a loop over a million rows may delete, add
/// and look up at every step; 8 bytes a row, and 4 more once rows are looked up by key in a keyset
/// that does not ascend.
class Keyset {
public:
    void Clear();
    void Append(std::int64_t key);
    void Remove(std::size_t slot);
    void Tidy() { keys_.shrink_to_fit(); }  ///< gives back memory reserved while filling

    std::size_t Count() const { return keys_.size() - removedCount_; }  ///< rows that are left
    std::size_t Slots() const { return keys_.size(); }
    std::int64_t KeyAt(std::size_t slot) const { return keys_[slot]; }
    bool IsRemoved(std::size_t slot) const { return !removed_.empty() && removed_[slot]; }

    std::optional<std::size_t> SlotOfPosition(std::size_t position) const;
    /// The rows left before the slot: the position of the row in it, if that is not removed.
    std::size_t PositionOfSlot(std::size_t slot) const;
    std::optional<std::size_t> SlotOfKey(std::int64_t key) const;
    /// The first slot from `slot` on, or the last before it, that holds a row.
    std::optional<std::size_t> FirstFrom(std::size_t slot) const;
    std::optional<std::size_t> LastBefore(std::size_t slot) const;

private:
    static constexpr std::size_t BlockSize = 1024;

    std::optional<std::size_t> SlotInTail(std::int64_t key) const;
    void BuildLookup() const;

    std::vector<std::int64_t> keys_;
    std::vector<bool> removed_;                  ///< empty until a row is removed
    std::vector<std::uint32_t> removedInBlock_;  ///< likewise
    std::size_t removedCount_ = 0;
    bool ascending_ = true;
    // Slots in the order of their keys, made when first needed; rows added since then stand behind.
    mutable std::vector<std::uint32_t> lookup_;
};

}  // namespace mailvane
