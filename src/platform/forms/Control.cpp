#include "platform/forms/Control.h"

#include "platform/forms/Form.h"
#include "platform/forms/WindowSystem.h"

namespace mailvane {

std::string WithLaterTip(const std::string& tip) {
    return tip.empty() ? LaterTip : tip + ". " + LaterTip;
}

Control::Control(Form& form, std::string name, ControlKind kind)
    : form_(form), name_(std::move(name)), kind_(kind) {
    form.controls_.push_back(this);
}

void Control::SetEnabled(bool enabled) {
    if (enabled == enabled_) return;
    enabled_ = enabled;
    Changed(Property::Enabled);
}

void Control::SetVisible(bool visible) {
    if (visible == visible_) return;
    visible_ = visible;
    Changed(Property::Visible);
}

void Control::SetTip(std::string tip) {
    if (tip == tip_) return;
    tip_ = std::move(tip);
    Changed(Property::Tip);
}

void Control::Focus() {
    if (form_.Visible()) form_.Windows().FocusControl(*this);
}

ControlAnswer Control::SetByUser(const std::string& value) {
    if (!Enabled()) return ControlAnswer::Disabled;
    const ControlAnswer answer = DoSetByUser(value);
    if (answer == ControlAnswer::Done && !form_.HasGone()) RunHandler(onLeave);
    return answer;
}

ControlAnswer Control::DoSetByUser(const std::string&) {
    return ControlAnswer::Impossible;
}

}  // namespace mailvane
