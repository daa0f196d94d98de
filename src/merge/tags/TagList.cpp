#include "merge/tags/TagList.h"

#include "core/text/Text.h"

namespace mailvane {

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

void TagList::Replace(std::string& text, const ValueOf& valueOf) const {
    if (text.find('[') == std::string::npos) return;
    if (!namesHoldBrackets_ && ReplaceInOnePass(text, valueOf)) return;
    ReplaceBySegments(text, valueOf);
}

/// No tag reaches over a sign that is in no name, so that what stands between two such signs is
/// replaced by itself: the passes walk over little more than what needs them.
void TagList::ReplaceBySegments(std::string& text, const ValueOf& valueOf) const {
    std::string result;
    std::string segment;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = SegmentEnd(text, start);
        segment.assign(text, start, end - start);
        if (segment.find('[') != std::string::npos &&
            (namesHoldBrackets_ || !ReplaceInOnePass(segment, valueOf)))
            ReplacePassByPass(segment, valueOf);
        result += segment;
        start = end;
    }
    text = std::move(result);
}

/// Behind the first sign that separates, or at the end of the text.
std::size_t TagList::SegmentEnd(std::string_view text, std::size_t start) const {
    while (start < text.size())
        if (separates_[static_cast<unsigned char>(text[start++])]) break;
    return start;
}

void TagList::ReplacePassByPass(std::string& text, const ValueOf& valueOf) const {
    for (std::size_t i = 0; i < names_.size(); ++i) {
        const std::string tag = "[" + names_[i] + "]";
        if (!ContainsText(text, tag)) continue;
        if (const std::string* value = valueOf(i)) text = ReplaceText(text, tag, *value);
    }
}

void TagList::Remove(std::string& text) const {
    const std::string nothing;
    Replace(text, [&nothing](std::size_t) { return &nothing; });
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
/// no value holds an opening bracket, and no tag stands behind a bracket that is still open. False,
/// with `text` untouched, when that is not so.
bool TagList::ReplaceInOnePass(std::string& text, const ValueOf& valueOf) const {
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
            if (behindOpenBracket) return false;
            if (const std::string* value = valueOf(*position)) {
                if (value->find('[') != std::string::npos) return false;
                result.append(text, copied, open - copied).append(*value);
                copied = next + 1;
            }
        }
        behindOpenBracket = false;
        open = text.find('[', next + 1);
    }
    if (copied > 0) text = result.append(text, copied);
    return true;
}

}  // namespace mailvane
