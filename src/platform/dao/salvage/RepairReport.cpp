#include "platform/dao/salvage/RepairReport.h"

#include "platform/dao/structure/Schema.h"

namespace mailvane {

std::string RepairReport::Text() const {
    if (!damaged) return {};
    std::string text;
    for (const SavedTable& table : tables)
        if (!IsSystemName(table.name))
            text += "\n" + table.name + ": " + std::to_string(table.Rows()) + " rows saved";
    for (const std::string& name : lostObjects)
        text += "\n" + name + " could not be restored";
    return text + "\nThe damaged original was kept as '" + keptOriginal + "'.";
}

}  // namespace mailvane
