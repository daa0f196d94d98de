#include "platform/forms/ChoiceControls.h"

#include <algorithm>
#include <charconv>
#include <optional>

#include "platform/forms/Form.h"

namespace mailvane {

namespace {

std::optional<int> WholeNumber(std::string_view text) {
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

/// What a script may give a box that is checked or not.
std::optional<bool> OneOrZero(const std::string& value) {
    if (value == "1") return true;
    if (value == "0") return false;
    return std::nullopt;
}

}  // namespace

CheckBox::CheckBox(Form& form, std::string name, bool checked, std::function<void()> handler)
    : Control(form, std::move(name), ControlKind::CheckBox),
      onClick(std::move(handler)),
      checked_(checked) {}

void CheckBox::SetChecked(bool checked) {
    if (checked == checked_) return;
    checked_ = checked;
    Changed(Property::Value);
    RunHandler(onClick);
}

void CheckBox::SetCaption(std::string caption) {
    if (caption == caption_) return;
    caption_ = std::move(caption);
    Changed(Property::Text);
}

ControlAnswer CheckBox::DoSetByUser(const std::string& value) {
    const auto checked = OneOrZero(value);
    if (!checked) return ControlAnswer::Impossible;
    SetChecked(*checked);
    return ControlAnswer::Done;
}

OptionButton::OptionButton(Form& form, std::string name, bool set, std::string group,
                           std::function<void()> handler)
    : Control(form, std::move(name), ControlKind::OptionButton),
      onClick(std::move(handler)),
      set_(set),
      group_(std::move(group)) {}

void OptionButton::SetValue(bool set) {
    if (set == set_) return;
    std::vector<OptionButton*> cleared;
    if (set) {
        for (Control* control : Owner().Controls()) {
            if (control->Kind() != ControlKind::OptionButton) continue;
            auto* other = static_cast<OptionButton*>(control);
            if (other->group_ == group_ && other->set_) cleared.push_back(other);
        }
    }
    // All are stored before anybody is told: no observer sees two set, or none.
    for (OptionButton* other : cleared)
        other->set_ = false;
    set_ = set;
    for (OptionButton* other : cleared)
        other->Changed(Property::Value);
    Changed(Property::Value);
    if (set) RunHandler(onClick);
}

void OptionButton::SetCaption(std::string caption) {
    if (caption == caption_) return;
    caption_ = std::move(caption);
    Changed(Property::Text);
}

ControlAnswer OptionButton::DoSetByUser(const std::string& value) {
    const auto set = OneOrZero(value);
    if (!set) return ControlAnswer::Impossible;
    SetValue(*set);
    return ControlAnswer::Done;
}

Slider::Slider(Form& form, std::string name, int minimum, int maximum, int value)
    : Control(form, std::move(name), ControlKind::Slider),
      minimum_(minimum),
      maximum_(maximum),
      value_(value) {}

void Slider::SetValue(int value) {
    value = std::clamp(value, minimum_, maximum_);
    if (value == value_) return;
    value_ = value;
    Changed(Property::Value);
    RunHandler(onChange);
}

ControlAnswer Slider::DoSetByUser(const std::string& value) {
    const auto number = WholeNumber(value);
    if (!number) return ControlAnswer::Impossible;
    if (*number < minimum_ || *number > maximum_) return ControlAnswer::NoSuchEntry;
    SetValue(*number);
    return ControlAnswer::Done;
}

DatePicker::DatePicker(Form& form, std::string name, DateTime value)
    : Control(form, std::move(name), ControlKind::DatePicker), value_(value) {}

void DatePicker::SetValue(DateTime value) {
    if (value == value_) return;
    value_ = value;
    Changed(Property::Value);
    RunHandler(onChange);
}

ControlAnswer DatePicker::DoSetByUser(const std::string& value) {
    const auto date = DateTime::Parse(value);
    if (!date || !date->HasDate()) return ControlAnswer::Impossible;
    SetValue(*date);
    return ControlAnswer::Done;
}

}  // namespace mailvane
