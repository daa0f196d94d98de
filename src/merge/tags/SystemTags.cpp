#include "merge/tags/SystemTags.h"

#include "core/Machine.h"

namespace mailvane {

namespace {

enum SystemTag : std::size_t { Time, Date, Address, Resources };

const TagList& Tags() {
    static const TagList tags({"!SYSTIME", "!SYSDATE", "!SYSIP", "!SYSRESOURCES"});
    return tags;
}

std::string SystemValue(const Workbench& wb, std::size_t tag) {
    switch (tag) {
        case Time:
            return wb.platform.clock.Now().LongTime();
        case Date:
            return wb.platform.clock.Now().ShortDate();
        case Address:
            return GetLocalIpAddress();
        default: {
            const int percent = FreeResourcesPercent();
            return percent == 0 ? std::string() : std::to_string(percent) + "%";
        }
    }
}

}  // namespace

bool FillInSystemTags(const Workbench& wb, std::string& text) {
    if (text.find("[!") == std::string::npos) return true;
    std::string value;
    return Tags().Replace(text, [&](std::size_t tag) {
        value = SystemValue(wb, tag);
        return &value;
    });
}

/// The sender line keeps them as they are.
bool SystemTags::FillIn(MessageRecord& message, const TagList::ValueOf*) {
    return FillInSystemTags(wb_, message.Body) && FillInSystemTags(wb_, message.Subject) &&
           FillInSystemTags(wb_, message.HTMLCode);
}

bool SystemTags::Owns(const std::string& name) const {
    return Tags().Find(name).has_value();
}

}  // namespace mailvane
