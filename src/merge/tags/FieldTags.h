#pragma once

#include "merge/tags/MessageTag.h"

namespace mailvane {

/// The columns of the recipients: [First Name].
class FieldTags final : public MessageTag {
public:
    explicit FieldTags(const TagSetting& setting) : columns_(setting.columns) {}
    bool FillIn(MessageRecord& message, const TagList::ValueOf* row) override;
    void CleanUp(MessageRecord& message) const override;
    bool Owns(const std::string& name) const override { return columns_.Find(name).has_value(); }

private:
    const TagList& columns_;
};

/// A row's values without the NULs in them, which would end a path, a command or a header early.
class ValuesWithoutNul {
public:
    explicit ValuesWithoutNul(const TagList::ValueOf& row) : row_(row) {}
    const std::string* operator()(std::size_t column);

private:
    const TagList::ValueOf& row_;
    std::string text_;
};

/// Fills a row into a path. A value cannot lead out of the folder that the path names before it:
/// the path is empty then. A value at the very front may name any folder.
[[nodiscard]] bool FillInPath(const TagList& columns, std::string& path,
                              const TagList::ValueOf& row);
/// Fills a row into a sender line; what comes to stand between its quotes is quoted for them.
[[nodiscard]] bool FillInSender(const TagList& columns, std::string& text,
                                const TagList::ValueOf& row);

}  // namespace mailvane
