#pragma once

#include <functional>
#include <string>
#include <vector>

#include "core/Workbench.h"

namespace mailvane {

/// One long run, for the length of a block: its right to begin, its progress display, its Cancel,
/// the controls that are off meanwhile, and its ending, which always happens. Works on the one
/// thread: handlers of buttons and timers run while it yields.
class LongRun {
public:
    struct Manner {
        std::string name;  ///< as messages call it: "Sending messages"
        Holds holds = Holds::Nothing;
        std::vector<Control*> locked = {};  ///< off until the run has ended; those that are on now
    };
    /// Refused when a run under way holds any of the same, which a box says.
    LongRun(Workbench& wb, Manner manner);
    ~LongRun();
    LongRun(const LongRun&) = delete;
    LongRun& operator=(const LongRun&) = delete;

    /// A run that was refused must do nothing.
    bool Began() const { return began_; }
    const std::string& Name() const { return manner_.name; }
    Holds Held() const { return manner_.holds; }

    /// Opens the progress display for that many steps. Its window comes when the run has lasted
    /// half a second. A run of several parts may open it again for each.
    void ShowProgress(long steps, const std::string& caption1, const std::string& caption2 = {});
    /// How many steps are done. A caption that is empty stays.
    void Step(long done, const std::string& caption1 = {}, const std::string& caption2 = {});
    void HideProgress();

    /// Ends it as the Cancel of the progress display does, for a run that has a window of its own.
    void Cancel() { cancelled_ = true; }
    /// Cancel was pressed, the run's owner was asked to end it, or the program is quitting.
    bool Cancelled();
    /// It is ended for somebody else's sake, who tells how far it came: the run itself need not.
    bool EndAsked() const { return endAsked_; }
    /// Lets the interface live when that is due; false when the run is to end. Costs next to
    /// nothing between two due moments: a loop may call it for each item.
    bool GoesOn();
    /// The same, with the display brought up to date.
    bool GoesOn(long done, const std::string& caption1 = {});
    /// Somebody ended it who tells nobody how far it came: the run has to keep that itself.
    bool OutcomeIsKept() const { return outcomeIsKept_; }

    /// Asked when the run has ended early for somebody else's sake: how far it came, with numbers,
    /// as the rest of the sentence "NAME was ended early: ".
    std::function<std::string()> howFar;
    /// Called once when the owner is asked to end the run, for one that waits where it cannot poll
    /// Cancelled.
    std::function<void()> onEndAsked;

private:
    friend class Runs;
    void AskToEnd(HowFar telling);
    std::string Outcome() const;

    Workbench& wb_;
    Manner manner_;
    bool began_ = false;
    bool cancelled_ = false;
    bool endAsked_ = false;
    bool endedEarly_ = false;  ///< it has heard that it is to end: it was not through by itself
    bool outcomeIsKept_ = false;
    bool progressShown_ = false;
    long steps_ = 0;
};

}  // namespace mailvane
