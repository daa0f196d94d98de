#pragma once

#include "merge/tags/MessageTag.h"

namespace mailvane {

/// The time, date, address and resources of the machine: [!SYSTIME] and its like.
class SystemTags final : public MessageTag {
public:
    explicit SystemTags(const TagSetting& setting) : wb_(setting.wb) {}
    bool FillIn(MessageRecord& message, const TagList::ValueOf* row) override;
    bool Owns(const std::string& name) const override;

private:
    Workbench& wb_;
};

/// The same for any text; false when it grows too long.
[[nodiscard]] bool FillInSystemTags(const Workbench& wb, std::string& text);

}  // namespace mailvane
