#include "platform/forms/ActiveBar.h"

#include <algorithm>

#include "platform/os/TextCase.h"

namespace mailvane {

bool Tool::On() const {
    return enabled && (button ? button->Enabled() : static_cast<bool>(onClick));
}

std::string Tool::ShownTip() const {
    const bool hasWork = button ? static_cast<bool>(button->onClick) : static_cast<bool>(onClick);
    return hasWork ? tip : WithLaterTip(tip);
}

void ActiveBar::AddTool(Tool tool) {
    const auto same = std::find_if(tools_.begin(), tools_.end(),
                                   [&](const Tool& t) { return SameName(t.name, tool.name); });
    if (tool.button)
        buttons_.push_back(
            tool.button->changed.Observe([this](Property) { Changed(Property::Tools); }));
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

template <class Value>
void ActiveBar::Set(const std::string& name, Value Tool::*property, Value value) {
    for (Tool& tool : tools_) {
        if (!SameName(tool.name, name)) continue;
        if (tool.*property == value) return;
        tool.*property = std::move(value);
        Changed(Property::Tools);
        return;
    }
}

void ActiveBar::SetToolEnabled(const std::string& name, bool enabled) {
    Set(name, &Tool::enabled, enabled);
}

void ActiveBar::SetToolVisible(const std::string& name, bool visible) {
    Set(name, &Tool::visible, visible);
}

void ActiveBar::SetToolChecked(const std::string& name, bool checked) {
    Set(name, &Tool::checked, checked);
}

void ActiveBar::SetToolCaption(const std::string& name, std::string caption) {
    Set(name, &Tool::caption, std::move(caption));
}

ControlAnswer ActiveBar::Press(const std::string& name) {
    const Tool* found = FindTool(name);
    if (!found) return ControlAnswer::NoSuchEntry;
    if (!Enabled() || !found->On() || !found->visible) return ControlAnswer::Disabled;
    if (takesClicks && !takesClicks()) return ControlAnswer::Done;
    if (found->button) return found->button->Press();
    RunHandler(found->onClick);
    return ControlAnswer::Done;
}

}  // namespace mailvane
