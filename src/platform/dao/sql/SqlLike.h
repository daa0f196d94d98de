#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace mailvane {

/// A pattern of the dialect's Like, read once and matched often. `*` stands for any text, `?` for
/// one character, `#` for one digit, `[list]` and `[!list]` for one character that is in the list
/// (of characters and ranges such as `a-z`) or not. A bracket that nothing closes is itself.
class LikePattern {
public:
    explicit LikePattern(std::string_view pattern);  ///< UTF-8

    /// Compares without regard to case, by Unicode's simple folding. Takes time in proportion to
    /// the two lengths multiplied, at worst.
    bool Matches(std::string_view value) const;

private:
    struct Range {
        char32_t first;
        char32_t last;
    };
    struct Element {
        enum class Kind { Character, AnyText, AnyCharacter, Digit, List };
        Kind kind;
        char32_t character = 0;
        std::vector<Range> ranges;
        bool negated = false;

        bool Accepts(char32_t folded) const;
    };

    void AppendList(std::u32string_view list);

    std::vector<Element> elements_;
};

bool LikeMatch(std::string_view pattern, std::string_view value);

/// The text as part of a pattern in which each of its characters matches only itself.
std::string EscapeLike(std::string_view text);

}  // namespace mailvane
