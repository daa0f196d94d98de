#pragma once

#include <chrono>
#include <optional>
#include <vector>

#include "platform/forms/WindowSystem.h"

namespace mailvane {

/// The window system without a screen: for scripts, unattended work and tests. Prompts are answered
/// from `prompts`; timers fire by the clock while events are pumped; waiting sleeps by the clock.
class HeadlessWindows final : public WindowSystem {
public:
    explicit HeadlessWindows(Clock& clock);

    PromptScript prompts;
    std::optional<PrintJob> lastPrinted;
    PrintOutcome printAnswer{PrintOutcome::Result::Failed, "Without a screen nothing is printed."};

    void ShowForm(Form& form) override;
    void HideForm(Form& form) override;
    void BringToFront(Form& form) override;
    void FormChanged(Form& form) override;
    void FormGone(Form& form) override;
    void FocusControl(Control& control) override;
    void ArrangeChildren(Arrangement arrangement) override;
    void SetPointer(MousePointer pointer) override;
    void StartTimer(Timer& timer) override;
    void StopTimer(Timer& timer) override;
    void PopupMenu(Form& form, const std::string& band) override;
    /// Prints nothing: keeps the job in `lastPrinted` and answers `printAnswer`.
    PrintOutcome PrintTable(const PrintJob& job) override;
    void PumpEvents() override;

    MousePointer Pointer() const { return pointer_; }
    Control* FocusedControl() const { return focused_; }

protected:
    BoxAnswer AskMessageBox(const BoxRequest& request) override;
    std::optional<std::string> AskInput(const InputRequest& request) override;
    std::optional<std::string> AskFile(const FileRequest& request) override;
    void WaitForEvents(std::chrono::milliseconds atMost) override;

private:
    struct RunningTimer {
        Timer* timer;
        std::chrono::milliseconds due;
    };
    RunningTimer* Find(const Timer* timer);
    std::vector<RunningTimer> timers_;
    MousePointer pointer_ = MousePointer::Normal;
    Control* focused_ = nullptr;
};

}  // namespace mailvane
