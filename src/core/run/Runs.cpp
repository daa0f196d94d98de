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
    waiting_.push_back({what, std::move(next), telling, {}});
    const auto present = underWay_;
    for (LongRun* run : present)
        if (Share(run->Held(), what)) run->AskToEnd();
}

void Runs::Begin(LongRun& run) {
    underWay_.push_back(&run);
    changed.Tell();
}

void Runs::End(LongRun& run) {
    std::erase(underWay_, &run);
    for (Waiting& waiting : waiting_)
        if (Share(run.Held(), waiting.what) && run.EndAsked())
            waiting.outcomes.push_back(run.Outcome());
    const auto ready = std::stable_partition(
        waiting_.begin(), waiting_.end(),
        [this](const Waiting& waiting) { return Holder(waiting.what) != nullptr; });
    for (auto one = ready; one != waiting_.end(); ++one)
        wb_.platform.windows.Post([this, waiting = std::move(*one)] { GoOn(waiting); });
    waiting_.erase(ready, waiting_.end());
    changed.Tell();
}

/// Another run may have begun in the meantime; it is ended as well then.
void Runs::GoOn(const Waiting& waiting) {
    if (Holder(waiting.what)) return EndThen(waiting.what, waiting.next, waiting.telling);
    std::string text;
    for (const std::string& outcome : waiting.outcomes)
        text += (text.empty() ? "" : "\r\n") + outcome;
    const bool told = waiting.telling == HowFar::Told && !text.empty();
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
