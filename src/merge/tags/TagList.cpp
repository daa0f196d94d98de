#include "merge/tags/TagList.h"

#include <algorithm>

#include "core/text/Text.h"

namespace mailvane {

namespace {

/// Whether the text with every `tag` replaced by that many bytes is no longer than `limit`.
bool FitsReplaced(const std::string& text, const std::string& tag, std::size_t valueSize,
                  std::size_t limit) {
    constexpr std::size_t ShortestTag = 3;
    const std::size_t mostTags = text.size() / ShortestTag;
    if (text.size() + mostTags * valueSize <= limit) return true;
    const std::size_t without = ReplaceText(text, tag, "").size();
    const std::size_t tags = ReplaceText(text, tag, "x").size() - without;
    return without + tags * valueSize <= limit;
}

}  // namespace

TagList::TagList(std::vector<std::string> names) : names_(std::move(names)) {
    for (std::size_t i = 0; i < names_.size(); ++i) {
        positions_.try_emplace(ToLower(names_[i]), i);
        if (names_[i].find_first_of("[]") != std::string::npos) namesHoldBrackets_ = true;
    }
    for (const char sign : std::string_view("\t\r\n !\"#$%&'()*+,-./:;<=>?@\\^_`{|}~"))
        separates_[static_cast<unsigned char>(sign)] = true;
    for (const std::string& name : names_)
        for (const char sign : name)
            separates_[static_cast<unsigned char>(sign)] = false;
}

bool TagList::Replace(std::string& text, const ValueOf& valueOf) const {
    if (text.find('[') == std::string::npos) return true;
    const std::size_t limit = std::max(LongestText, text.size());
    if (!namesHoldBrackets_) {
        const Outcome outcome = ReplaceInOnePass(text, valueOf, limit);
        if (outcome != Outcome::NeedsPasses) return outcome == Outcome::Done;
    }
    return ReplaceBySegments(text, valueOf, limit);
}

/// No tag reaches over a sign that is in no name, so that what stands between two such signs is
/// replaced by itself: the passes walk over little more than what needs them.
bool TagList::ReplaceBySegments(std::string& text, const ValueOf& valueOf,
                                std::size_t limit) const {
    std::string result;
    std::string segment;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = SegmentEnd(text, start);
        segment.assign(text, start, end - start);
        if (!ReplaceSegment(segment, valueOf, limit)) return false;
        if (result.size() + segment.size() > limit) return false;
        result += segment;
        start = end;
    }
    text = std::move(result);
    return true;
}

bool TagList::ReplaceSegment(std::string& text, const ValueOf& valueOf, std::size_t limit) const {
    if (text.find('[') == std::string::npos) return true;
    const Outcome outcome =
        namesHoldBrackets_ ? Outcome::NeedsPasses : ReplaceInOnePass(text, valueOf, limit);
    return outcome == Outcome::NeedsPasses ? ReplacePassByPass(text, valueOf, limit)
                                           : outcome == Outcome::Done;
}

/// Behind the first sign that separates, or at the end of the text.
std::size_t TagList::SegmentEnd(std::string_view text, std::size_t start) const {
    while (start < text.size())
        if (separates_[static_cast<unsigned char>(text[start++])]) break;
    return start;
}

bool TagList::ReplacePassByPass(std::string& text, const ValueOf& valueOf,
                                std::size_t limit) const {
    for (std::size_t i = 0; i < names_.size(); ++i) {
        const std::string tag = "[" + names_[i] + "]";
        if (!ContainsText(text, tag)) continue;
        const std::string* value = valueOf(i);
        if (!value) continue;
        if (!FitsReplaced(text, tag, value->size(), limit)) return false;
        text = ReplaceText(text, tag, *value);
    }
    return true;
}

void TagList::Remove(std::string& text) const {
    const std::string nothing;
    static_cast<void>(Replace(text, [&nothing](std::size_t) { return &nothing; }));
}

std::size_t TagList::TagLengthAt(std::string_view text, std::size_t position) const {
    if (text[position] != '[') return 0;
    std::size_t end = text.find_first_of("[]", position + 1);
    while (end != std::string_view::npos) {
        if (text[end] == ']' && Find(text.substr(position + 1, end - position - 1)))
            return end + 1 - position;
        end = namesHoldBrackets_ ? text.find_first_of("[]", end + 1) : std::string_view::npos;
    }
    return 0;
}

std::optional<std::size_t> TagList::Find(std::string_view name) const {
    const auto found = positions_.find(ToLower(name));
    return found == positions_.end() ? std::nullopt : std::optional(found->second);
}

/// One walk over the text does what the passes do as long as no replacement can make a new tag:
/// no value holds an opening bracket, and no tag stands behind a bracket that is still open. Leaves
/// `text` untouched when that is not so.
TagList::Outcome TagList::ReplaceInOnePass(std::string& text, const ValueOf& valueOf,
                                           std::size_t limit) const {
    std::string result;
    std::size_t copied = 0;
    bool behindOpenBracket = false;
    std::size_t open = text.find('[');
    while (open != std::string::npos) {
        const std::size_t next = text.find_first_of("[]", open + 1);
        if (next == std::string::npos) break;
        if (text[next] == '[') {
            behindOpenBracket = true;
            open = next;
            continue;
        }
        const auto position = Find(std::string_view(text).substr(open + 1, next - open - 1));
        if (position) {
            if (behindOpenBracket) return Outcome::NeedsPasses;
            if (const std::string* value = valueOf(*position)) {
                if (value->find('[') != std::string::npos) return Outcome::NeedsPasses;
                result.append(text, copied, open - copied).append(*value);
                if (result.size() > limit) return Outcome::TooLong;
                copied = next + 1;
            }
        }
        behindOpenBracket = false;
        open = text.find('[', next + 1);
    }
    if (copied > 0) text = result.append(text, copied);
    return text.size() > limit ? Outcome::TooLong : Outcome::Done;
}

}  // namespace mailvane
