#pragma once

#include "platform/os/Clock.h"

namespace mailvane::test {

/// A clock that passes only when somebody sleeps on it or moves it on.
class ManualClock final : public Clock {
public:
    explicit ManualClock(DateTime start = *DateTime::FromParts(2024, 3, 15, 10, 30))
        : start_(start) {}

    DateTime Now() const override {
        return start_.PlusSeconds(
            std::chrono::duration_cast<std::chrono::seconds>(passed_).count());
    }
    std::chrono::milliseconds Monotonic() const override { return passed_; }
    void Sleep(std::chrono::milliseconds duration) override { Advance(duration); }
    void Advance(std::chrono::milliseconds duration) { passed_ += duration; }

private:
    DateTime start_;
    std::chrono::milliseconds passed_{0};
};

}  // namespace mailvane::test
