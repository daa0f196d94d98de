#pragma once

#include <chrono>

#include "platform/os/DateTime.h"

namespace mailvane {

/// Time as the program sees it; tests bring their own, which passes without waiting.
class Clock {
public:
    virtual ~Clock() = default;
    virtual DateTime Now() const = 0;                         ///< local time
    virtual std::chrono::milliseconds Monotonic() const = 0;  ///< never jumps
    virtual void Sleep(std::chrono::milliseconds duration) = 0;
};

class SystemClock final : public Clock {
public:
    DateTime Now() const override;
    std::chrono::milliseconds Monotonic() const override;
    void Sleep(std::chrono::milliseconds duration) override;
};

}  // namespace mailvane
