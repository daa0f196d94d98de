#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/forms/Event.h"
#include "platform/forms/Printing.h"
#include "platform/forms/Prompts.h"
#include "platform/os/Clock.h"

namespace mailvane {

class Control;
class Form;
class Timer;

enum class MousePointer { Normal, Busy, ArrowBusy };
enum class Arrangement { Cascade = 0, TileHorizontally = 1, TileVertically = 2, ArrangeIcons = 3 };

/// Everything that stands between forms and a screen: windows, prompts, the event loop. One of them
/// draws with Qt, the other draws nothing.
class WindowSystem {
public:
    explicit WindowSystem(Clock& clock) : clock_(clock) {}
    virtual ~WindowSystem() = default;

    Clock& SystemClock() const { return clock_; }

    // Windows. Forms call these; `Form` keeps the state.
    virtual void ShowForm(Form& form) = 0;
    virtual void HideForm(Form& form) = 0;
    virtual void BringToFront(Form& form) = 0;
    virtual void FormChanged(Form& form) = 0;  ///< caption, place, size or window state
    virtual void FormGone(Form& form) = 0;     ///< left the program: its window is closed
    virtual void FocusControl(Control& control) = 0;
    virtual void ArrangeChildren(Arrangement arrangement) = 0;
    virtual void SetPointer(MousePointer pointer) = 0;
    /// How long the tip of a control stays while the mouse rests on it; empty: until it leaves.
    void SetTipTime(std::optional<std::chrono::seconds> time) { tipTime_ = time; }
    std::optional<std::chrono::seconds> TipTime() const { return tipTime_; }
    virtual void StartTimer(Timer& timer) = 0;
    virtual void StopTimer(Timer& timer) = 0;
    virtual void PopupMenu(Form& form, const std::string& band) = 0;

    /// Shows the form and returns when it has been hidden or unloaded; the program goes on
    /// meanwhile.
    void RunModal(Form& form);
    int ModalDepth() const { return modalDepth_; }

    // Prompts: answered by the script when one plays, by the person otherwise.
    BoxAnswer MessageBox(const BoxRequest& request);
    std::optional<std::string> InputBox(const InputRequest& request);  ///< empty when cancelled
    /// An absolute path; empty when cancelled.
    std::optional<std::string> FileDialog(const FileRequest& request);
    /// Prints a table, with the dialogs that the job asks for; returns when that is done.
    virtual PrintOutcome PrintTable(const PrintJob& job) = 0;
    void PlayPrompts(PromptScript* script) { script_ = script; }  ///< not owned; null ends it

    // The event loop.
    virtual void PumpEvents() = 0;  ///< handles what waits, timers included, and returns
    /// Called by long runs after each item: lets the interface live. Costs next to nothing when the
    /// last one was under 10 ms ago.
    void YieldBriefly();
    /// YieldBriefly would let something run now. A run that makes many small steps may keep what
    /// must not be interrupted (a transaction) open from one due yield to the next.
    bool YieldIsDue() const;
    void WaitSeconds(double seconds);  ///< lets the program go on for that time
    /// Runs `work` once, when the program is idle next, not in the middle of other code.
    void Post(std::function<void()> work);
    /// Runs until Quit.
    void Run();
    void Quit();
    bool Quitting() const { return quitting_; }
    /// The loop goes round once more before it waits.
    void WakeUp() { wake_ = true; }
    /// Does what waits for an idle moment: posted work, then `idle`. The loops call it; code that
    /// runs without a loop (a test) may, where no form's code is running.
    void HandleIdle();
    Event<> idle;     ///< the program waits for input, at the outermost loop or in a modal one
    Event<> yielded;  ///< a long run has yielded
    Event<> quit;     ///< Quit was called

protected:
    /// RunModal calls these around its loop, before the form is shown and after it has gone from
    /// the screen; they nest.
    virtual void BeginModal(Form&) {}
    virtual void EndModal() {}
    virtual BoxAnswer AskMessageBox(const BoxRequest& request) = 0;
    virtual std::optional<std::string> AskInput(const InputRequest& request) = 0;
    virtual std::optional<std::string> AskFile(const FileRequest& request) = 0;
    /// Waits for something to happen, at most so long, and handles it.
    virtual void WaitForEvents(std::chrono::milliseconds atMost) = 0;

private:
    void LoopUntil(const std::function<bool()>& done);
    bool PumpIsDue() const;
    Clock& clock_;
    PromptScript* script_ = nullptr;
    std::vector<std::function<void()>> posted_;
    std::chrono::milliseconds lastPump_{0};
    std::optional<std::chrono::seconds> tipTime_;
    int modalDepth_ = 0;
    bool wake_ = false;
    bool quitting_ = false;
};

}  // namespace mailvane
