#include "platform/os/Clock.h"

#include <ctime>
#include <thread>

namespace mailvane {

DateTime SystemClock::Now() const {
    return DateTime::FromUnixLocal(std::time(nullptr));
}

std::chrono::milliseconds SystemClock::Monotonic() const {
    return std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::steady_clock::now().time_since_epoch());
}

void SystemClock::Sleep(std::chrono::milliseconds duration) {
    std::this_thread::sleep_for(duration);
}

}  // namespace mailvane
