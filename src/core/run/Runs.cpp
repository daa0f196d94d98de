#include "core/run/Runs.h"

#include <algorithm>
#include <utility>

#include "core/MessageBoxes.h"
#include "core/run/LongRun.h"

namespace mailvane {

LongRun* Runs::Current() const {
    return underWay_.empty() ? nullptr : underWay_.back();
}

LongRun* Runs::Holder(Holds what) const {
    const auto found = std::find_if(underWay_.rbegin(), underWay_.rend(),
                                    [&](const LongRun* run) { return Share(run->Held(), what); });
    return found == underWay_.rend() ? nullptr : *found;
}

void Runs::EndThen(Holds what, std::function<void()> next, HowFar telling) {
    if (!Holder(what)) return next();
    Wait({what, std::move(next), telling, {}});
}

void Runs::Wait(Waiting waiting) {
    const Holds what = waiting.what;
    const HowFar telling = waiting.telling;
    waiting_.push_back(std::move(waiting));
    const auto present = underWay_;
    for (LongRun* run : present)
        if (Share(run->Held(), what)) run->AskToEnd(telling);
}

void Runs::Begin(LongRun& run) {
    underWay_.push_back(&run);
    changed.Tell();
}

void Runs::End(LongRun& run) {
    std::erase(underWay_, &run);
    // Of several that wait for the same run one tells how far it came.
    const auto teller = std::find_if(waiting_.begin(), waiting_.end(), [&](const Waiting& one) {
        return one.telling == HowFar::Told && Share(run.Held(), one.what);
    });
    if (const std::string outcome = run.Outcome(); teller != waiting_.end() && !outcome.empty())
        teller->outcomes.push_back(outcome);
    const auto ready = std::stable_partition(
        waiting_.begin(), waiting_.end(),
        [this](const Waiting& waiting) { return Holder(waiting.what) != nullptr; });
    for (auto one = ready; one != waiting_.end(); ++one)
        wb_.platform.windows.Post([this, waiting = std::move(*one)]() mutable { GoOn(waiting); });
    waiting_.erase(ready, waiting_.end());
    changed.Tell();
}

void Runs::GoOn(Waiting& waiting) {
    // Another run may have begun in the meantime; it is ended as well then.
    if (Holder(waiting.what)) return Wait(std::move(waiting));
    std::string text;
    for (const std::string& outcome : waiting.outcomes)
        text += (text.empty() ? "" : "\r\n") + outcome;
    const bool told = !text.empty();
    if (told && !wb_.state.UnattendedRun) Tell(wb_, text, BoxIcon::Information);
    waiting.next();
    if (told && wb_.shell) wb_.shell->SetPanel(text);
}

bool MayUnload(Workbench& wb, const Form& form, Holds what) {
    if (!wb.runs.Holder(what)) return true;
    wb.runs.EndThen(what, [&wb, name = form.Name()] {
        if (Form* loaded = wb.forms.FindByName(name)) loaded->Unload();
    });
    return false;
}

}  // namespace mailvane
