#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class Hunspell;

namespace mailvane {

/// A word in a text, in bytes.
struct WordPlace {
    std::size_t start = 0;
    std::size_t length = 0;
};

/// The first word at or behind `from` whose spelling can be checked: letters, with apostrophes
/// between them. Passed over are tags in square brackets, mail and web addresses, and words with
/// digits in them.
std::optional<WordPlace> NextWord(std::string_view text, std::size_t from);

/// A dictionary of the system and the user's own words. Texts are UTF-8.
class SpellChecker {
public:
    /// The dictionary of the user's language, else the American English one, from $DICPATH or the
    /// system's folder. `ownWords` is a file with one word a line, which need not be there. Null
    /// when there is no dictionary; `problem` then says what to do about it.
    static std::unique_ptr<SpellChecker> Open(const std::string& ownWords, std::string& problem);
    ~SpellChecker();

    bool Knows(const std::string& word) const;
    std::vector<std::string> Suggestions(const std::string& word) const;  ///< the best one first
    /// The word is known from here on, also to later checks; false when the file of own words could
    /// not be written, and later checks do not know it.
    bool AddOwnWord(const std::string& word);

private:
    SpellChecker(const std::string& dictionary, std::string ownWords);
    void ReadOwnWords();
    std::string ToDictionary(const std::string& text) const;
    std::string FromDictionary(const std::string& text) const;
    std::unique_ptr<Hunspell> dictionary_;
    std::string encoding_;  ///< of the dictionary
    std::string ownWords_;
};

}  // namespace mailvane
