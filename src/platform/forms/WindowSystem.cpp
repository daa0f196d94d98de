#include "platform/forms/WindowSystem.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <utility>

#include "platform/forms/Form.h"

namespace mailvane {

namespace {

using std::chrono::milliseconds;

constexpr milliseconds PumpInterval{10};    ///< shortest time between two pumps of a run
constexpr milliseconds SleepStep{20};       ///< longest sleep between two pumps of a wait
constexpr double LongestWait = 1e9;         ///< seconds; keeps times within their range
constexpr milliseconds IdleInterval{100};   ///< longest wait of a loop
constexpr milliseconds PostedInterval{10};  ///< the same when posted work has posted work again

}  // namespace

void WindowSystem::RunModal(Form& form) {
    ++modalDepth_;
    BeginModal(form);
    form.Show();
    LoopUntil([&form] { return !form.Visible(); });
    EndModal();
    --modalDepth_;
    WakeUp();
}

BoxAnswer WindowSystem::MessageBox(const BoxRequest& request) {
    return script_ ? script_->Answer(request) : AskMessageBox(request);
}

std::optional<std::string> WindowSystem::InputBox(const InputRequest& request) {
    return script_ ? script_->Answer(request) : AskInput(request);
}

std::optional<std::string> WindowSystem::FileDialog(const FileRequest& request) {
    auto path = script_ ? script_->Answer(request) : AskFile(request);
    if (!path || path->empty()) return path;
    *path = std::filesystem::absolute(*path).lexically_normal().string();
    const std::size_t name = path->find_last_of('/') + 1;
    if (request.save && !request.defaultExtension.empty() &&
        path->find('.', name) == std::string::npos)
        *path += "." + request.defaultExtension;
    return path;
}

bool WindowSystem::PumpIsDue() const {
    return clock_.Monotonic() - lastPump_ >= PumpInterval;
}

bool WindowSystem::YieldIsDue() const {
    return yielded.Observed() || PumpIsDue();
}

void WindowSystem::YieldBriefly() {
    yielded.Tell();
    if (!PumpIsDue()) return;
    PumpEvents();
    lastPump_ = clock_.Monotonic();
}

void WindowSystem::WaitSeconds(double seconds) {
    const double kept = seconds > 0 ? std::min(seconds, LongestWait) : 0;
    const auto end = clock_.Monotonic() + milliseconds(static_cast<std::int64_t>(kept * 1000));
    while (!quitting_) {
        yielded.Tell();
        PumpEvents();
        const milliseconds left = end - clock_.Monotonic();
        if (left.count() <= 0) return;
        clock_.Sleep(std::min(left, SleepStep));
    }
}

void WindowSystem::Post(std::function<void()> work) {
    posted_.push_back(std::move(work));
}

void WindowSystem::Run() {
    LoopUntil([] { return false; });
}

void WindowSystem::Quit() {
    quitting_ = true;
    WakeUp();
    quit.Tell();
}

void WindowSystem::HandleIdle() {
    // Work posted from here on waits for the next idle moment.
    const auto work = std::exchange(posted_, {});
    for (const auto& piece : work)
        piece();
    idle.Tell();
}

void WindowSystem::LoopUntil(const std::function<bool()>& done) {
    while (!quitting_ && !done()) {
        wake_ = false;
        HandleIdle();
        if (quitting_ || done()) return;
        WaitForEvents(wake_ ? milliseconds(0) : posted_.empty() ? IdleInterval : PostedInterval);
    }
}

}  // namespace mailvane
