#include "platform/forms/ActiveBar.h"

#include <algorithm>

#include "platform/os/TextCase.h"

namespace mailvane {

ActiveBar::ActiveBar(Form& form, std::string name, std::function<void(const Tool&)> handler)
    : Control(form, std::move(name), ControlKind::ActiveBar), onTool(std::move(handler)) {}

void ActiveBar::AddTool(Tool tool) {
    const auto same = std::find_if(tools_.begin(), tools_.end(),
                                   [&](const Tool& t) { return SameName(t.name, tool.name); });
    if (same == tools_.end()) {
        tools_.push_back(std::move(tool));
    } else {
        *same = std::move(tool);
    }
    Changed(Property::Tools);
}

void ActiveBar::AddBand(Band band) {
    bands_.push_back(std::move(band));
    Changed(Property::Tools);
}

const Tool* ActiveBar::FindTool(const std::string& name) const {
    const auto found = std::find_if(tools_.begin(), tools_.end(),
                                    [&](const Tool& tool) { return SameName(tool.name, name); });
    return found == tools_.end() ? nullptr : &*found;
}

void ActiveBar::ChangeTool(const std::string& name, const std::function<void(Tool&)>& change) {
    for (Tool& tool : tools_) {
        if (!SameName(tool.name, name)) continue;
        const Tool before = tool;
        change(tool);
        if (tool != before) Changed(Property::Tools);
        return;
    }
}

void ActiveBar::SetToolEnabled(const std::string& name, bool enabled) {
    ChangeTool(name, [&](Tool& tool) { tool.enabled = enabled; });
}

void ActiveBar::SetToolVisible(const std::string& name, bool visible) {
    ChangeTool(name, [&](Tool& tool) { tool.visible = visible; });
}

void ActiveBar::SetToolChecked(const std::string& name, bool checked) {
    ChangeTool(name, [&](Tool& tool) { tool.checked = checked; });
}

void ActiveBar::SetToolCaption(const std::string& name, std::string caption) {
    ChangeTool(name, [&](Tool& tool) { tool.caption = std::move(caption); });
}

void ActiveBar::SetToolTip(const std::string& name, std::string tip) {
    ChangeTool(name, [&](Tool& tool) { tool.tip = std::move(tip); });
}

ControlAnswer ActiveBar::Press(const std::string& name) {
    const Tool* found = FindTool(name);
    if (!found) return ControlAnswer::NoSuchEntry;
    if (!Enabled() || !found->enabled || !found->visible) return ControlAnswer::Disabled;
    const Tool tool = *found;  // the handler may change the tools
    RunHandler(onTool, tool);
    return ControlAnswer::Done;
}

}  // namespace mailvane
