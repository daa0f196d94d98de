#include "platform/forms/OtherControls.h"

#include <algorithm>
#include <charconv>

#include "platform/forms/Form.h"
#include "platform/forms/WindowSystem.h"

namespace mailvane {

void ProgressBar::SetMaximum(long maximum) {
    maximum = std::max(maximum, 0L);
    if (maximum == maximum_) return;
    maximum_ = maximum;
    value_ = std::min(value_, maximum_);
    Changed(Property::Range);
}

void ProgressBar::SetValue(long value) {
    value = std::clamp(value, 0L, maximum_);
    if (value == value_) return;
    value_ = value;
    Changed(Property::Value);
}

void Tabs::SetCurrent(int page) {
    if (page == current_) return;
    current_ = page;
    Changed(Property::Value);
    RunHandler(onClick);
}

ControlAnswer Tabs::DoSetByUser(const std::string& value) {
    int page = 0;
    const char* end = value.data() + value.size();
    const auto result = std::from_chars(value.data(), end, page);
    if (result.ec != std::errc() || result.ptr != end) return ControlAnswer::Impossible;
    if (page < 0) return ControlAnswer::NoSuchEntry;
    SetCurrent(page);
    return ControlAnswer::Done;
}

Timer::Timer(Form& form, std::string name, std::chrono::milliseconds interval,
             std::function<void()> handler)
    : Control(form, std::move(name), ControlKind::Timer),
      onTimer(std::move(handler)),
      interval_(interval) {}

Timer::~Timer() {
    Stop();
}

void Timer::Start() {
    if (running_ || Owner().HasGone()) return;
    running_ = true;
    Owner().Windows().StartTimer(*this);
}

void Timer::Stop() {
    if (!running_) return;
    running_ = false;
    Owner().Windows().StopTimer(*this);
}

StatusBar::StatusBar(Form& form, std::string name, int panels)
    : Control(form, std::move(name), ControlKind::StatusBar),
      texts_(static_cast<std::size_t>(std::max(panels, 1))) {}

void StatusBar::SetPanel(int number, std::string text) {
    if (number < 1 || number > PanelCount()) return;
    std::string& panel = texts_[static_cast<std::size_t>(number) - 1];
    if (panel == text) return;
    panel = std::move(text);
    Changed(Property::Text);
}

}  // namespace mailvane
