#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "platform/forms/Control.h"

namespace mailvane {

class ProgressBar final : public Control {
public:
    ProgressBar(Form& form, std::string name)
        : Control(form, std::move(name), ControlKind::ProgressBar) {}

    long Maximum() const { return maximum_; }
    void SetMaximum(long maximum);
    long Value() const { return value_; }
    void SetValue(long value);
    std::string ShownText() const override { return std::to_string(value_); }

private:
    long maximum_ = 100;
    long value_ = 0;
};

/// Pages of a form; controls on them are found by the window's design, not here.
class Tabs final : public Control {
public:
    Tabs(Form& form, std::string name) : Control(form, std::move(name), ControlKind::Tabs) {}

    int Current() const { return current_; }
    void SetCurrent(int page);
    std::string ShownText() const override { return std::to_string(current_); }

    std::function<void()> onClick;

protected:
    ControlAnswer DoSetByUser(const std::string& value) override;

private:
    int current_ = 0;
};

/// Fires onTimer again and again while enabled; starts disabled. Fires only while the program pumps
/// events, never in the middle of other code.
class Timer final : public Control {
public:
    Timer(Form& form, std::string name, std::chrono::milliseconds interval,
          std::function<void()> onTimer = {});
    ~Timer() override;

    std::chrono::milliseconds Interval() const { return interval_; }
    bool Running() const { return running_; }
    void Start();
    void Stop();

    std::function<void()> onTimer;

private:
    std::chrono::milliseconds interval_;
    bool running_ = false;
};

/// Texts in numbered panels, from 1.
class StatusBar final : public Control {
public:
    StatusBar(Form& form, std::string name, int panels);

    int PanelCount() const { return static_cast<int>(texts_.size()); }
    const std::string& Panel(int number) const {
        return texts_.at(static_cast<std::size_t>(number) - 1);
    }
    void SetPanel(int number, std::string text);
    std::string ShownText() const override { return texts_.front(); }

private:
    std::vector<std::string> texts_;
};

}  // namespace mailvane
