#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "platform/dao/records/Keyset.h"

namespace mailvane {
namespace {

/// Does the same to a keyset and to a plain list, and compares all that both can tell.
class KeysetModel {
public:
    void Append(std::int64_t key) {
        keyset.Append(key);
        slots.push_back({key, false});
    }
    void Remove(std::size_t slot) {
        keyset.Remove(slot);
        slots[slot].second = true;
    }

    void Compare() const {
        std::vector<std::size_t> left;
        for (std::size_t slot = 0; slot < slots.size(); ++slot)
            if (!slots[slot].second) left.push_back(slot);
        ASSERT_EQ(keyset.Count(), left.size());
        for (std::size_t position = 0; position < left.size(); ++position) {
            ASSERT_EQ(keyset.SlotOfPosition(position), left[position]);
            ASSERT_EQ(keyset.PositionOfSlot(left[position]), position);
            ASSERT_EQ(keyset.SlotOfKey(slots[left[position]].first), left[position]);
        }
        ASSERT_FALSE(keyset.SlotOfPosition(left.size()));
        for (std::size_t slot = 0; slot <= slots.size(); ++slot) {
            const auto next = std::lower_bound(left.begin(), left.end(), slot);
            ASSERT_EQ(keyset.FirstFrom(slot),
                      next == left.end() ? std::nullopt : std::optional(*next));
            ASSERT_EQ(keyset.LastBefore(slot),
                      next == left.begin() ? std::nullopt : std::optional(*std::prev(next)));
        }
        for (const auto& [key, removed] : slots)
            ASSERT_TRUE(!removed || !keyset.SlotOfKey(key));
    }

    Keyset keyset;
    std::vector<std::pair<std::int64_t, bool>> slots;
};

TEST(Keyset, StaysRightUnderRemovalsAndAdditions) {
    std::mt19937 random(7);
    for (const bool ascending : {true, false}) {
        KeysetModel model;
        for (int i = 0; i < 2500; ++i)
            model.Append(ascending ? i * 3 : (i * 7919) % 2503);
        model.Compare();
        for (int round = 0; round < 2; ++round) {
            for (std::size_t slot = 900; slot < 2200; slot += 1 + random() % 3)
                model.Remove(slot);
            model.Remove(0);
            model.Remove(model.slots.size() - 1);
            for (int i = 0; i < 700; ++i)
                model.Append(10000 + round * 700 + i);
            model.Compare();
        }
        for (std::size_t slot = 0; slot < model.slots.size(); ++slot)
            model.Remove(slot);
        model.Compare();
    }
}

TEST(Keyset, KeyGivenOutAgainNamesTheNewRow) {
    for (const std::int64_t other : {1, 9}) {
        Keyset keyset;
        keyset.Append(other);
        keyset.Append(5);
        EXPECT_EQ(keyset.SlotOfKey(5), 1u);
        keyset.Remove(1);
        keyset.Append(5);
        EXPECT_EQ(keyset.SlotOfKey(5), 2u);
        EXPECT_EQ(keyset.Count(), 2u);
    }
}

}  // namespace
}  // namespace mailvane
