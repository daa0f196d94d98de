#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/forms/Event.h"

namespace mailvane {

class Form;
class LongRun;
struct Workbench;

/// What a run works on. Of the runs under way no two share one of these.
enum class Holds : unsigned {
    Nothing = 0,
    Store = 1,       ///< the message store's connection
    Recipients = 2,  ///< the recipients database's connection
    Message = 4,     ///< the message of the merge view
    Settings = 8,    ///< the project's settings
    Everything = 15
};

constexpr Holds operator|(Holds a, Holds b) {
    return static_cast<Holds>(static_cast<unsigned>(a) | static_cast<unsigned>(b));
}
constexpr bool Share(Holds a, Holds b) {
    return (static_cast<unsigned>(a) & static_cast<unsigned>(b)) != 0;
}

enum class HowFar { Told, Kept };

/// The owner of long runs: knows which are under way and what they hold, and ends them for whoever
/// would pull the ground from under them. One a process, part of the workbench.
class Runs {
public:
    explicit Runs(Workbench& wb) : wb_(wb) {}

    /// The run begun last; null when none is under way.
    LongRun* Current() const;
    /// The run begun last of those that hold any of it; null when nothing of it is held.
    LongRun* Holder(Holds what) const;

    /// Does `next` when nothing of it is held: at once, or when the runs that hold it, which are
    /// asked to end as by their Cancel, have ended and the program is idle. With HowFar::Told a box
    /// says first how far a run came that was ended so.
    void EndThen(Holds what, std::function<void()> next, HowFar telling = HowFar::Told);

    Event<> changed;  ///< a run has begun or ended

private:
    friend class LongRun;
    struct Waiting {
        Holds what;
        std::function<void()> next;
        HowFar telling;
        std::vector<std::string> outcomes;  ///< of the runs ended for it
    };
    void Begin(LongRun& run);
    void End(LongRun& run);
    void Wait(Waiting waiting);
    void GoOn(Waiting& waiting);

    Workbench& wb_;
    std::vector<LongRun*> underWay_;  ///< in the order of their beginning
    std::vector<Waiting> waiting_;
};

/// For the OnQueryUnload of a form that runs stand on: true when nothing of it is held. Otherwise
/// the runs are asked to end, and the form unloads when they have.
bool MayUnload(Workbench& wb, const Form& form, Holds what);

}  // namespace mailvane
