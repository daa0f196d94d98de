#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace mailvane {

/// The tags "[name]" of a list of names. Letter case is ignored, and nothing may stand between the
/// brackets and the name.
class TagList {
public:
    /// No text grows past this many bytes by its tags: values that hold one another's tags could
    /// fill the memory.
    static constexpr std::size_t LongestText = 16 << 20;

    explicit TagList(std::vector<std::string> names);

    const std::vector<std::string>& Names() const { return names_; }

    /// Gives the text for the name at a position; null leaves its tag as it is. The text must live
    /// until the next call.
    using ValueOf = std::function<const std::string*(std::size_t)>;
    /// Replaces every tag in `text`, one pass a name in the order of the names: a value that holds
    /// the tag of a later name has that one replaced too, the tag of an earlier name stays. False
    /// when the text would grow past LongestText; what it holds then is of no use.
    [[nodiscard]] bool Replace(std::string& text, const ValueOf& valueOf) const;
    /// The same with nothing in place of every tag.
    void Remove(std::string& text) const;
    /// How long the tag is that begins at a position of `text`; 0 when none does.
    std::size_t TagLengthAt(std::string_view text, std::size_t position) const;
    /// The position of a name in the list.
    std::optional<std::size_t> Find(std::string_view name) const;

private:
    enum class Outcome { Done, NeedsPasses, TooLong };
    Outcome ReplaceInOnePass(std::string& text, const ValueOf& valueOf, std::size_t limit) const;
    bool ReplaceBySegments(std::string& text, const ValueOf& valueOf, std::size_t limit) const;
    bool ReplaceSegment(std::string& text, const ValueOf& valueOf, std::size_t limit) const;
    bool ReplacePassByPass(std::string& text, const ValueOf& valueOf, std::size_t limit) const;
    std::size_t SegmentEnd(std::string_view text, std::size_t start) const;
    std::vector<std::string> names_;
    std::unordered_map<std::string, std::size_t> positions_;  ///< by the name in lower case
    bool namesHoldBrackets_ = false;
    bool separates_[256] = {};  ///< signs that stand in no name, whatever the letter case
};

}  // namespace mailvane
