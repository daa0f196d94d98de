#include <gtest/gtest.h>

#include <random>

#include "core/text/Text.h"
#include "merge/tags/TagList.h"

namespace mailvane {
namespace {

using Values = std::vector<std::optional<std::string>>;

std::string Fill(const TagList& tags, std::string text, const Values& values) {
    const bool fits =
        tags.Replace(text, [&](std::size_t i) { return values[i] ? &*values[i] : nullptr; });
    return fits ? text : "too long";
}

/// The definition: one pass a name, in order.
std::string FillPassByPass(const std::vector<std::string>& names, std::string text,
                           const Values& values) {
    for (std::size_t i = 0; i < names.size(); ++i)
        if (values[i]) text = ReplaceText(text, "[" + names[i] + "]", *values[i]);
    return text;
}

TEST(TagList, RemoveTakesOutTagsOnly) {
    const TagList tags({"A", "B"});
    std::string text = "x[a][C][B]y";
    tags.Remove(text);
    EXPECT_EQ(text, "x[C]y");
}

TEST(TagList, NamesMayHoldAnyLetter) {
    EXPECT_EQ(Fill(TagList({"Größe", "STRASSE"}), "[GRÖßE] [größe] [Straße]", {"1", "2"}),
              "1 1 [Straße]");
    EXPECT_EQ(Fill(TagList({"a]b", "[c"}), "[a]b] [[c]", {"1", "2"}), "1 2");
}

TEST(TagList, NoTextGrowsWithoutEnd) {
    const TagList tags({"a", "b", "c"});
    const auto repeated = [](const std::string& text, int times) {
        std::string made;
        for (int i = 0; i < times; ++i)
            made += text;
        return made;
    };
    const std::string long1(1 << 20, 'x');
    const Values chain = {repeated("[b]", 20000), repeated("[c]", 20000), long1};
    EXPECT_EQ(Fill(tags, "[a]", chain), "too long");
    EXPECT_EQ(Fill(tags, "[c] [c] " + repeated("[c]", 15), chain), "too long");
    EXPECT_EQ(Fill(tags, repeated("[c]", 15), chain).size(), 15u << 20);
    EXPECT_EQ(Fill(tags, std::string(17 << 20, 'x') + "[a]", {"xx", "", ""}).size(),
              (17u << 20) + 2);
}

TEST(TagList, OneWalkEqualsThePasses) {
    const std::vector<std::string> names{"a", "bb", "c d"};
    const TagList tags(names);
    const char* const pieces[] = {"[",    "]",     "a", "bb",  "c d", "[a]",
                                  "[BB]", "[c d]", "x", "[x]", ",",   "\n"};
    std::mt19937 random(20240315);
    const auto piece = [&] { return std::string(pieces[random() % std::size(pieces)]); };
    const auto text = [&](unsigned most) {
        std::string made;
        for (unsigned count = random() % most; count > 0; --count)
            made += piece();
        return made;
    };
    for (int round = 0; round < 20000; ++round) {
        Values values;
        for (std::size_t i = 0; i < names.size(); ++i)
            values.push_back(random() % 6 == 0 ? std::nullopt : std::optional(text(3)));
        const std::string source = text(9);
        ASSERT_EQ(Fill(tags, source, values), FillPassByPass(names, source, values)) << source;
    }
}

}  // namespace
}  // namespace mailvane
