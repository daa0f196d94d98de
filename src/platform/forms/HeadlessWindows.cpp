#include "platform/forms/HeadlessWindows.h"

#include <algorithm>

#include "platform/forms/Form.h"
#include "platform/forms/OtherControls.h"

namespace mailvane {

HeadlessWindows::HeadlessWindows(Clock& clock) : WindowSystem(clock) {}

void HeadlessWindows::ShowForm(Form&) {}

void HeadlessWindows::HideForm(Form&) {}

void HeadlessWindows::BringToFront(Form&) {}

void HeadlessWindows::FormChanged(Form&) {}

void HeadlessWindows::FormGone(Form& form) {
    if (focused_ && &focused_->Owner() == &form) focused_ = nullptr;
}

void HeadlessWindows::FocusControl(Control& control) {
    focused_ = &control;
}

void HeadlessWindows::ArrangeChildren(Arrangement) {}

void HeadlessWindows::SetPointer(MousePointer pointer) {
    pointer_ = pointer;
}

void HeadlessWindows::StartTimer(Timer& timer) {
    timers_.push_back({&timer, SystemClock().Monotonic() + timer.Interval()});
}

void HeadlessWindows::StopTimer(Timer& timer) {
    std::erase_if(timers_, [&](const RunningTimer& running) { return running.timer == &timer; });
}

void HeadlessWindows::PopupMenu(Form&, const std::string&) {}

PrintOutcome HeadlessWindows::PrintTable(const PrintJob& job) {
    lastPrinted = job;
    return printAnswer;
}

HeadlessWindows::RunningTimer* HeadlessWindows::Find(const Timer* timer) {
    const auto found =
        std::find_if(timers_.begin(), timers_.end(),
                     [&](const RunningTimer& running) { return running.timer == timer; });
    return found == timers_.end() ? nullptr : &*found;
}

void HeadlessWindows::PumpEvents() {
    const auto now = SystemClock().Monotonic();
    std::vector<RunningTimer> due;
    for (const RunningTimer& running : timers_)
        if (running.due <= now) due.push_back(running);
    std::stable_sort(due.begin(), due.end(),
                     [](const RunningTimer& a, const RunningTimer& b) { return a.due < b.due; });
    for (const RunningTimer& one : due) {
        // The handler of an earlier one may have stopped it, or pumped events and so fired it.
        RunningTimer* running = Find(one.timer);
        if (!running || running->due != one.due) continue;
        running->due = now + one.timer->Interval();
        RunHandler(one.timer->onTimer);
    }
}

BoxAnswer HeadlessWindows::AskMessageBox(const BoxRequest& request) {
    return prompts.Answer(request);
}

std::optional<std::string> HeadlessWindows::AskInput(const InputRequest& request) {
    return prompts.Answer(request);
}

std::optional<std::string> HeadlessWindows::AskFile(const FileRequest& request) {
    return prompts.Answer(request);
}

void HeadlessWindows::WaitForEvents(std::chrono::milliseconds atMost) {
    const auto now = SystemClock().Monotonic();
    for (const RunningTimer& running : timers_)
        atMost = std::min(atMost, std::max(running.due - now, std::chrono::milliseconds(0)));
    if (atMost.count() > 0) SystemClock().Sleep(atMost);
    PumpEvents();
}

}  // namespace mailvane
