#include <gtest/gtest.h>

#include "platform/dao/SqlLike.h"

namespace mailvane {
namespace {

TEST(SqlLike, Matches) {
    const struct {
        const char* pattern;
        const char* value;
        bool matches;
    } rows[] = {
        {"", "", true},
        {"", "a", false},
        {"*", "", true},
        {"a*c", "abcbc", true},
        {"a*c", "abcbcd", false},
        {"*b*d*", "abcdabcd", true},
        {"?", "\xC3\xA4", true},
        {"??", "\xC3\xA4", false},
        {"a?c", "ac", false},
        {"#?", "7x", true},
        {"#", "x", false},
        {"[a-c]x", "Bx", true},
        {"[a-c]x", "dx", false},
        {"[!a-c]x", "dx", true},
        {"[!a-c]x", "bx", false},
        {"[!a]", "", false},
        {"[!]", "!", true},
        {"a[]b", "ab", true},
        {"[a-]", "-", true},
        {"[*][?][#][[]", "*?#[", true},
        {"x[ab", "x[ab", true},
        {"x]", "x]", true},
        {"[\xC3\xA0-\xC3\xB0]", "\xC3\x84", true},       // a range folds too
        {"\xCE\xA3\xCE\xA3", "\xCF\x83\xCF\x82", true},  // both small sigmas
        {"stra\xC3\x9F"
         "e",
         "STRASSE", false},           // one character stays one
        {"\xFF*", "\xFF\xFE", true},  // no UTF-8
        {"?\xFE", "\xFF\xFE", true},
        {"\xC3", "\xC3\xA4", false},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(LikeMatch(row.pattern, row.value), row.matches)
            << row.pattern << " " << row.value;
    }
}

TEST(SqlLike, ManyStarsEndSoon) {
    std::string pattern;
    for (int i = 0; i < 50; ++i)
        pattern += "*a";
    EXPECT_FALSE(LikeMatch(pattern + "*b", std::string(20000, 'a')));
}

TEST(SqlLike, EscapedTextMatchesOnlyItself) {
    const std::string text = "a*b?c#[d]![!x]";
    EXPECT_TRUE(LikeMatch(EscapeLike(text), text));
    EXPECT_FALSE(LikeMatch(EscapeLike("a*"), "ab"));
    EXPECT_FALSE(LikeMatch(EscapeLike("[a]"), "a"));
}

}  // namespace
}  // namespace mailvane
