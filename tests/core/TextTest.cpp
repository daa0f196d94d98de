#include <gtest/gtest.h>

#include "core/text/Text.h"

namespace mailvane {
namespace {

using Row = std::tuple<const char*, std::string, std::string>;  ///< name, input, expected

TEST(Text, EncodesAndDecodesForAddresses) {
    const Row rows[] = {
        {"percent first", "50% & more", "50%25+%26+more"},
        {"blank and hard blank", "a b\xC2\xA0x", "a+b+x"},
        {"the letter with the hard blank's last byte", "\xC3\xA0", "\xC3\xA0"},
        {"every other character", "!#$~^&>()+|`=\\[]{};':\",?/<",
         "%21%23%24%7E%5E%26%3E%28%29%2B%7C%60%3D%5C%5B%5D%7B%7D%3B%27%3A%22%2C%3F%2F%3C"},
        {"untouched", "A-z_0.9@*", "A-z_0.9@*"},
        {"empty", "", ""},
    };
    for (const auto& [name, input, expected] : rows)
        EXPECT_EQ(UrlEncode(input), expected) << name;
    const Row decoded[] = {
        {"doubly encoded is decoded twice", "%253A", ":"},
        {"plus encoded once is a blank", "a%2Bb", "a b"},
        {"plus encoded twice is one blank", UrlEncode(UrlEncode("+")), " "},
        {"lower case digits", "%3a%2f", ":/"},
        {"unfinished sequence stays", "100%2", "100%2"},
    };
    for (const auto& [name, input, expected] : decoded)
        EXPECT_EQ(UrlDecode(input), expected) << name;
    const std::string awkward = "a&b=c?d/e:f;'\"<>[]{}()|`~^#$!\\,% x";
    EXPECT_EQ(UrlDecode(UrlEncode(awkward)), awkward);
}

TEST(Text, FindsAddresses) {
    const Row rows[] = {
        {"name and address", "\"Ann\" < ann@example.com >", "ann@example.com"},
        {"bare address stays as it is", " ann@example.com ", " ann@example.com "},
        {"piece without an at sign is passed over", "<x> <b@c.de>", "b@c.de"},
        {"line ends go", "A <a@\r\nb.c>", "a@b.c"},
        {"nothing closes", "A <a@b.c", "A <a@b.c"},
        {"empty", "", ""},
    };
    for (auto [name, text, address] : rows) {
        EXPECT_EQ(ExtractAddress(text), address) << name;
        EXPECT_EQ(text, address) << name;
    }
}

TEST(Text, RemovesSpecialCharacters) {
    EXPECT_EQ(CleanSpecialChars("a~b`c!d@e\"f\tg\r\nh - _ . X", ""), "abcdefgh - _ . X");
    EXPECT_EQ(CleanSpecialChars("a+b?c X", "-", "+X?"), "a-b-c X");
    EXPECT_EQ(CleanSpecialChars("Abba", "", "b"), "Aa");
    EXPECT_EQ(CleanSpecialChars("ABba", "", "b"), "Aa");
    EXPECT_EQ(CleanSpecialChars("a*b", "*!", "*X!"), "a**!b");
}

TEST(Text, WrapsNearTheWidth) {
    const std::tuple<const char*, std::string, int, std::string> rows[] = {
        {"short text", "one two", 30, "one two"},
        {"no blanks", std::string(200, 'a'), 30, std::string(200, 'a')},
        {"near the word's end: behind it", "aaaa bbbbbb cc", 10, "aaaa bbbbbb \r\ncc"},
        {"near the word's start: before it", "aaaaaaaa bbbbbb cc", 10, "aaaaaaaa \r\nbbbbbb cc"},
        {"limit on a blank", "aaaaaaaaa bbb cc", 10, "aaaaaaaaa \r\nbbb cc"},
        {"a word that ends the text is not broken", "aaaa bbbbbbbbbbbb", 10, "aaaa bbbbbbbbbbbb"},
        {"own line ends restart the count", "aaaa bb\r\ncccc dd ee", 10, "aaaa bb\r\ncccc dd ee"},
        {"a long word stands alone", "aa " + std::string(40, 'w') + " bb cc", 30,
         "aa " + std::string(40, 'w') + " \r\nbb cc"},
        {"later lines count from the limit", "aaaa bbbbbb cc dd ee ff gg hh", 10,
         "aaaa bbbbbb \r\ncc dd ee ff \r\ngg hh"},
        {"empty", "", 65, ""},
        {"width that cannot be kept", "a b c d", 0, "a b c d"},
        {"smallest width ends", "aa aaaaaaaaaaaa b c", 1, "aa aaaaaaaaaaaa b c"},
    };
    for (const auto& [name, text, width, expected] : rows)
        EXPECT_EQ(WrapText(text, width), expected) << name;
}

TEST(Text, WrappingOnlyAddsLineEnds) {
    unsigned seed = 7;
    for (int width = 2; width < 90; width += 3) {
        std::string text;
        for (int i = 0; i < 700; ++i) {
            seed = seed * 1103515245u + 12345u;
            text.push_back(" a\r\nbcdefghij"[seed >> 16 & 15 % 13]);
        }
        std::string after = WrapText(text, width);
        for (std::string* one : {&text, &after})
            std::erase_if(*one, [](char c) { return c == '\r' || c == '\n'; });
        EXPECT_EQ(after, text) << width;
    }
}

TEST(Text, ReadsKeyLines) {
    const std::string text = "Name:  Ann \r\nAge: 7\r\nname: Bob\r\nLast:x";
    const std::vector<std::string> keys = {"Name:", "Age:", "None:", "Last:"};
    EXPECT_EQ(ParseKeyLines(text, keys, 1), (std::vector<std::string>{"Ann", "7", "", "x"}));
    EXPECT_EQ(ParseKeyLines(text, keys, 0), (std::vector<std::string>{"Bob", "7", "", "x"}));
    EXPECT_TRUE(ParseKeyLines("", keys, 0).empty());
    EXPECT_TRUE(ParseKeyLines(text, {}, 0).empty());
}

TEST(Text, ComparesWithoutRegardToCase) {
    EXPECT_TRUE(EqualText("\xC3\x84RGER", "\xC3\xA4rger"));
    EXPECT_TRUE(EqualText("\xD0\x9F\xD0\xA0\xD0\x98", "\xD0\xBF\xD1\x80\xD0\xB8"));
    EXPECT_FALSE(EqualText("abc", "abcd"));
    EXPECT_EQ(ToLower("\xC3"), "\xC3");
    EXPECT_EQ(ToLower("\xC3\x97 \xC5\xB8 \xC4\xB0"), "\xC3\x97 \xC3\xBF \xC4\xB0");
    EXPECT_EQ(ReplaceText("[Name] [NAME] [nam", "[name]", "$&"), "$& $& [nam");
    EXPECT_EQ(ReplaceText("aaa", "", "x"), "aaa");
}

TEST(Text, KnowsNumbers) {
    const std::tuple<const char*, bool, double> rows[] = {
        {" 65 ", true, 65}, {"-1.5", true, -1.5}, {"+3", true, 3},   {"1e3", true, 1000},
        {".5", true, .5},   {"12abc", false, 12}, {"", false, 0},    {"-", false, 0},
        {"+-3", false, 0},  {"inf", false, 0},    {"nan", false, 0}, {"1e999", false, 0},
    };
    for (const auto& [text, numeric, value] : rows) {
        EXPECT_EQ(IsNumeric(text), numeric) << text;
        EXPECT_EQ(NumberOf(text), value) << text;
    }
}

TEST(Text, SplitsAndCounts) {
    EXPECT_EQ(Split("a#|#b#|#", "#|#"), (std::vector<std::string>{"a", "b", ""}));
    EXPECT_EQ(Split("", ","), (std::vector<std::string>{""}));
    EXPECT_EQ(CountOccurrences("a@b@c", "@"), 2);
    EXPECT_EQ(CountOccurrences("abc", ""), 0);
    EXPECT_EQ(TrimAtNul(std::string("ab\0c", 4)), "ab");
    EXPECT_EQ(Trim("  a b\t "), "a b\t");
}

}  // namespace
}  // namespace mailvane
