#include "platform/dao/sql/SqlLike.h"

#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cstdint>

namespace mailvane {
namespace {

/// Bytes that are no UTF-8 stand for themselves in a range that no character uses.
constexpr char32_t InvalidByteBase = 0x110000;

char32_t Fold(char32_t character) {
    if (character < 0x80) {
        return character >= U'A' && character <= U'Z' ? character + 32 : character;
    }
    if (character >= InvalidByteBase) return character;
    return static_cast<char32_t>(u_foldCase(static_cast<UChar32>(character), U_FOLD_CASE_DEFAULT));
}

/// Takes the character at `position`, folded, and moves behind it.
char32_t NextFolded(std::string_view text, std::size_t& position) {
    const auto byte = static_cast<unsigned char>(text[position]);
    if (byte < 0x80) {
        ++position;
        return Fold(byte);
    }
    // The longest sequence has four bytes: a window keeps ICU's 32-bit indexes in range.
    const std::string_view window = text.substr(position, 4);
    std::int32_t used = 0;
    UChar32 character = 0;
    U8_NEXT(window.data(), used, static_cast<std::int32_t>(window.size()), character);
    if (character < 0) {
        ++position;
        return InvalidByteBase + byte;
    }
    position += static_cast<std::size_t>(used);
    return Fold(static_cast<char32_t>(character));
}

}  // namespace

LikePattern::LikePattern(std::string_view pattern) {
    std::u32string folded;
    for (std::size_t position = 0; position < pattern.size();) {
        folded.push_back(NextFolded(pattern, position));
    }
    for (std::size_t i = 0; i < folded.size(); ++i) {
        const char32_t character = folded[i];
        const std::size_t closing = character == U'[' ? folded.find(U']', i) : std::u32string::npos;
        if (closing != std::u32string::npos) {
            AppendList(std::u32string_view(folded).substr(i + 1, closing - i - 1));
            i = closing;
        } else if (character == U'*') {
            // Stars in a row say no more than one.
            if (elements_.empty() || elements_.back().kind != Element::Kind::AnyText) {
                elements_.push_back({Element::Kind::AnyText, 0, {}, false});
            }
        } else if (character == U'?') {
            elements_.push_back({Element::Kind::AnyCharacter, 0, {}, false});
        } else if (character == U'#') {
            elements_.push_back({Element::Kind::Digit, 0, {}, false});
        } else {
            elements_.push_back({Element::Kind::Character, character, {}, false});
        }
    }
}

/// An empty list matches the empty text, and an exclamation mark alone is itself.
void LikePattern::AppendList(std::u32string_view list) {
    if (list.empty()) return;
    Element element{Element::Kind::List, 0, {}, list.size() > 1 && list.front() == U'!'};
    if (element.negated) list.remove_prefix(1);
    for (std::size_t i = 0; i < list.size(); ++i) {
        if (i + 2 < list.size() && list[i + 1] == U'-') {
            element.ranges.push_back({list[i], list[i + 2]});
            i += 2;
        } else {
            element.ranges.push_back({list[i], list[i]});
        }
    }
    elements_.push_back(std::move(element));
}

bool LikePattern::Element::Accepts(char32_t folded) const {
    switch (kind) {
        case Kind::Character:
            return folded == character;
        case Kind::Digit:
            return folded >= U'0' && folded <= U'9';
        case Kind::List:
            return negated != std::any_of(ranges.begin(), ranges.end(), [folded](Range range) {
                       return folded >= range.first && folded <= range.last;
                   });
        case Kind::AnyCharacter:
        case Kind::AnyText:
            return true;
    }
    return false;
}

bool LikePattern::Matches(std::string_view value) const {
    // Only the last star met can still take more characters: an earlier one never needs to, since
    // whatever it gave up could as well be taken by the later one.
    const std::size_t none = elements_.size() + 1;
    std::size_t element = 0, position = 0, star = none, starPosition = 0;
    while (position < value.size()) {
        if (element < elements_.size() && elements_[element].kind == Element::Kind::AnyText) {
            star = element++;
            starPosition = position;
            continue;
        }
        std::size_t next = position;
        if (element < elements_.size() && elements_[element].Accepts(NextFolded(value, next))) {
            position = next;
            ++element;
            continue;
        }
        if (star == none) return false;
        NextFolded(value, starPosition);
        position = starPosition;
        element = star + 1;
    }
    if (element < elements_.size() && elements_[element].kind == Element::Kind::AnyText) ++element;
    return element == elements_.size();
}

bool LikeMatch(std::string_view pattern, std::string_view value) {
    return LikePattern(pattern).Matches(value);
}

std::string EscapeLike(std::string_view text) {
    std::string escaped;
    for (const char character : text) {
        if (std::string_view("*?#[").find(character) == std::string_view::npos) {
            escaped += character;
        } else {
            escaped += {'[', character, ']'};
        }
    }
    return escaped;
}

}  // namespace mailvane
