#pragma once

#include <chrono>
#include <functional>

namespace mailvane {

using NetClock = std::chrono::steady_clock;

/// Called by everything that blocks, at least every 50 ms; false ends the wait.
using KeepWaiting = std::function<bool()>;

inline constexpr std::chrono::milliseconds WaitStep{50};

}  // namespace mailvane
