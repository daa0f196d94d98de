#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace mailvane {

/// Holds an observer on; destroying it ends the observation. Safe when the event has gone first.
class [[nodiscard]] Subscription {
public:
    Subscription() = default;
    explicit Subscription(std::shared_ptr<void> slot) : slot_(std::move(slot)) {}
    void End() { slot_.reset(); }

private:
    std::shared_ptr<void> slot_;
};

/// A list of observers. Observers may come and go, and the event itself may be destroyed, while it
/// is being told.
template <class... Args>
class Event {
public:
    using Handler = std::function<void(Args...)>;

    Subscription Observe(Handler handler) {
        auto slot = std::make_shared<Handler>(std::move(handler));
        slots_.push_back(slot);
        return Subscription(slot);
    }

    bool Observed() const {
        return std::any_of(slots_.begin(), slots_.end(),
                           [](const std::weak_ptr<Handler>& slot) { return !slot.expired(); });
    }

    void Tell(Args... args) {
        std::erase_if(slots_, [](const std::weak_ptr<Handler>& slot) { return slot.expired(); });
        const auto present = slots_;
        for (const auto& weak : present)
            if (const auto slot = weak.lock()) (*slot)(args...);
    }

private:
    std::vector<std::weak_ptr<Handler>> slots_;
};

/// Runs a handler if there is one. The copy keeps it alive when it replaces itself.
template <class... Params, class... Args>
void RunHandler(const std::function<void(Params...)>& handler, Args&&... args) {
    if (const auto kept = handler) kept(std::forward<Args>(args)...);
}

}  // namespace mailvane
