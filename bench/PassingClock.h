#pragma once

#include "platform/os/Clock.h"

namespace mailvane::bench {

/// The system's clock, on which time that is only waited for passes at once: what a run waits by
/// intention is no part of what it costs. Waiting for a server or for the disk takes its time.
class PassingClock final : public Clock {
public:
    DateTime Now() const override {
        return system_.Now().PlusSeconds(
            std::chrono::duration_cast<std::chrono::seconds>(passed_).count());
    }
    std::chrono::milliseconds Monotonic() const override { return system_.Monotonic() + passed_; }
    void Sleep(std::chrono::milliseconds duration) override { passed_ += duration; }

private:
    SystemClock system_;
    std::chrono::milliseconds passed_{0};
};

}  // namespace mailvane::bench
