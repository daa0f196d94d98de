#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

#include "platform/os/Files.h"
#include "platform/os/SpellChecker.h"
#include "support/TempFolder.h"

namespace mailvane {
namespace {

using Words = std::vector<std::string>;

Words WordsOf(const std::string& text) {
    Words words;
    for (auto place = NextWord(text, 0); place;
         place = NextWord(text, place->start + place->length))
        words.push_back(text.substr(place->start, place->length));
    return words;
}

TEST(SpellChecker, FindsTheWordsToCheck) {
    const std::tuple<const char*, const char*, Words> rows[] = {
        {"nothing", " \r\n--", {}},
        {"apostrophes", "don't 'quote' dogs' it’s", {"don't", "quote", "dogs", "it’s"}},
        {"letters of other scripts", "Größe, naïve; мир", {"Größe", "naïve", "мир"}},
        {"composed letters", "cafe\u0301 x", {"cafe\u0301", "x"}},
        {"digits", "4th B2B 2026 word", {"word"}},
        {"hyphens", "e-mail and/or", {"e", "mail", "and", "or"}},
        {"tags", "Dear [Frst Nam], [!SYSDATE]end", {"Dear", "end"}},
        {"an open bracket", "a [frst\r\nnext]", {"a", "frst", "next"}},
        {"addresses", "at <ann@exmple.com>, http://exmple.com/x www.exmple.com ok", {"at", "ok"}},
        {"an address with a tag", "[Name]@exmple.com ok", {"ok"}},
        {"broken bytes", "a\xff\xc3 b", {"a", "b"}},
    };
    for (const auto& [name, text, words] : rows)
        EXPECT_EQ(WordsOf(text), words) << name;
}

TEST(SpellChecker, KnowsTheLanguageAndTheUsersWords) {
    test::TempFolder folder;
    const std::string own = folder.File("words.txt");
    std::string problem;
    const auto checker = SpellChecker::Open(own, problem);
    ASSERT_TRUE(checker) << problem;
    EXPECT_TRUE(checker->Knows("address"));
    EXPECT_FALSE(checker->Knows("adress"));
    const auto suggestions = checker->Suggestions("adress");
    EXPECT_NE(std::find(suggestions.begin(), suggestions.end(), "address"), suggestions.end());
    EXPECT_FALSE(checker->Knows("Mailvane"));
    EXPECT_TRUE(checker->AddOwnWord("Mailvane"));
    EXPECT_TRUE(checker->AddOwnWord("Żabka"));
    EXPECT_TRUE(checker->Knows("Mailvane"));
    EXPECT_TRUE(SpellChecker::Open(own, problem)->Knows("Żabka"));
    EXPECT_FALSE(SpellChecker::Open(folder.File("none/words.txt"), problem)->AddOwnWord("word"));
}

/// A dictionary of its own, in the encoding that its affix file names.
TEST(SpellChecker, ReadsDictionariesInOtherEncodings) {
    test::TempFolder folder;
    folder.Write("en_US.aff", "SET ISO8859-1\nTRY e\xe9\n");
    folder.Write("en_US.dic", "1\ncaf\xe9\n");
    ::setenv("DICPATH", folder.Path().c_str(), 1);
    std::string problem;
    const auto checker = SpellChecker::Open(folder.File("words.txt"), problem);
    ASSERT_TRUE(checker) << problem;
    EXPECT_TRUE(checker->Knows("café"));
    EXPECT_FALSE(checker->Knows("мир"));
    EXPECT_EQ(checker->Suggestions("cafe"), Words{"café"});

    DeleteFile(folder.File("en_US.dic"));
    EXPECT_FALSE(SpellChecker::Open("", problem));
    EXPECT_EQ(problem, "The spelling cannot be checked: there is no dictionary in '" +
                           folder.Path() +
                           "'.\r\nInstall a Hunspell dictionary, for instance the package "
                           "'hunspell-en-us'.");
    ::unsetenv("DICPATH");
}

}  // namespace
}  // namespace mailvane
