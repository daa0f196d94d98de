#include <gtest/gtest.h>

#include "platform/dao/sql/SqlLike.h"

namespace mailvane {
namespace {

using Pairs = std::vector<std::pair<const char*, const char*>>;  // patterns and values

TEST(SqlLike, Matches) {
    const Pairs rows = {
        {"", ""},          {"*", ""},      {"a*c", "abcbc"},      {"*b*d*", "abcdabcd"},
        {"?", "\xC3\xA4"}, {"#?", "7x"},   {"[a-c]x", "Bx"},      {"[!a-c]x", "dx"},
        {"[!]", "!"},      {"a[]b", "ab"}, {"[a-]", "-"},         {"[*][?][#][[]", "*?#["},
        {"x[ab", "x[ab"},  {"x]", "x]"},   {"\xFF*", "\xFF\xFE"}, {"?\xFE", "\xFF\xFE"}};
    for (const auto& [pattern, value] : rows)
        EXPECT_TRUE(LikeMatch(pattern, value)) << pattern << " " << value;
    EXPECT_TRUE(LikeMatch("[\xC3\xA0-\xC3\xB0]", "\xC3\x84")) << "a range folds too";
    EXPECT_TRUE(LikeMatch("\xCE\xA3\xCE\xA3", "\xCF\x83\xCF\x82")) << "both small sigmas";
    const std::string wildcards = "a*b?c#[d]![!x]";
    EXPECT_TRUE(LikeMatch(EscapeLike(wildcards), wildcards));
}

TEST(SqlLike, MatchesNot) {
    const Pairs rows = {{"", "a"},         {"a*c", "abcbcd"}, {"??", "\xC3\xA4"},
                        {"a?c", "ac"},     {"#", "x"},        {"[a-c]x", "dx"},
                        {"[!a-c]x", "bx"}, {"[!a]", ""},      {"\xC3", "\xC3\xA4"}};
    for (const auto& [pattern, value] : rows)
        EXPECT_FALSE(LikeMatch(pattern, value)) << pattern << " " << value;
    EXPECT_FALSE(LikeMatch("gro\xC3\x9F", "GROSS")) << "one character stays one";
    EXPECT_FALSE(LikeMatch(EscapeLike("a*"), "ab") || LikeMatch(EscapeLike("[a]"), "a"));
}

TEST(SqlLike, ManyStarsEndSoon) {
    std::string pattern;
    for (int i = 0; i < 50; ++i)
        pattern += "*a";
    EXPECT_FALSE(LikeMatch(pattern + "*b", std::string(20000, 'a')));
}

}  // namespace
}  // namespace mailvane
