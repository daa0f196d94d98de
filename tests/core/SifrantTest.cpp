#include <gtest/gtest.h>

#include <set>

#include "core/records/Sifrant.h"

namespace mailvane {
namespace {

std::string AllBytes() {
    std::string bytes;
    for (int i = 0; i < 256; ++i)
        bytes.push_back(static_cast<char>(i));
    return bytes;
}

TEST(Sifrant, GivesTheTextBack) {
    for (std::size_t length = 0; length < 20; ++length) {
        const std::string text = AllBytes().substr(60, length);
        for (const char* key : {"Velorina", "512903847165320", "", "\xFF"}) {
            const std::string scrambled = Sifrant().Sifriraj(text, key);
            EXPECT_EQ(scrambled.size(), length + (length + 2) / 3);
            EXPECT_EQ(Sifrant().DeSifriraj(scrambled, key), text) << length << key;
        }
    }
    const std::string scrambled = ScrambleText(AllBytes());
    EXPECT_EQ(UnscrambleText(scrambled), AllBytes());
    for (const char c : scrambled)
        EXPECT_TRUE(c >= ';' && c <= 'z') << int{c};
}

TEST(Sifrant, DependsOnTextAndKeyOnly) {
    Sifrant used;
    used.Sifriraj("something else", "other");
    const std::string text(40, 'a');
    EXPECT_EQ(used.Sifriraj(text, "Velorina"), Sifrant().Sifriraj(text, "Velorina"));
    std::set<std::string> results;
    for (const char* key : {"Velorina", "velorina", "Velorinb", "Velorin", "anirolev", ""})
        results.insert(Sifrant().Sifriraj(text, key));
    EXPECT_EQ(results.size(), 6u);
}

// Files written by one version have to be read by every later one.
TEST(Sifrant, KeepsItsFileFormat) {
    EXPECT_EQ(Sifrant().Sifriraj("Mailvane", "Velorina"), "Nqit[\\NaR<?");
}

TEST(Sifrant, AcceptsAnyText) {
    for (std::size_t length = 0; length < 30; ++length) {
        const std::string text = AllBytes().substr(length * 7, length);
        EXPECT_LE(Sifrant().DeSifriraj(text, "Velorina").size(), length);
    }
}

}  // namespace
}  // namespace mailvane
