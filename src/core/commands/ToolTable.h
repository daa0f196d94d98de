#pragma once

#include <cstddef>

#include "platform/forms/ActiveBar.h"

namespace mailvane {

/// One line of a table of tools: what it is called, and what it does to its target. A tool without
/// work is off and says why.
template <class Target>
struct ToolRow {
    const char* name;
    const char* caption;
    const char* tip;
    const char* icon;
    const char* shortcut = "";
    void (*work)(Target&) = nullptr;

    /// Without its work.
    Tool Described() const {
        return {.name = name, .caption = caption, .tip = tip, .shortcut = shortcut, .icon = icon};
    }
    Tool For(Target& target) const {
        Tool tool = Described();
        if (work) tool.onClick = [&target, work = work] { work(target); };
        return tool;
    }
};

/// Gives a form's bar the tools of its table.
template <class F, std::size_t count>
void AddTools(F& form, const ToolRow<F> (&rows)[count]) {
    for (const ToolRow<F>& row : rows)
        form.ActiveBar1.AddTool(row.For(form));
}

}  // namespace mailvane
