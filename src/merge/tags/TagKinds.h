#pragma once

#include <memory>
#include <string>
#include <vector>

#include "merge/tags/MessageTag.h"

namespace mailvane {

/// A kind of tag as the program knows it.
struct TagKind {
    std::unique_ptr<MessageTag> (*make)(const TagSetting& setting);
    /// The tool that lets the user pick a tag from a list, and what was picked as it stands in a
    /// text, "" for nothing. Null for kinds that have no list.
    const char* tool = nullptr;
    std::string (*pick)(Workbench& wb) = nullptr;
};

/// All kinds, in the order in which they work on a message.
const std::vector<TagKind>& TagKinds();

using MessageTags = std::vector<std::unique_ptr<MessageTag>>;
/// One of each kind.
MessageTags MakeMessageTags(const TagSetting& setting);

}  // namespace mailvane
