#include "platform/dao/records/Keyset.h"

#include <algorithm>
#include <numeric>

namespace mailvane {

namespace {

/// So many rows added behind the lookup are searched one by one before it is made again.
constexpr std::size_t MaxTail = 1024;

}  // namespace

void Keyset::Clear() {
    *this = Keyset();
}

void Keyset::Append(std::int64_t key) {
    if (!keys_.empty() && key <= keys_.back()) ascending_ = false;
    keys_.push_back(key);
    if (removed_.empty()) return;
    removed_.push_back(false);
    removedInBlock_.resize(keys_.size() / BlockSize + 1);
}

void Keyset::Remove(std::size_t slot) {
    if (removed_.empty()) {
        removed_.resize(keys_.size());
        removedInBlock_.resize(keys_.size() / BlockSize + 1);
    }
    if (removed_[slot]) return;
    removed_[slot] = true;
    ++removedInBlock_[slot / BlockSize];
    ++removedCount_;
}

std::optional<std::size_t> Keyset::SlotOfPosition(std::size_t position) const {
    if (position >= Count()) return std::nullopt;
    if (removed_.empty()) return position;
    std::size_t block = 0;
    std::size_t before = 0;
    while (before + BlockSize - removedInBlock_[block] <= position)
        before += BlockSize - removedInBlock_[block++];
    std::size_t slot = block * BlockSize;
    for (;; ++slot) {
        if (removed_[slot]) continue;
        if (before++ == position) return slot;
    }
}

std::size_t Keyset::PositionOfSlot(std::size_t slot) const {
    if (removed_.empty()) return slot;
    const std::size_t block = slot / BlockSize;
    std::size_t gone = 0;
    for (std::size_t i = 0; i < block; ++i)
        gone += removedInBlock_[i];
    for (std::size_t i = block * BlockSize; i < slot; ++i)
        gone += removed_[i] ? 1 : 0;
    return slot - gone;
}

std::optional<std::size_t> Keyset::FirstFrom(std::size_t slot) const {
    if (slot >= keys_.size()) return std::nullopt;
    if (!IsRemoved(slot)) return slot;
    return SlotOfPosition(PositionOfSlot(slot));
}

std::optional<std::size_t> Keyset::LastBefore(std::size_t slot) const {
    if (slot > 0 && !IsRemoved(slot - 1)) return slot - 1;
    const std::size_t before = PositionOfSlot(slot);
    if (before == 0) return std::nullopt;
    return SlotOfPosition(before - 1);
}

std::optional<std::size_t> Keyset::SlotOfKey(std::int64_t key) const {
    if (ascending_) {
        const auto found = std::lower_bound(keys_.begin(), keys_.end(), key);
        if (found == keys_.end() || *found != key) return std::nullopt;
        const auto slot = static_cast<std::size_t>(found - keys_.begin());
        return IsRemoved(slot) ? std::nullopt : std::optional(slot);
    }
    if (lookup_.empty() || keys_.size() - lookup_.size() > MaxTail) BuildLookup();
    auto found = std::lower_bound(
        lookup_.begin(), lookup_.end(), key,
        [&](std::uint32_t slot, std::int64_t wanted) { return keys_[slot] < wanted; });
    // A key comes twice when the row that had it was removed and its number given out again.
    for (; found != lookup_.end() && keys_[*found] == key; ++found)
        if (!IsRemoved(*found)) return *found;
    return SlotInTail(key);
}

std::optional<std::size_t> Keyset::SlotInTail(std::int64_t key) const {
    for (std::size_t slot = keys_.size(); slot > lookup_.size(); --slot)
        if (keys_[slot - 1] == key && !IsRemoved(slot - 1)) return slot - 1;
    return std::nullopt;
}

void Keyset::BuildLookup() const {
    lookup_.resize(keys_.size());
    std::iota(lookup_.begin(), lookup_.end(), 0U);
    std::sort(lookup_.begin(), lookup_.end(),
              [&](std::uint32_t a, std::uint32_t b) { return keys_[a] < keys_[b]; });
}

}  // namespace mailvane
