#pragma once

#include <span>

#include "platform/forms/ActiveBar.h"

namespace mailvane {

/// Tip of a control whose work is not part of this version.
inline constexpr const char* LaterTip = "Comes with a later version.";

enum class ToolState { Ready, Later };

/// One line of a form's table of tools.
struct ToolRow {
    const char* name;
    const char* caption;
    const char* tip;
    const char* icon;
    const char* shortcut = "";
    ToolState state = ToolState::Ready;
};

/// Later tools are disabled, and their tip says so.
inline void AddTools(ActiveBar& bar, std::span<const ToolRow> rows) {
    for (const ToolRow& row : rows) {
        const bool ready = row.state == ToolState::Ready;
        bar.AddTool({.name = row.name,
                     .caption = row.caption,
                     .tip = ready ? std::string(row.tip) : std::string(row.tip) + ". " + LaterTip,
                     .shortcut = row.shortcut,
                     .icon = row.icon,
                     .enabled = ready});
    }
}

}  // namespace mailvane
