#include "core/run/LongRun.h"

#include <algorithm>
#include <utility>

#include "core/MessageBoxes.h"
#include "core/Waiting.h"
#include "core/run/Progress.h"

namespace mailvane {

LongRun::LongRun(Workbench& wb, Manner manner) : wb_(wb), manner_(std::move(manner)) {
    if (const LongRun* other = wb_.runs.Holder(manner_.holds)) {
        if (!wb_.state.UnattendedRun)
            Tell(wb_,
                 "This has to wait: \"" + other->Name() +
                     "\" is under way. Cancel it, or try again when it has ended.",
                 BoxIcon::Exclamation);
        return;
    }
    began_ = true;
    // A Cancel that came after the last look at the flag belongs to the run before.
    if (!wb_.runs.Current()) wb_.state.CancelRequested = false;
    std::erase_if(manner_.locked, [](const Control* control) { return !control->Enabled(); });
    for (Control* control : manner_.locked)
        control->SetEnabled(false);
    wb_.runs.Begin(*this);
}

/// Forms that were unloaded meanwhile are still there: they are destroyed when no code is running.
LongRun::~LongRun() {
    if (!began_) return;
    HideProgress();
    wb_.state.CancelRequested = false;
    for (Control* control : manner_.locked)
        control->SetEnabled(true);
    wb_.runs.End(*this);
}

void LongRun::ShowProgress(long steps, const std::string& caption1, const std::string& caption2) {
    steps_ = std::max(steps, 1L);
    progressShown_ = true;
    UpdateProgress(wb_, steps_, 0, caption1, caption2);
}

/// The last step closes the display; the run's end does that.
void LongRun::Step(long done, const std::string& caption1, const std::string& caption2) {
    if (progressShown_)
        UpdateProgress(wb_, 0, std::clamp(done, 0L, steps_ - 1), caption1, caption2);
}

void LongRun::HideProgress() {
    if (std::exchange(progressShown_, false)) UpdateProgress(wb_, 0, steps_);
}

bool LongRun::Cancelled() {
    const bool pressed = wb_.state.CancelRequested && wb_.runs.Current() == this;
    endedEarly_ = endedEarly_ || endAsked_;
    return pressed || cancelled_ || endAsked_ || wb_.platform.windows.Quitting();
}

bool LongRun::GoesOn() {
    if (wb_.platform.windows.YieldIsDue()) YieldBriefly(wb_);
    return !Cancelled();
}

bool LongRun::GoesOn(long done, const std::string& caption1) {
    if (wb_.platform.windows.YieldIsDue()) Step(done, caption1);
    return GoesOn();
}

void LongRun::AskToEnd(HowFar telling) {
    if (telling == HowFar::Kept) outcomeIsKept_ = true;
    if (std::exchange(endAsked_, true)) return;
    RunHandler(onEndAsked);
}

/// "" when it was through before it heard that it is to end.
std::string LongRun::Outcome() const {
    if (!endedEarly_) return {};
    return manner_.name + " was ended early" + (howFar ? ": " + howFar() : std::string()) + ".";
}

}  // namespace mailvane
