#pragma once

#include <cstddef>
#include <set>
#include <string>
#include <unordered_map>

#include "platform/os/SpellChecker.h"

namespace mailvane {

/// A walk through a text from one unknown word to the next. The checker must outlive it.
class SpellingRun {
public:
    SpellingRun(const SpellChecker& checker, std::string text);

    /// Goes to the next word that is neither known nor decided upon; false at the end of the text.
    bool Next();
    const std::string& Word() const { return word_; }
    /// Where the word stands in the text as it was given.
    WordPlace Place() const;

    void Change(const std::string& replacement);
    void ChangeAll(const std::string& replacement);  ///< the same word further on, too
    void IgnoreAll();

    const std::string& Text() const { return text_; }  ///< with the changes so far

private:
    const SpellChecker& checker_;
    std::string text_;
    std::string word_;
    WordPlace place_;            ///< of word_ in text_
    std::size_t next_ = 0;       ///< where the walk goes on
    std::ptrdiff_t growth_ = 0;  ///< of the text before the word
    std::unordered_map<std::string, std::string> changes_;
    std::set<std::string> ignored_;
};

}  // namespace mailvane
