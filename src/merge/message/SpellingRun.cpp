#include "merge/message/SpellingRun.h"

namespace mailvane {

SpellingRun::SpellingRun(const SpellChecker& checker, std::string text)
    : checker_(checker), text_(std::move(text)) {}

bool SpellingRun::Next() {
    while (const auto found = NextWord(text_, next_)) {
        place_ = *found;
        next_ = place_.start + place_.length;
        word_ = text_.substr(place_.start, place_.length);
        if (const auto change = changes_.find(word_); change != changes_.end())
            Change(change->second);
        else if (!ignored_.contains(word_) && !checker_.Knows(word_))
            return true;
    }
    return false;
}

WordPlace SpellingRun::Place() const {
    return {static_cast<std::size_t>(static_cast<std::ptrdiff_t>(place_.start) - growth_),
            place_.length};
}

void SpellingRun::Change(const std::string& replacement) {
    text_.replace(place_.start, place_.length, replacement);
    next_ = place_.start + replacement.size();
    growth_ += static_cast<std::ptrdiff_t>(replacement.size()) -
               static_cast<std::ptrdiff_t>(place_.length);
}

void SpellingRun::ChangeAll(const std::string& replacement) {
    changes_[word_] = replacement;
    Change(replacement);
}

void SpellingRun::IgnoreAll() {
    ignored_.insert(word_);
}

}  // namespace mailvane
